#include "desktop/wx/dialog_window.h"

#include <algorithm>
#include <wx/button.h>
#include <wx/checkbox.h>
#include <wx/dcbuffer.h>
#include <wx/icon.h>
#include <wx/iconbndl.h>
#include <wx/image.h>
#include <wx/listbox.h>
#include <wx/radiobut.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>
#include <wx/tooltip.h>
#include <wx/utils.h>

#include "desktop/first_focus.h"
#include "desktop/wx/toolkit.h"

namespace {

using Kind = CControl::Kind;

wxColour ColourOf(unsigned long colour) {
  return {static_cast<unsigned char>(colour), static_cast<unsigned char>(colour >> 8),
          static_cast<unsigned char>(colour >> 16)};
}

wxRect RectOf(CRect const &rectangle) {
  return {rectangle.left, rectangle.top, rectangle.right - rectangle.left,
          rectangle.bottom - rectangle.top};
}

wxImage ImageOf(CIcon const &icon) {
  wxImage image(icon.width, icon.height);
  image.SetAlpha();
  for (int y = 0; y < icon.height; ++y) {
    for (int x = 0; x < icon.width; ++x) {
      unsigned long const pixel = icon.pixels[static_cast<std::size_t>(y * icon.width + x)];
      wxColour const colour = ColourOf(pixel);
      image.SetRGB(x, y, colour.Red(), colour.Green(), colour.Blue());
      image.SetAlpha(x, y, pixel == CIcon::kTransparent ? wxALPHA_TRANSPARENT : wxALPHA_OPAQUE);
    }
  }
  return image;
}

wxIconBundle LargeAndSmall(CIcon const &icon) {
  wxIconBundle bundle;
  wxImage const image = ImageOf(icon);
  for (int const size : {icon.width, icon.width / 2}) {
    wxIcon one;
    one.CopyFromBitmap(wxBitmap(image.Scale(size, size, wxIMAGE_QUALITY_HIGH)));
    bundle.AddIcon(one);
  }
  return bundle;
}

// Carries out one operation after the other.
class Painter {
 public:
  Painter(wxDC &dc, CIcon const *icon) : m_dc(dc), m_icon(icon) {}

  void Carry(CDrawOperation const &operation) {
    wxRect const place = RectOf(operation.place);
    wxPoint const point(operation.place.left, operation.place.top);
    switch (operation.kind) {
      case CDrawOperation::Kind::pen:
        return m_dc.SetPen(wxPen(ColourOf(operation.colour), operation.width));
      case CDrawOperation::Kind::brush:
        return m_dc.SetBrush(wxBrush(ColourOf(operation.colour)));
      case CDrawOperation::Kind::rectangle:
        return m_dc.DrawRectangle(place);
      case CDrawOperation::Kind::ellipse:
        // The toolkit's outline goes round the place, and this one lies within it.
        return m_dc.DrawEllipse(place.x, place.y, place.width - 1, place.height - 1);
      case CDrawOperation::Kind::moveTo:
        FinishLine();
        m_line = {point};
        return;
      case CDrawOperation::Kind::lineTo:
        return m_line.push_back(point);
      case CDrawOperation::Kind::icon:
        if (m_icon != nullptr)
          m_dc.DrawBitmap(wxBitmap(ImageOf(*m_icon)), place.GetTopLeft(), true);
        return;
    }
  }

  // Lines that follow one another are one stroke, which the toolkit draws much faster. The next one
  // begins where this ends, with another pen, too.
  void FinishLine() {
    if (m_line.empty()) return;
    wxPoint const end = m_line.back();
    if (m_line.size() > 1) {
      m_line.back() = BeforeEnd(m_line[m_line.size() - 2], end);
      m_dc.DrawLines(static_cast<int>(m_line.size()), m_line.data());
    }
    m_line = {end};
  }

