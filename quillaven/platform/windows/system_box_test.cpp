#include <cstring>
#include <string>
#include <windows.h>

#include <gtest/gtest.h>

#include <quillaven/platform/application.h>

namespace {

// What the last box showed.
struct Seen {
  std::string title;
  std::string text;
  bool hasIcon = false;
};
Seen g_seen;

bool IsOfClass(HWND window, char const *expected) {
  char name[32] = "";
  ::GetClassNameA(window, name, sizeof name);
  return std::strcmp(name, expected) == 0;
}

std::string TextOf(HWND window) {
  char text[200] = "";
  ::GetWindowTextA(window, text, sizeof text);
  return text;
}

// The box's text is its last static control, behind the icon if there is one.
BOOL CALLBACK LookAtControl(HWND control, LPARAM /*unused*/) {
  if (!IsOfClass(control, "Static")) return TRUE;
  bool const isIcon = (::GetWindowLongA(control, GWL_STYLE) & SS_TYPEMASK) == SS_ICON;
  if (isIcon && ::SendMessageA(control, STM_GETICON, 0, 0) != 0) g_seen.hasIcon = true;
  if (!isIcon) g_seen.text = TextOf(control);
  return TRUE;
}

// Looks at the box that is about to get the keyboard, and presses OK.
LRESULT CALLBACK PressOk(int code, WPARAM window, LPARAM other) {
  auto *const box = reinterpret_cast<HWND>(window);
  if (code == HCBT_ACTIVATE && IsOfClass(box, "#32770")) {
    g_seen.title = TextOf(box);
    ::EnumChildWindows(box, LookAtControl, 0);
    ::PostMessageA(box, WM_COMMAND, IDOK, 0);
  }
  return ::CallNextHookEx(nullptr, code, window, other);
}

int ShowAndPressOk(char const *text, char const *title, unsigned int type) {
  g_seen = {};
  HHOOK const hook = ::SetWindowsHookExA(WH_CBT, PressOk, nullptr, ::GetCurrentThreadId());
  int const answer = CApplication().DoMessageBox(text, title, type, 0);
  ::UnhookWindowsHookEx(hook);
  return answer;
}

TEST(SystemBoxHere, IsARealOneWithItsTitleAndText) {
  EXPECT_EQ(ShowAndPressOk("a text\nof two lines", "a title", 0), IDOK);
  EXPECT_EQ(g_seen.title, "a title");
  EXPECT_EQ(g_seen.text, "a text\nof two lines");
  EXPECT_FALSE(g_seen.hasIcon);
}

TEST(SystemBoxHere, HasTheIconOfItsType) {
  EXPECT_EQ(ShowAndPressOk("careful", "a title", MB_ICONEXCLAMATION), IDOK);
  EXPECT_EQ(g_seen.text, "careful");
  EXPECT_TRUE(g_seen.hasIcon);
}

}  // namespace
