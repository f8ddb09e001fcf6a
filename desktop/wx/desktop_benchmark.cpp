// How often the real window repaints while a point is dragged, and how long one picture takes.
//
// "frames" are pictures a second, "limit" is what a user takes for smooth. Needs a display:
//   desktop/on_virtual_display.sh build/release/desktop/wx/desktop_benchmark

#include <X11/Xlib.h>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <wx/app.h>
#include <wx/dialog.h>
#include <wx/modalhook.h>
#include <wx/panel.h>
#include <wx/uiaction.h>

#include <quillaven/desktop/desktop_application.h>
#include <quillaven/editor/dialog.h>
#include <quillaven/functions/spline.h>

#include "tests/support/spline_tables.h"

namespace {

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

// Moves the pointer by itself: the toolkit's simulator waits after each move.
class Pointer {
 public:
  Pointer() : m_display(XOpenDisplay(nullptr)) {}
  ~Pointer() {
    if (m_display != nullptr) XCloseDisplay(m_display);
  }
  Pointer(Pointer const &) = delete;
  Pointer &operator=(Pointer const &) = delete;

  void MoveTo(wxPoint onScreen) {
    if (m_display == nullptr) return;
    XWarpPointer(m_display, None, DefaultRootWindow(m_display), 0, 0, 0, 0, onScreen.x, onScreen.y);
    XFlush(m_display);
  }

 private:
  Display *m_display;
};

struct Rates {
  double frames = 0;
  double moves = 0;
};

// Drags the point in the middle up and down for some seconds, as fast as events can be sent.
Rates Drag(wxDialog &window, double seconds) {
  wxWindow &panel = *window.GetChildren().front();
  int frames = 0;
  panel.Bind(wxEVT_PAINT, [&frames](wxPaintEvent &event) {
    ++frames;
    event.Skip();
  });
  wxRect const left = wxWindow::FindWindowByName("1007", &window)->GetRect();
  wxRect const right = wxWindow::FindWindowByName("1008", &window)->GetRect();
  wxRect const top = wxWindow::FindWindowByName("1005", &window)->GetRect();
  wxRect const bottom = wxWindow::FindWindowByName("1006", &window)->GetRect();
  double const width = right.x + right.width - left.x - 16;
  double const height = bottom.y + bottom.height - top.y - 16;
  int const x = left.x + 8 + static_cast<int>(CSpline::Root(9) / 8 * width);
  int const y = top.y + 8 + static_cast<int>(0.4 * height);
  wxUIActionSimulator mouse;
  auto const settle = [](int milliseconds) {
    for (auto const start = Clock::now(); SecondsSince(start) < milliseconds / 1000.0;) wxYield();
  };
  settle(500);
  mouse.MouseMove(panel.ClientToScreen(wxPoint(x, y)));
  settle(100);
  mouse.MouseDown();
  settle(100);
  frames = 0;
  int moves = 0;
  Pointer pointer;
  auto const start = Clock::now();
  for (; SecondsSince(start) < seconds; ++moves) {
    int const up = 40 - std::abs(moves % 160 - 80);
    pointer.MoveTo(panel.ClientToScreen(wxPoint(x, y + up)));
    settle(2);
  }
  Rates const rates{frames / SecondsSince(start), moves / SecondsSince(start)};
  mouse.MouseUp();
  settle(100);
  return rates;
}

class Hook : public wxModalDialogHook {
 public:
  Hook() { Register(); }
  ~Hook() override { Unregister(); }
  double seconds = 3;
  Rates rates;

 protected:
  int Enter(wxDialog *dialog) override {
    dialog->CallAfter([this, dialog] {
      rates = Drag(*dialog, seconds);
      dialog->Close();
    });
    return wxID_NONE;
  }
};

}  // namespace

int main() {
  constexpr double kSmooth = 30;
  CDesktopApplication application;
  if (!application.HasDisplay()) {
    std::fprintf(stderr, "skipped: there is no display\n");
    return 77;
  }
  CSpline table = SplineOf30Points();
  Hook hook;
  if (std::getenv("QUILLAVEN_BENCHMARK_ONCE") != nullptr) hook.seconds = 0.5;
  CSpline::DoModal(table);
  std::printf(
      "drag of one of 30 points of a spline: %.0f frames/s of %.0f moves/s, limit %.0f, ratio "
      "%.1f\n",
      hook.rates.frames, hook.rates.moves, kSmooth, hook.rates.frames / kSmooth);
  return hook.rates.frames > 0 ? 0 : 1;
}