 private:
  // The last pixel of a line is not drawn, and the toolkit would draw it. It shows where a line goes
  // from edge to edge of a rectangle.
  static wxPoint BeforeEnd(wxPoint from, wxPoint end) {
    if (from.x != end.x && from.y != end.y) return end;
    return {end.x + (from.x > end.x) - (from.x < end.x),
            end.y + (from.y > end.y) - (from.y < end.y)};
  }

  wxDC &m_dc;
  CIcon const *m_icon;
  std::vector<wxPoint> m_line;
};

// The room of a text in a font that is wider than the template's: it grows to the left, away from
// the edit that it belongs to.
wxRect RoomFor(wxWindow const &label, wxRect const &place) {
  int const width = std::max(place.width, label.GetBestSize().x);
  return {std::max(0, place.x + place.width - width), place.y, width, place.height};
}

// Gives a control the font of its window, or a smaller one in which a text is not wider than the
// control. False if it still is; smaller letters could not be read.
bool FitFont(wxWindow &control, wxString const &text) {
  constexpr int kFrame = 16;  // what the toolkit keeps free at the sides
  for (float const scale : {1.0F, 0.85F, 0.7F}) {
    control.SetFont(control.GetParent()->GetFont().Scaled(scale));
    if (control.GetTextExtent(text).x + kFrame <= control.GetSize().x) return true;
  }
  return false;
}

// A text that nobody can scroll: what is cut is told to who points at it.
void FitText(wxTextCtrl &edit, wxString const &text) {
  if (FitFont(edit, text)) {
    edit.UnsetToolTip();
  } else {
    edit.SetToolTip(text);
  }
}

void FitRows(wxListBox &list, wxArrayString const &rows) {
  auto const width = [&](wxString const &row) { return list.GetParent()->GetTextExtent(row).x; };
  auto const widest =
      std::max_element(rows.begin(), rows.end(),
                       [&](wxString const &a, wxString const &b) { return width(a) < width(b); });
  if (widest != rows.end()) FitFont(list, *widest);
}

void Draw(wxDC &dc, CDrawing const &drawing, CIcon const *icon) {
  Painter painter(dc, icon);
  for (CDrawOperation const &operation : drawing.Operations()) {
    bool const ofLine = operation.kind == CDrawOperation::Kind::moveTo ||
                        operation.kind == CDrawOperation::Kind::lineTo;
    if (!ofLine) painter.FinishLine();
    painter.Carry(operation);
  }
  painter.FinishLine();
}

}  // namespace

DialogWindow::DialogWindow(wxWindow *parent, CDialog &dialog)
    : wxDialog(parent, wxID_ANY, ToolkitText(dialog.Title().c_str()), wxDefaultPosition,
               wxDefaultSize, wxDEFAULT_DIALOG_STYLE | wxMINIMIZE_BOX),
      m_dialog(dialog),
      m_panel(new wxPanel(this)) {
  m_panel->SetBackgroundStyle(wxBG_STYLE_PAINT);
  CDialogTemplate const &form = dialog.Template();
  SetClientSize(InPixels({0, 0, form.width, form.height}).GetSize());
  for (CControl const &control : dialog.Controls())
    m_shown.push_back({MakeControl(control), {}, false});
  if (CIcon const *icon = dialog.OnQueryDragIcon()) SetIcons(LargeAndSmall(*icon));
  BindMouse();
  m_panel->Bind(wxEVT_PAINT, &DialogWindow::OnPaint, this);
  Bind(wxEVT_CHAR_HOOK, &DialogWindow::OnKey, this);
  Bind(wxEVT_CLOSE_WINDOW, [this](wxCloseEvent &) {
    Tell([this] { m_dialog.OnCommand(static_cast<int>(CDialog::kCancel)); });
  });
  Bind(wxEVT_SIZE, [this](wxSizeEvent &event) {
    TellSize();
    event.Skip();
  });
  Bind(wxEVT_IDLE, [this](wxIdleEvent &event) {
    ShowState();  // the program that owns the dialog may have sent it a command
    CatchUp();
    event.Skip();
  });
  Bind(wxEVT_ICONIZE, [this](wxIconizeEvent &) {
    TellSize();
    ShowState();
    if (!IsIconized()) ChooseFocus();  // hidden controls have lost it
    Refresh();  // a minimised window is another picture, and some desktops show it
  });
}

