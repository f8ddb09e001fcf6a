// The dialogs among the resources of QuillavenLib.dll are those of the dialogs' templates: whoever
// changes one has to change the other.

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>
#include <windows.h>

#include <gtest/gtest.h>

#include <quillaven/editor/dialog.h>
#include <quillaven/functions/spline.h>
#include <quillaven/platform/application.h>

namespace {

using Kind = CControl::Kind;

// ---- What the library says -----------------------------------------------------------------------

struct Form {
  CDialogTemplate form;
  bool hasIcon = false;
  CIcon icon;
};

// Opens the spline tool without a window, and from there the two dialogs above it.
class FormReader : public CApplication {
 public:
  FormReader() : m_before(SetApplication(this)) {}
  ~FormReader() override { SetApplication(m_before); }
  FormReader(FormReader const &) = delete;
  FormReader &operator=(FormReader const &) = delete;

  unsigned int RunModal(CDialog &dialog) override {
    CIcon const *const icon = dialog.OnQueryDragIcon();
    forms.push_back({dialog.Template(), icon != nullptr, icon != nullptr ? *icon : CIcon{}});
    if (forms.size() > 1) return 2;
    constexpr int kOptions = 5004;
    dialog.Place(1007, {0, 0, 10, 10});  // the edits around a plot of 200 by 200
    dialog.Place(1008, {190, 0, 200, 10});
    dialog.Place(1006, {0, 190, 10, 200});
    dialog.OnInitDialog();
    dialog.OnCommand(kOptions);
    dialog.OnRButtonDown({192, 100});  // the last point, in the middle of the right edge
    return 2;
  }
  std::vector<Form> forms;

 private:
  CApplication *m_before;
};

std::vector<Form> FormsOfTheLibrary() {
  CSpline table;
  table.Add(0, 0);
  table.Add(8, 0);
  table.MaxX(8);
  FormReader reader;
  CSpline::DoModal(table);
  return reader.forms;
}

// ---- What the resources say ----------------------------------------------------------------------

HMODULE Library() {
  return ::GetModuleHandleA("QuillavenLib.dll");
}

std::vector<unsigned char> Resource(int id, char const *type) {
  HRSRC const found = ::FindResourceA(Library(), MAKEINTRESOURCEA(id), type);
  if (found == nullptr) return {};
  auto const *bytes =
      static_cast<unsigned char const *>(::LockResource(::LoadResource(Library(), found)));
  return {bytes, bytes + ::SizeofResource(Library(), found)};
}

// Reads the bytes of a DLGTEMPLATEEX one by one; an end that comes too early is thrown.
class FormBytes {
 public:
  explicit FormBytes(std::vector<unsigned char> bytes) : m_bytes(std::move(bytes)) {}
  unsigned int Byte() { return m_bytes.at(m_at++); }
  unsigned int Word() {
    unsigned int const low = Byte();
    return low | Byte() << 8;
  }
  DWORD Long() {
    DWORD const low = Word();
    return low | static_cast<DWORD>(Word()) << 16;
  }
  CRect Place() {
    int const x = static_cast<std::int16_t>(Word());
    int const y = static_cast<std::int16_t>(Word());
    int const width = static_cast<std::int16_t>(Word());
    return {x, y, x + width, y + static_cast<std::int16_t>(Word())};
  }
  std::string Text() {
    std::string text;
    while (unsigned int const letter = Word()) text += static_cast<char>(letter);
    return text;
  }
  void Align() {
    while (m_at % 4 != 0) ++m_at;
  }

