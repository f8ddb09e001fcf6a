#include <cstddef>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <quillaven/editor/spline_icon_internal.h>

namespace {

std::string BytesOf(std::string const &file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

// A picture of 32 by 32 pixels and 16 colours, as the one in an icon file is stored: sizes, colours,
// pixels, mask; both of these from the bottom row up.
std::vector<unsigned long> PixelsOf(std::string const &bytes) {
  constexpr std::size_t kColours = 22 + 40;
  constexpr std::size_t kPixels = kColours + 16UL * 4;
  constexpr std::size_t kMask = kPixels + 32UL * 16;
  auto const byte = [&](std::size_t at) {
    return static_cast<unsigned long>(static_cast<unsigned char>(bytes.at(at)));
  };
  std::vector<unsigned long> pixels;
  for (std::size_t row = 32; row-- > 0;) {
    for (std::size_t col = 0; col < 32; ++col) {
      bool const masked = (byte(kMask + row * 4 + col / 8) >> (7 - col % 8) & 1) != 0;
      unsigned long const two = byte(kPixels + row * 16 + col / 2);
      std::size_t const at = kColours + 4 * (col % 2 == 0 ? two >> 4 : two & 15);
      unsigned long const colour = byte(at) << 16 | byte(at + 1) << 8 | byte(at + 2);
      pixels.push_back(masked ? CIcon::kTransparent : colour);
    }
  }
  return pixels;
}

TEST(SplineIcon, ShowsAnAreaInAFrameWithinATransparentEdge) {
  CIcon const &icon = SplineIcon();
  auto const at = [&](int x, int y) {
    return icon.pixels.at(static_cast<std::size_t>(y * icon.width + x));
  };
  for (int const x : {0, 1, 30, 31}) {
    EXPECT_EQ(at(x, 0), CIcon::kTransparent);
    EXPECT_EQ(at(x, 31), CIcon::kTransparent);
    EXPECT_EQ(at(0, x), CIcon::kTransparent);
    EXPECT_EQ(at(31, x), CIcon::kTransparent);
  }
  for (int const x : {2, 29}) {
    EXPECT_EQ(at(x, 2), 0x404040U);
    EXPECT_EQ(at(x, 29), 0x404040U);
  }
  EXPECT_EQ(at(3, 3), 0xFFFFFFU);
  EXPECT_EQ(at(7, 5), 0x8080FFU) << "the upright axis";
  EXPECT_EQ(at(15, 10), 0x0000FFU) << "the selected handle";
  EXPECT_EQ(at(18, 10), 0xFF0000U) << "the curve";
}

// The resource of QuillavenLib.dll is made of the file.
TEST(SplineIcon, IsThePictureOfTheIconFile) {
  std::string const bytes = BytesOf(QUILLAVEN_SOURCE_DIR "/quillaven/editor/spline_icon.ico");
  ASSERT_EQ(bytes.size(), 22U + 40 + 16 * 4 + 32 * 16 + 32 * 4);
  EXPECT_EQ(PixelsOf(bytes), SplineIcon().pixels);
}

}  // namespace
