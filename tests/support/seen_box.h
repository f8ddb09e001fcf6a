// What a message box of Windows shows.
//
//   if (code == HCBT_ACTIVATE && IsDialogBox(window)) boxes.push_back(LookAtBox(window));

#pragma once

#include <cstring>
#include <string>
#include <windows.h>

struct SeenBox {
  std::string text;
  std::string title;
  HWND owner = nullptr;
  bool hasIcon = false;
};

inline bool IsOfClass(HWND window, char const *expected) {
  char name[32] = "";
  ::GetClassNameA(window, name, sizeof name);
  return std::strcmp(name, expected) == 0;
}

/// Whether a window is a dialog, of which a message box is one.
inline bool IsDialogBox(HWND window) {
  return IsOfClass(window, "#32770");
}

inline std::string WindowText(HWND window) {
  char text[500] = "";
  ::GetWindowTextA(window, text, sizeof text);
  return text;
}

// A box's text is its last static control, behind the icon if there is one.
inline BOOL CALLBACK LookAtControlOfBox(HWND control, LPARAM seen) {
  if (!IsOfClass(control, "Static")) return TRUE;
  auto &box = *reinterpret_cast<SeenBox *>(seen);
  if ((::GetWindowLongA(control, GWL_STYLE) & SS_TYPEMASK) == SS_ICON) {
    if (::SendMessageA(control, STM_GETICON, 0, 0) != 0) box.hasIcon = true;
  } else {
    box.text = WindowText(control);
  }
  return TRUE;
}

inline SeenBox LookAtBox(HWND window) {
  SeenBox box{{}, WindowText(window), ::GetWindow(window, GW_OWNER), false};
  ::EnumChildWindows(window, LookAtControlOfBox, reinterpret_cast<LPARAM>(&box));
  return box;
}
