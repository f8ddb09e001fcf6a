// A dialog without a control, which paints a red line and goes on from its end with a blue one.

#pragma once

#include <quillaven/editor/dialog.h>

class CBareDialog : public CDialog {
 public:
  CBareDialog() : CDialog(Form()) {}
  void OnPaint(CDrawing &drawing) override {
    drawing.Pen(0x0000FF, 3);
    drawing.MoveTo(10, 20);
    drawing.LineTo(100, 20);
    drawing.Pen(0xFF0000, 3);
    drawing.LineTo(100, 80);
  }

 private:
  static CDialogTemplate Form() {
    CDialogTemplate form;
    form.title = "bare";
    form.width = 120;
    form.height = 80;
    return form;
  }
};
