#include "apps/pixel_files.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace {

std::string LowFirst(std::uint32_t number, int width) {
  std::string bytes;
  for (int i = 0; i < width; ++i) bytes += static_cast<char>(number >> (8 * i) & 0xFFU);
  return bytes;
}

std::string HighFirst(std::uint32_t number) {
  std::string bytes = LowFirst(number, 4);
  std::reverse(bytes.begin(), bytes.end());
  return bytes;
}

std::uint32_t Crc32(std::string_view bytes) {
  std::uint32_t crc = 0xFFFFFFFFU;
  for (char const byte : bytes) {
    crc ^= static_cast<unsigned char>(byte);
    for (int bit = 0; bit < 8; ++bit) crc = (crc & 1U) != 0 ? crc >> 1 ^ 0xEDB88320U : crc >> 1;
  }
  return ~crc;
}

std::uint32_t Adler32(std::string_view bytes) {
  constexpr std::uint32_t kBase = 65521;
  std::uint32_t low = 1;
  std::uint32_t high = 0;
  for (char const byte : bytes) {
    low = (low + static_cast<unsigned char>(byte)) % kBase;
    high = (high + low) % kBase;
  }
  return high << 16 | low;
}

// A zlib stream of blocks that are stored as they are.
std::string Stored(std::string_view bytes) {
  constexpr std::size_t kLongestBlock = 65535;
  std::string stream = "\x78\x01";
  for (std::size_t at = 0; at < bytes.size(); at += kLongestBlock) {
    std::string_view const block = bytes.substr(at, kLongestBlock);
    auto const length = static_cast<std::uint32_t>(block.size());
    stream += at + block.size() == bytes.size() ? '\1' : '\0';
    stream += LowFirst(length, 2) + LowFirst(~length, 2);
    stream += block;
  }
  return stream + HighFirst(Adler32(bytes));
}

std::string Chunk(std::string const &type, std::string const &content) {
  std::string const named = type + content;
  return HighFirst(static_cast<std::uint32_t>(content.size())) + named + HighFirst(Crc32(named));
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

// Rows from the top, red first, each behind the number of its filter, which is none.
std::string PngBytes(PixelPicture const &picture) {
  std::string rows;
  for (int y = 0; y < picture.height; ++y) {
    rows += '\0';
    for (int x = 0; x < picture.width; ++x) rows += HighFirst(picture.At(x, y)).substr(1);
  }
  std::string const shape = HighFirst(static_cast<std::uint32_t>(picture.width)) +
                            HighFirst(static_cast<std::uint32_t>(picture.height));
  constexpr char kEightBitColors[] = "\10\2\0\0";  // and a zero byte
  return "\x89PNG\r\n\x1a\n" + Chunk("IHDR", shape + std::string(kEightBitColors, 5)) +
         Chunk("IDAT", Stored(rows)) + Chunk("IEND", "");
}
