// Controls of a template in a line each, by position and size in dialog units.
//
//   form.controls = {Item(Kind::defaultButton, 1, "OK", 305, 183, 33, 14), ...};

#pragma once

#include <quillaven/editor/dialog.h>

constexpr int kNoId = -1;

inline CControl Item(CControl::Kind kind, int id, char const *text, int x, int y, int width,
                     int height) {
  CControl control;
  control.id = id;
  control.kind = kind;
  control.text = text;
  control.place = {x, y, x + width, y + height};
  return control;
}

inline CControl ReadOnlyEdit(int id, int x, int y, int width, int height) {
  CControl control = Item(CControl::Kind::edit, id, "", x, y, width, height);
  control.readOnly = true;
  return control;
}