 private:
  std::vector<unsigned char> m_bytes;
  std::size_t m_at = 0;
};

struct Head {
  DWORD style = 0;
  unsigned int controls = 0;
  CRect place;
  std::string title;
  unsigned int points = 0;
  std::string font;
};

Head ReadHead(FormBytes &bytes) {
  Head head;
  EXPECT_EQ(bytes.Word(), 1U) << "version";
  EXPECT_EQ(bytes.Word(), 0xFFFFU) << "of the extended kind";
  bytes.Long();  // help
  bytes.Long();  // extended style
  head.style = bytes.Long();
  head.controls = bytes.Word();
  head.place = bytes.Place();
  EXPECT_EQ(bytes.Word(), 0U) << "no menu";
  EXPECT_EQ(bytes.Word(), 0U) << "the class of dialogs";
  head.title = bytes.Text();
  head.points = bytes.Word();
  EXPECT_EQ(bytes.Word(), static_cast<unsigned int>(FW_NORMAL));
  EXPECT_EQ(bytes.Byte(), 0U) << "upright";
  EXPECT_EQ(bytes.Byte(), static_cast<unsigned int>(DEFAULT_CHARSET));
  head.font = bytes.Text();
  return head;
}

struct Item {
  DWORD style = 0;
  CRect place;
  int id = 0;
  unsigned int windowClass = 0;
  std::string text;
};

Item ReadItem(FormBytes &bytes) {
  Item item;
  bytes.Align();
  bytes.Long();  // help
  bytes.Long();  // extended style
  item.style = bytes.Long();
  item.place = bytes.Place();
  item.id = static_cast<int>(bytes.Long());
  EXPECT_EQ(bytes.Word(), 0xFFFFU) << "a class of the system";
  item.windowClass = bytes.Word();
  item.text = bytes.Text();
  EXPECT_EQ(bytes.Word(), 0U) << "no data of its own";
  return item;
}

// ---- Both ----------------------------------------------------------------------------------------

struct Sort {
  unsigned int windowClass;
  DWORD mask;  // of the styles that make the kind
  DWORD style;
};

Sort SortOf(CControl const &control) {
  constexpr unsigned int kButton = 0x80;
  constexpr unsigned int kEdit = 0x81;
  constexpr unsigned int kText = 0x82;
  constexpr unsigned int kList = 0x83;
  constexpr DWORD kEditStyles = ES_RIGHT | ES_CENTER | ES_READONLY | ES_AUTOHSCROLL | ES_MULTILINE;
  switch (control.kind) {
    case Kind::text:
      return {kText, SS_TYPEMASK, SS_LEFT};
    case Kind::button:
      return {kButton, BS_TYPEMASK | WS_TABSTOP, BS_PUSHBUTTON | WS_TABSTOP};
    case Kind::defaultButton:
      return {kButton, BS_TYPEMASK | WS_TABSTOP, BS_DEFPUSHBUTTON | WS_TABSTOP};
    case Kind::edit:
      return {kEdit, kEditStyles | WS_BORDER | WS_TABSTOP,
              static_cast<DWORD>((control.rightAligned ? ES_RIGHT : 0) |
                                 (control.readOnly ? ES_READONLY : 0) |
                                 (control.scrolls ? ES_AUTOHSCROLL : 0) | WS_BORDER | WS_TABSTOP)};
    case Kind::listBox:
      return {kList, LBS_SORT | LBS_NOTIFY | LBS_OWNERDRAWFIXED | LBS_MULTIPLESEL, LBS_NOTIFY};
    case Kind::checkBox:
      return {kButton, BS_TYPEMASK | WS_TABSTOP, BS_AUTOCHECKBOX | WS_TABSTOP};
    case Kind::radioButton:
      return {kButton, BS_TYPEMASK | WS_TABSTOP, BS_RADIOBUTTON};
  }
  return {};
}

void ExpectSamePlace(CRect const &found, CRect const &expected) {
  EXPECT_EQ(found.left, expected.left);
  EXPECT_EQ(found.top, expected.top);
  EXPECT_EQ(found.right, expected.right);
  EXPECT_EQ(found.bottom, expected.bottom);
}

void ExpectSame(Item const &item, CControl const &control) {
  SCOPED_TRACE("control " + std::to_string(control.id) + " '" + control.text + "'");
  EXPECT_EQ(item.id, control.id);
  EXPECT_EQ(item.text, control.text);
  ExpectSamePlace(item.place, control.place);
  Sort const sort = SortOf(control);
  EXPECT_EQ(item.windowClass, sort.windowClass);
  EXPECT_EQ(item.style & sort.mask, sort.style);
  EXPECT_EQ(item.style & (WS_CHILD | WS_VISIBLE), WS_CHILD | WS_VISIBLE);
}

void ExpectSame(std::vector<unsigned char> const &resource, Form const &expected) {
  CDialogTemplate const &form = expected.form;
  FormBytes bytes(resource);
  Head const head = ReadHead(bytes);
  EXPECT_EQ(head.title, form.title);
  ExpectSamePlace(head.place, {0, 0, form.width, form.height});
  EXPECT_EQ(head.font, form.font);
  EXPECT_EQ(head.points, static_cast<unsigned int>(form.fontPoints));
  constexpr DWORD kNeeded = DS_SETFONT | WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_CLIPCHILDREN;
  EXPECT_EQ(head.style & kNeeded, kNeeded);
  EXPECT_EQ((head.style & WS_MINIMIZEBOX) != 0, expected.hasIcon);
  ASSERT_EQ(head.controls, form.controls.size());
  for (CControl const &control : form.controls) ExpectSame(ReadItem(bytes), control);
}

TEST(DialogResources, AreTheTemplatesOfTheDialogs) {
  std::vector<Form> const forms = FormsOfTheLibrary();
  ASSERT_EQ(forms.size(), 3U);
  std::vector<int> ids;
  for (Form const &form : forms) {
    SCOPED_TRACE(form.form.title);
    ids.push_back(form.form.resource);
    std::vector<unsigned char> const resource = Resource(form.form.resource, RT_DIALOG);
    ASSERT_FALSE(resource.empty());
    ExpectSame(resource, form);
  }
  EXPECT_EQ(ids, (std::vector<int>{102, 5001, 5002}));
}

// One picture of 32 by 32 pixels in 16 colours: colours from the bottom row up, two pixels a byte,
// then a mask of one bit a pixel.
TEST(DialogResources, HaveTheIconOfTheTool) {
  constexpr int kSize = 32;
  constexpr std::size_t kColours = 16;
  std::vector<Form> const forms = FormsOfTheLibrary();
  CIcon const &icon = forms.at(0).icon;
  ASSERT_EQ(icon.width, kSize);
  ASSERT_EQ(icon.height, kSize);
  std::vector<unsigned char> group = Resource(5000, RT_GROUP_ICON);
  ASSERT_EQ(group.size(), 6U + 14U) << "one picture";
  int const picture = group[18] | group[19] << 8;
  std::vector<unsigned char> const bytes = Resource(picture, RT_ICON);
  BITMAPINFOHEADER head{};
  constexpr std::size_t kPalette = sizeof head;
  constexpr std::size_t kPixels = kPalette + kColours * 4;
  constexpr std::size_t kMask = kPixels + kSize * kSize / 2;
  ASSERT_EQ(bytes.size(), kMask + kSize * kSize / 8);
  std::memcpy(&head, bytes.data(), sizeof head);
  EXPECT_EQ(head.biBitCount, 4);
  for (int y = 0; y < kSize; ++y) {
    for (int x = 0; x < kSize; ++x) {
      auto const row = static_cast<std::size_t>(kSize - 1 - y);
      auto const column = static_cast<std::size_t>(x);
      unsigned int const pair = bytes[kPixels + row * kSize / 2 + column / 2];
      std::size_t const colour = kPalette + (x % 2 == 0 ? pair >> 4 : pair & 0xF) * 4;
      bool const transparent =
          (bytes[kMask + row * kSize / 8 + column / 8] >> (7 - x % 8) & 1) != 0;
      unsigned long const found = transparent
                                      ? CIcon::kTransparent
                                      : RGB(bytes[colour + 2], bytes[colour + 1], bytes[colour]);
      EXPECT_EQ(found, icon.pixels[static_cast<std::size_t>(y * kSize + x)]) << x << ", " << y;
    }
  }
}

// The system itself takes them, too.
TEST(DialogResources, OpenAsDialogs) {
  for (int const id : {102, 5001, 5002}) {
    HWND const dialog = ::CreateDialogParamA(Library(), MAKEINTRESOURCEA(id), nullptr, nullptr, 0);
    EXPECT_NE(dialog, nullptr) << id;
    EXPECT_NE(::GetDlgItem(dialog, IDOK), nullptr) << id;
    ::DestroyWindow(dialog);
  }
}

}  // namespace
