#include <windows.h>

#include <gtest/gtest.h>

#include <quillaven/platform/application.h>

#include "tests/support/seen_box.h"

namespace {

SeenBox g_seen;  // the last box

// Looks at the box that is about to get the keyboard, and presses OK.
LRESULT CALLBACK PressOk(int code, WPARAM window, LPARAM other) {
  auto *const box = reinterpret_cast<HWND>(window);
  if (code == HCBT_ACTIVATE && IsDialogBox(box)) {
    g_seen = LookAtBox(box);
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