DialogWindow::~DialogWindow() {
  if (m_panel->HasCapture()) m_panel->ReleaseMouse();
}

// The toolkit's own conversion of dialog units, edge by edge, so that edges that meet still meet.
wxRect DialogWindow::InPixels(CRect const &units) const {
  wxPoint const first = ConvertDialogToPixels(wxPoint(units.left, units.top));
  wxPoint const end = ConvertDialogToPixels(wxPoint(units.right, units.bottom));
  return {first, wxSize(end.x - first.x, end.y - first.y)};
}

wxWindow *DialogWindow::MakeControl(CControl const &control) {
  wxRect const place = InPixels(control.place);
  wxPoint const at = place.GetTopLeft();
  wxSize const size = place.GetSize();
  wxString const text = ToolkitText(control.text.c_str());
  int const id = control.id;
  auto const press = [this, id](wxCommandEvent &) { Tell([this, id] { m_dialog.Press(id); }); };
  wxWindow *window = nullptr;
  switch (control.kind) {
    case Kind::button:
    case Kind::defaultButton:
      window = new wxButton(m_panel, wxID_ANY, text, at, size);
      if (control.kind == Kind::defaultButton) static_cast<wxButton *>(window)->SetDefault();
      window->Bind(wxEVT_BUTTON, press);
      break;
    case Kind::checkBox:
      window = new wxCheckBox(m_panel, wxID_ANY, text, at, size);
      window->Bind(wxEVT_CHECKBOX, press);
      break;
    case Kind::radioButton:
      window = new wxRadioButton(m_panel, wxID_ANY, text, at, size);
      window->Bind(wxEVT_RADIOBUTTON, press);
      break;
    case Kind::listBox:
      window = new wxListBox(m_panel, wxID_ANY, at, size);
      window->Bind(wxEVT_LISTBOX_DCLICK, [this, id](wxCommandEvent &) {
        Tell([this, id] { m_dialog.OnCommand(id, CDialog::kDoubleClicked); });
      });
      break;
    case Kind::edit:
      window = MakeEdit(control, place);
      break;
    case Kind::text:
      window = new wxStaticText(m_panel, wxID_ANY, text, at, size, wxST_NO_AUTORESIZE);
      window->SetSize(RoomFor(*window, place));
      break;
  }
  window->SetName(wxString::Format("%d", id));
  return window;
}

wxWindow *DialogWindow::MakeEdit(CControl const &control, wxRect const &place) {
  long const style =
      (control.readOnly ? wxTE_READONLY : 0) | (control.rightAligned ? wxTE_RIGHT : 0);
  auto *edit = new wxTextCtrl(m_panel, wxID_ANY, ToolkitText(control.text.c_str()),
                              place.GetTopLeft(), place.GetSize(), style);
  int const id = control.id;
  edit->Bind(wxEVT_TEXT, [this, id, edit](wxCommandEvent &) {
    Tell([this, id, edit] { m_dialog.Type(id, edit->GetValue().utf8_string()); });
  });
  return edit;
}

