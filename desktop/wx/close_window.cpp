// Asks a window to close, as the cross in its frame does.
//   close_window WINDOW-ID

#include <X11/Xlib.h>
#include <cstdlib>

int main(int count, char **arguments) {
  Display *const display = XOpenDisplay(nullptr);
  if (count != 2 || display == nullptr) return 1;
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.window = std::strtoul(arguments[1], nullptr, 0);
  event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
  event.xclient.format = 32;
  event.xclient.data.l[0] = static_cast<long>(XInternAtom(display, "WM_DELETE_WINDOW", False));
  XSendEvent(display, event.xclient.window, False, NoEventMask, &event);
  XCloseDisplay(display);
  return 0;
}
