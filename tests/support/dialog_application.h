// An application that shows dialogs to a script instead of a user: it lays a dialog out with two
// pixels for each dialog unit, opens it, and lets the script work it. In force as long as it lives.
//
//   DialogApplication application;
//   application.scripts = {[](CDialog &dialog) { dialog.Press(1); }};   // one for each dialog
//   EXPECT_EQ(CSpline::DoModal(table), 1U);
//
// A dialog that its script leaves open is cancelled, and so is one without a script.

#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include <quillaven/editor/dialog.h>

#include "tests/support/recording_application.h"

inline CRect InPixels(CRect const &units) {
  return {2 * units.left, 2 * units.top, 2 * units.right, 2 * units.bottom};
}

inline void OpenInPixels(CDialog &dialog) {
  for (CControl const &control : dialog.Controls())
    dialog.Place(control.id, InPixels(control.place));
  dialog.Resize(InPixels({0, 0, dialog.Template().width, dialog.Template().height}), false);
  dialog.OnInitDialog();
}

class DialogApplication : public RecordingApplication {
 public:
  unsigned int RunModal(CDialog &dialog) override {
    ++opened;
    OpenInPixels(dialog);
    if (!scripts.empty()) {
      auto const script = scripts.front();
      scripts.erase(scripts.begin());
      script(dialog);
    }
    return dialog.Result() != 0 ? dialog.Result() : CDialog::kCancel;
  }

  std::vector<std::function<void(CDialog &)>> scripts;
  std::size_t opened = 0;
};