void DialogWindow::BindMouse() {
  using Handler = void (CDialog::*)(CPoint);
  auto const bind = [this](auto const &type, Handler handler) {
    m_panel->Bind(type, [this, handler](wxMouseEvent &event) {
      CPoint const point{event.GetX(), event.GetY()};
      if (event.LeftUp()) TellMove(event.GetPosition());
      m_told = event.GetPosition();
      Tell([this, handler, point] { (m_dialog.*handler)(point); });
      event.Skip();  // the panel takes the focus
    });
  };
  bind(wxEVT_LEFT_DOWN, &CDialog::OnLButtonDown);
  bind(wxEVT_MOTION, &CDialog::OnMouseMove);
  bind(wxEVT_LEFT_UP, &CDialog::OnLButtonUp);
  bind(wxEVT_LEFT_DCLICK, &CDialog::OnLButtonDblClk);
  bind(wxEVT_RIGHT_DOWN, &CDialog::OnRButtonDown);
  // Another window has taken the mouse: the button will come up without us.
  m_panel->Bind(wxEVT_MOUSE_CAPTURE_LOST, [this](wxMouseCaptureLostEvent &) {
    Tell([this] { m_dialog.OnLButtonUp({0, 0}); });
  });
}

void DialogWindow::TellMove(wxPoint to) {
  if (to == m_told) return;
  m_told = to;
  Tell([this, to] { m_dialog.OnMouseMove({to.x, to.y}); });
}

// The toolkit tells no move that comes while another is worked off, and the last of a drag may be one:
// the dialog hears of it here, or when the button comes up.
void DialogWindow::CatchUp() {
  if (!m_panel->HasCapture()) return;
  wxMouseState const mouse = wxGetMouseState();
  if (mouse.LeftIsDown()) TellMove(m_panel->ScreenToClient(mouse.GetPosition()));
}

// Escape cancels. Return presses the button that has the focus, and OK where no button has it. The
// commands of OK and Cancel need no button that carries them.
void DialogWindow::OnKey(wxKeyEvent &event) {
  int const key = event.GetKeyCode();
  int id = -1;
  if (key == WXK_ESCAPE) id = static_cast<int>(CDialog::kCancel);
  if (key == WXK_RETURN || key == WXK_NUMPAD_ENTER) {
    auto const *button = dynamic_cast<wxButton *>(FindFocus());
    id = button != nullptr ? IdOf(button) : static_cast<int>(CDialog::kOk);
  }
  if (id == -1) return event.Skip();
  Tell([this, id] { m_dialog.OnCommand(id); });
}

void DialogWindow::OnPaint(wxPaintEvent & /*event*/) {
  wxAutoBufferedPaintDC dc(m_panel);
  dc.SetBackground(wxBrush(m_panel->GetBackgroundColour()));
  dc.Clear();
  if (m_failure != nullptr) return;
  CDrawing drawing;
  try {
    m_dialog.OnPaint(drawing);
  } catch (...) {  // no exception may pass through the toolkit
    m_failure = std::current_exception();
  }
  Draw(dc, drawing, m_dialog.OnQueryDragIcon());
  CallAfter([this] { ShowState(); });  // the paint sets controls, too
}

// The toolkit tells no size of a minimised window, whose picture is as large as before.
void DialogWindow::TellSize() {
  if (!IsIconized()) m_size = GetClientSize();
  m_dialog.Resize({0, 0, m_size.x, m_size.y}, IsIconized());
}

unsigned int DialogWindow::Run() {
  for (std::size_t i = 0; i < m_shown.size(); ++i) {
    wxRect const place = m_shown[i].window->GetRect();
    m_dialog.Place(m_dialog.Controls()[i].id,
                   {place.x, place.y, place.x + place.width, place.y + place.height});
  }
  TellSize();
  m_dialog.OnInitDialog();
  ShowState();
  ChooseFocus();
  CentreOnParent();
  ShowModal();
  if (m_failure != nullptr) std::rethrow_exception(m_failure);
  return m_dialog.Result() != 0 ? m_dialog.Result() : CDialog::kCancel;
}

void DialogWindow::ChooseFocus() {
  if (int const i = FirstFocus(m_dialog.Controls()); i >= 0)
    m_shown[static_cast<std::size_t>(i)].window->SetFocus();
}

