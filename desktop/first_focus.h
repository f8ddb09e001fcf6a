// Which control has the focus when a dialog opens.
//
//   if (int const i = FirstFocus(dialog.Controls()); i >= 0) windows[i]->SetFocus();

#pragma once

#include <algorithm>
#include <vector>

#include <quillaven/editor/dialog.h>

/// The place of the first edit that takes text; without one that of the default button; without that
/// one, too, -1.
inline int FirstFocus(std::vector<CControl> const &controls) {
  using Kind = CControl::Kind;
  auto const first = [&controls](auto const &takes) {
    auto const found = std::find_if(controls.begin(), controls.end(), takes);
    return found != controls.end() ? static_cast<int>(found - controls.begin()) : -1;
  };
  int const edit = first(
      [](CControl const &control) { return control.kind == Kind::edit && !control.readOnly; });
  if (edit >= 0) return edit;
  return first([](CControl const &control) { return control.kind == Kind::defaultButton; });
}
