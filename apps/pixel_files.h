// A picture of pixels as the bytes of a file.
//
//   PixelPicture picture(800, 500);
//   picture.At(3, 4) = 0xFF0000;              // red
//   std::string const bytes = PngBytes(picture);

#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// Colours 0xRRGGBB, row by row from the top; white at first.
struct PixelPicture {
  PixelPicture(int pixelsAcross, int pixelsDown)
      : width(pixelsAcross),
        height(pixelsDown),
        colors(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), 0xFFFFFF) {}

  unsigned int &At(int x, int y) { return colors[IndexOf(x, y)]; }
  unsigned int At(int x, int y) const { return colors[IndexOf(x, y)]; }

  int width;
  int height;
  std::vector<unsigned int> colors;

 private:
  std::size_t IndexOf(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
           static_cast<std::size_t>(x);
  }
};

/// A Windows bitmap of 24 bits.
std::string BmpBytes(PixelPicture const &picture);
/// A PNG of 24 bits.
std::string PngBytes(PixelPicture const &picture);
/// The picture of a bitmap of 8 bits, as the library writes it.
PixelPicture PictureOfBitmap(std::string const &bytes);