void DialogWindow::Tell(std::function<void()> const &event) {
  if (m_failure != nullptr || m_dialog.Result() != 0) return;  // it is about to close
  try {
    event();
  } catch (...) {  // no exception may pass through the toolkit
    m_failure = std::current_exception();
  }
  ShowState();
}

void DialogWindow::ShowState() {
  if (m_failure != nullptr || m_dialog.Result() != 0) return Close();
  wxString const title = ToolkitText(m_dialog.Title().c_str());
  if (GetTitle() != title) SetTitle(title);
  for (std::size_t i = 0; i < m_shown.size(); ++i) ShowControl(m_dialog.Controls()[i], m_shown[i]);
  if (m_dialog.HasCapture() && !m_panel->HasCapture()) m_panel->CaptureMouse();
  if (!m_dialog.HasCapture() && m_panel->HasCapture()) m_panel->ReleaseMouse();
  if (int const focus = m_dialog.TakeFocusRequest(); focus != -1) {
    wxWindow *const window = WindowOf(focus);
    window->SetFocus();
    if (auto *edit = dynamic_cast<wxTextCtrl *>(window)) edit->SelectAll();
  }
  CRect invalid;
  if (m_dialog.TakeInvalidRect(invalid)) m_panel->RefreshRect(RectOf(invalid), false);
}

void DialogWindow::ShowControl(CControl const &control, Shown &shown) {
  wxWindow *const window = shown.window;
  bool const shows = control.shown && !IsIconized();  // minimised, the icon stands alone
  if (window->IsShown() != shows) window->Show(shows);
  if (auto *edit = dynamic_cast<wxTextCtrl *>(window)) {
    wxString const text = ToolkitText(control.text.c_str());
    if (edit->GetValue() != text) {
      edit->ChangeValue(text);
      if (control.readOnly) FitText(*edit, text);
    }
    if (edit->IsEditable() == control.readOnly) edit->SetEditable(!control.readOnly);
  } else if (auto *label = dynamic_cast<wxStaticText *>(window)) {
    wxString const text = ToolkitText(control.text.c_str());
    if (label->GetLabelText() == text) return;
    label->SetLabelText(text);
    label->SetSize(RoomFor(*label, InPixels(control.place)));
  } else if (auto *box = dynamic_cast<wxCheckBox *>(window)) {
    if (box->GetValue() != control.checked) box->SetValue(control.checked);
  } else if (auto *radio = dynamic_cast<wxRadioButton *>(window)) {
    // The toolkit has set a button that was pressed before the dialog sets it, in its next paint:
    // only what has changed in the dialog is followed. The toolkit puts the others of a group out by
    // itself, and lets none be put out alone.
    if (shown.checked == control.checked) return;
    shown.checked = control.checked;
    if (control.checked && !radio->GetValue()) radio->SetValue(true);
  } else if (auto *list = dynamic_cast<wxListBox *>(window)) {
    if (shown.rows == control.rows) return;
    shown.rows = control.rows;
    wxArrayString rows;
    for (std::string const &row : control.rows) rows.Add(ToolkitText(row.c_str()));
    FitRows(*list, rows);
    list->Set(rows);
  }
}

void DialogWindow::Close() {
  if (m_panel->HasCapture()) m_panel->ReleaseMouse();
  if (IsModal()) EndModal(m_dialog.Result() == CDialog::kOk ? wxID_OK : wxID_CANCEL);
}

int DialogWindow::IdOf(wxWindow const *window) const {
  for (std::size_t i = 0; i < m_shown.size(); ++i)
    if (m_shown[i].window == window) return m_dialog.Controls()[i].id;
  return -1;
}

wxWindow *DialogWindow::WindowOf(int id) const {
  for (std::size_t i = 0; i < m_shown.size(); ++i)
    if (m_dialog.Controls()[i].id == id) return m_shown[i].window;
  return m_panel;
}
