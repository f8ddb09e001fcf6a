#include "desktop/windows/dialog_form.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <string>
#include <windows.h>

namespace {

using Kind = CControl::Kind;

constexpr unsigned int kButtonClass = 0x80;
constexpr unsigned int kEditClass = 0x81;
constexpr unsigned int kTextClass = 0x82;
constexpr unsigned int kListClass = 0x83;

unsigned int ClassOf(Kind kind) {
  switch (kind) {
    case Kind::edit:
      return kEditClass;
    case Kind::listBox:
      return kListClass;
    case Kind::text:
      return kTextClass;
    default:
      return kButtonClass;
  }
}

DWORD StyleOf(CControl const &control) {
  switch (control.kind) {
    case Kind::button:
      return BS_PUSHBUTTON | WS_TABSTOP;
    case Kind::defaultButton:
      return BS_DEFPUSHBUTTON | WS_TABSTOP;
    case Kind::checkBox:
      return BS_AUTOCHECKBOX | WS_TABSTOP;
    case Kind::radioButton:  // the dialog says which of them is checked, and that one is a tab stop
      return BS_RADIOBUTTON;
    case Kind::listBox:
      return LBS_NOTIFY | LBS_NOINTEGRALHEIGHT | WS_BORDER | WS_VSCROLL | WS_TABSTOP;
    case Kind::edit:
      return static_cast<DWORD>(WS_BORDER | WS_TABSTOP | (control.readOnly ? ES_READONLY : 0) |
                                (control.rightAligned ? ES_RIGHT : ES_LEFT) |
                                (control.scrolls ? ES_AUTOHSCROLL : 0));
    case Kind::text:
      break;
  }
  return SS_LEFT | WS_GROUP;
}

// The arrow keys go round in a group: radio buttons that follow one another are one.
bool StartsGroup(std::vector<CControl> const &controls, std::size_t i) {
  bool const isRadio = controls[i].kind == Kind::radioButton;
  return isRadio != (i > 0 && controls[i - 1].kind == Kind::radioButton);
}

class FormWriter {
 public:
  void Byte(unsigned int value) { m_bytes.push_back(static_cast<unsigned char>(value)); }
  void Word(unsigned int value) {
    Byte(value & 0xFF);
    Byte(value >> 8 & 0xFF);
  }
  void Long(DWORD value) {
    Word(value & 0xFFFF);
    Word(value >> 16);
  }
  void Place(CRect const &units) {
    for (int const value :
         {units.left, units.top, units.right - units.left, units.bottom - units.top}) {
      using Limits = std::numeric_limits<short>;
      int const held = std::clamp<int>(value, Limits::min(), Limits::max());
      Word(static_cast<unsigned int>(held) & 0xFFFF);
    }
  }
  // With a zero behind it.
  void Text(std::string const &text) {
    int const length = static_cast<int>(text.size());
    std::wstring wide(text.size(), L'\0');  // no text has more characters than bytes
    int const count =
        length > 0 ? ::MultiByteToWideChar(CP_ACP, 0, text.data(), length, wide.data(), length) : 0;
    for (int i = 0; i < count; ++i) Word(wide[static_cast<std::size_t>(i)]);
    Word(0);
  }
  void Align() {
    while (m_bytes.size() % sizeof(DWORD) != 0) Byte(0);
  }
  std::vector<unsigned char> Take() { return std::move(m_bytes); }

 private:
  std::vector<unsigned char> m_bytes;
};

void WriteHead(FormWriter &writer, CDialog const &dialog) {
  CDialogTemplate const &form = dialog.Template();
  bool const hasIcon = dialog.OnQueryDragIcon() != nullptr;
  writer.Word(1);       // version
  writer.Word(0xFFFF);  // of the extended kind
  writer.Long(0);       // help
  writer.Long(0);       // extended style
  writer.Long(DS_SETFONT | DS_MODALFRAME | DS_CENTER | WS_POPUP | WS_CAPTION | WS_SYSMENU |
              WS_CLIPCHILDREN | (hasIcon ? WS_MINIMIZEBOX : 0));
  writer.Word(static_cast<unsigned int>(form.controls.size()));
  writer.Place({0, 0, form.width, form.height});
  writer.Word(0);  // no menu
  writer.Word(0);  // the class of dialogs
  writer.Text(form.title);
  writer.Word(static_cast<unsigned int>(form.fontPoints));
  writer.Word(FW_NORMAL);
  writer.Byte(0);  // upright
  writer.Byte(DEFAULT_CHARSET);
  writer.Text(form.font);
}

void WriteControl(FormWriter &writer, CControl const &control, bool startsGroup) {
  writer.Align();
  writer.Long(0);  // help
  writer.Long(0);  // extended style
  writer.Long(WS_CHILD | (control.shown ? WS_VISIBLE : 0) | StyleOf(control) |
              (startsGroup ? WS_GROUP : 0));
  writer.Place(control.place);
  writer.Long(static_cast<DWORD>(control.id));
  writer.Word(0xFFFF);  // a class of the system, by its number
  writer.Word(ClassOf(control.kind));
  writer.Text(control.text);
  writer.Word(0);  // no data of its own
}

}  // namespace

std::vector<unsigned char> BuildForm(CDialog const &dialog) {
  FormWriter writer;
  WriteHead(writer, dialog);
  std::vector<CControl> const &controls = dialog.Template().controls;
  for (std::size_t i = 0; i < controls.size(); ++i)
    WriteControl(writer, controls[i], StartsGroup(controls, i));
  return writer.Take();
}
