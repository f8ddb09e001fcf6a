#include "apps/pixel_files.h"

#include <cstdint>

#include "apps/png_writer.h"

namespace {

std::string LowFirst(std::uint32_t number, int width) {
  std::string bytes;
  for (int i = 0; i < width; ++i) bytes += static_cast<char>(number >> (8 * i) & 0xFFU);
  return bytes;
}

unsigned int Byte(std::string const &bytes, std::size_t at) {
  return at < bytes.size() ? static_cast<unsigned char>(bytes[at]) : 0;
}

std::uint32_t Number(std::string const &bytes, std::size_t at) {
  return Byte(bytes, at) | Byte(bytes, at + 1) << 8 | Byte(bytes, at + 2) << 16 |
         Byte(bytes, at + 3) << 24;
}

}  // namespace

// Rows from the bottom, blue first, each padded to 4 bytes.
std::string BmpBytes(PixelPicture const &picture) {
  constexpr std::uint32_t kHeaders = 54;
  std::string rows;
  for (int y = picture.height; y-- > 0;) {
    for (int x = 0; x < picture.width; ++x) rows += LowFirst(picture.At(x, y), 3);
    rows.append(static_cast<std::size_t>(picture.width % 4), '\0');
  }
  return "BM" + LowFirst(kHeaders + static_cast<std::uint32_t>(rows.size()), 4) + LowFirst(0, 4) +
         LowFirst(kHeaders, 4) + LowFirst(40, 4) +
         LowFirst(static_cast<std::uint32_t>(picture.width), 4) +
         LowFirst(static_cast<std::uint32_t>(picture.height), 4) + LowFirst(1, 2) +
         LowFirst(24, 2) + std::string(24, '\0') + rows;
}

PixelPicture PictureOfBitmap(std::string const &bytes) {
  constexpr std::size_t kPalette = 54;
  auto const width = static_cast<int>(Number(bytes, 18));
  auto const height = static_cast<int>(Number(bytes, 22));
  std::size_t const start = Number(bytes, 10);
  std::size_t const stride = (static_cast<std::size_t>(width) + 3) / 4 * 4;
  PixelPicture picture(width, height);
  for (int y = 0; y < height; ++y) {
    std::size_t const row = start + static_cast<std::size_t>(height - 1 - y) * stride;
    for (int x = 0; x < width; ++x) {
      std::size_t const entry =
          kPalette + std::size_t{4} * Byte(bytes, row + static_cast<std::size_t>(x));
      picture.At(x, y) = Number(bytes, entry) & 0xFFFFFFU;  // blue lies first: 0xRRGGBB as a number
    }
  }
  return picture;
}

std::string PngBytes(PixelPicture const &picture) {
  std::string pixels;
  pixels.reserve(picture.colors.size() * 3);
  for (unsigned int const color : picture.colors)
    for (int shift : {16, 8, 0}) pixels += static_cast<char>(color >> shift & 0xFFU);
  return EncodePng(picture.width, picture.height, pixels);
}
