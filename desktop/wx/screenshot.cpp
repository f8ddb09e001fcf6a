#include "desktop/wx/screenshot.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <algorithm>
#include <memory>
#include <stdexcept>
#include <wx/image.h>

namespace {

struct CloseDisplay {
  void operator()(Display *display) const { XCloseDisplay(display); }
};
struct DestroyImage {
  void operator()(XImage *image) const { XDestroyImage(image); }
};

}  // namespace

long Screenshot::CountOf(unsigned long colour) const {
  return std::count(pixels.begin(), pixels.end(), colour);
}

Screenshot TakeScreenshot(std::string const &file, int x, int y, int width, int height) {
  std::unique_ptr<Display, CloseDisplay> const display(XOpenDisplay(nullptr));
  if (display == nullptr) throw std::runtime_error("no display");
  std::unique_ptr<XImage, DestroyImage> const screen(XGetImage(
      display.get(), DefaultRootWindow(display.get()), x, y, static_cast<unsigned int>(width),
      static_cast<unsigned int>(height), AllPlanes, ZPixmap));
  if (screen == nullptr) throw std::runtime_error("no picture of the display");
  Screenshot shot;
  wxImage image(width, height);
  for (int row = 0; row < height; ++row) {
    for (int column = 0; column < width; ++column) {
      unsigned long const pixel = XGetPixel(screen.get(), column, row);
      unsigned long const red = pixel >> 16 & 0xFF;
      unsigned long const green = pixel >> 8 & 0xFF;
      unsigned long const blue = pixel & 0xFF;
      shot.pixels.push_back(blue << 16 | green << 8 | red);
      image.SetRGB(column, row, static_cast<unsigned char>(red), static_cast<unsigned char>(green),
                   static_cast<unsigned char>(blue));
    }
  }
  if (wxImage::FindHandler(wxBITMAP_TYPE_PNG) == nullptr) wxImage::AddHandler(new wxPNGHandler);
  if (!image.SaveFile(file, wxBITMAP_TYPE_PNG)) throw std::runtime_error("cannot write " + file);
  return shot;
}
