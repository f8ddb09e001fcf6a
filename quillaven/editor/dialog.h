// A modal dialog as a model: its controls are data, events go in, and what it paints comes out.
//
//   class CMyApplication : public CApplication {
//     unsigned int RunModal(CDialog &dialog) override {
//       for (CControl const &control : dialog.Controls()) dialog.Place(control.id, Show(control));
//       dialog.OnInitDialog();
//       while (dialog.Result() == 0) Deliver(NextEvent(), dialog);   // dialog.Press(5004), ...
//       return dialog.Result();
//     }
//   };
//
// A dialog knows no window system. Whoever shows it makes a window of its size with its controls,
// tells where these lie in pixels, and calls OnInitDialog. From then on every event of the user is
// one call; after each call the window shows what Title, Controls and the requests say now. Places
// are in dialog units (a quarter of the width and an eighth of the height of a letter), pixels are
// those of the client area, counted from its top left corner.

#pragma once

#include <string>
#include <vector>

#include <quillaven/editor/drawing.h>
#include <quillaven/platform/api.h>
#include <quillaven/platform/geometry.h>

/// One control: what its template says, and the state that it is in.
struct CControl {
  enum class Kind { text, button, defaultButton, edit, listBox, checkBox, radioButton };

  int id = -1;  // -1: a text that nobody asks for
  Kind kind = Kind::text;
  std::string text;
  CRect place;  // in dialog units

  bool readOnly = false;  // edits
  bool rightAligned = false;
  bool scrolls = false;  // an edit that takes more text than it can show

  bool shown = true;
  bool checked = false;           // check boxes and radio buttons
  std::vector<std::string> rows;  // list boxes, in the order in which they are shown
  CRect pixels;                   // where the window has put it
};

/// What a dialog looks like before it opens. Boxes without a font of this name take their own.
struct CDialogTemplate {
  int resource = 0;  // of QuillavenLib.dll on Windows; 0 for the dialogs of a program
  std::string title;
  int width = 0;  // in dialog units
  int height = 0;
  std::vector<CControl> controls;
  std::string font = "MS Sans Serif";
  int fontPoints = 8;
};

/// A picture of width x height colours (0x00BBGGRR) row by row from the top.
struct CIcon {
  static constexpr unsigned long kTransparent = 0xFFFFFFFF;
  int width = 0;
  int height = 0;
  std::vector<unsigned long> pixels;
};

class QUILLAVEN_API CDialog {
 public:
  // Enumerators, for which a program needs no symbol of the library.
  // Results, and the ids of the buttons that end a dialog.
  enum : unsigned int { kOk = 1, kCancel = 2 };
  // Notification of a list box.
  enum : int { kDoubleClicked = 2 };

  explicit CDialog(CDialogTemplate form);
  CDialog(CDialog const &) = default;
  CDialog &operator=(CDialog const &) = default;
  virtual ~CDialog();

  /// Runs the dialog by the application in force and returns 1 for OK, 2 for Cancel. Each run begins
  /// with the title and the controls of the template.
  unsigned int DoModal();

  // What the window shows.

  CDialogTemplate const &Template() const { return m_template; }
  std::string const &Title() const { return m_strTitle; }
  std::vector<CControl> const &Controls() const { return m_controls; }
  /// Throws std::out_of_range for an id that is none.
  CControl const &Control(int id) const;
  /// The query of the drag icon: null if the dialog has none of its own.
  virtual CIcon const *OnQueryDragIcon() const;

  /// 0 as long as the dialog is open, then 1 or 2. The window closes as soon as it is not 0.
  unsigned int Result() const { return m_nResult; }
  /// Whether mouse events outside the window belong to the dialog.
  bool HasCapture() const { return m_bCaptured; }
  /// The control that the dialog wants the focus in, -1 if there is no such wish. Asking takes it.
  int TakeFocusRequest();
  /// Whether something is to be painted anew, and the rectangle that holds it. Asking takes it.
  bool TakeInvalidRect(CRect &rectangle);

  // What the window tells. Before OnInitDialog: where each control lies, in pixels.

  void Place(int id, CRect const &pixels);
  /// The size of the client area, and whether the dialog is shown as an icon alone.
  void Resize(CRect const &client, bool minimised);
  /// The window exists. Fills the controls; 1: the window chooses the control with the focus.
  virtual int OnInitDialog();
  /// Asks for the picture of the client area behind the controls. May throw; the dialog is to be
  /// closed then as if cancelled, and the exception to be thrown on out of RunModal.
  virtual void OnPaint(CDrawing &drawing);
  virtual void OnLButtonDown(CPoint point);
  virtual void OnMouseMove(CPoint point);
  virtual void OnLButtonUp(CPoint point);
  /// A second press within the time of a double click; there is no OnLButtonDown for it.
  virtual void OnLButtonDblClk(CPoint point);
  virtual void OnRButtonDown(CPoint point);
  /// A command of a control or of the dialog's owner; ids that mean nothing are left alone. 1 and 2
  /// end the dialog, OK only after every text could be read.
  virtual void OnCommand(int id, int notification = 0);

  /// A button, check box or radio button is pressed: a check box turns by itself, and the command
  /// follows. Hidden controls cannot be pressed.
  void Press(int id);
  /// The text of an edit becomes another. Nothing happens if it is read-only, hidden or no edit.
  void Type(int id, std::string const &text);

 protected:
  /// A control whose state is to change.
  CControl &Changed(int id);
  void Title(std::string const &title) { m_strTitle = title; }
  CRect const &Client() const { return m_client; }
  bool IsMinimised() const { return m_bMinimised; }

  /// Moves the fields to the controls, or with `save` the controls' values to the fields. False if
  /// a text is no number: it was told in a box then, and its control asks for the focus.
  bool UpdateData(bool save);
  /// Says which field belongs to which control, by the two operations below.
  virtual bool DoDataExchange(bool save);
  bool ExchangeNumber(bool save, int id, float &value);
  void ExchangeCheck(bool save, int id, int &value);

  virtual void OnOK();
  virtual void OnCancel();
  void EndDialog(unsigned int result) { m_nResult = result; }
  void SetCapture() { m_bCaptured = true; }
  void ReleaseCapture() { m_bCaptured = false; }
  void SetFocus(int id) { m_nFocus = id; }
  void InvalidateRect(CRect const &rectangle);

 private:
  CControl *Find(int id);

  CDialogTemplate m_template;
  std::string m_strTitle;
  std::vector<CControl> m_controls;
  CRect m_client;
  CRect m_invalid;
  unsigned int m_nResult = 0;
  int m_nFocus = -1;
  bool m_bMinimised = false;
  bool m_bCaptured = false;
  bool m_bInvalid = false;
};
