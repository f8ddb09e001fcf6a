#include <cstddef>
#include <cstring>
#include <vector>
#include <windows.h>

#include <quillaven/platform/system_stamp_internal.h>

namespace {

// A device context in memory with its default font.
class MemoryContext {
 public:
  MemoryContext() : m_context(::CreateCompatibleDC(nullptr)) {}
  ~MemoryContext() { ::DeleteDC(m_context); }
  MemoryContext(MemoryContext const &) = delete;
  MemoryContext &operator=(MemoryContext const &) = delete;

  HDC Get() const { return m_context; }

 private:
  HDC m_context;
};

// A bitmap of one bit a pixel, selected into a context as long as it lives.
class MonochromeBitmap {
 public:
  MonochromeBitmap(HDC context, int width, int height)
      : m_context(context),
        m_bitmap(::CreateBitmap(width, height, 1, 1, nullptr)),
        m_before(::SelectObject(context, m_bitmap)) {}
  ~MonochromeBitmap() {
    ::SelectObject(m_context, m_before);
    ::DeleteObject(m_bitmap);
  }
  MonochromeBitmap(MonochromeBitmap const &) = delete;
  MonochromeBitmap &operator=(MonochromeBitmap const &) = delete;

  bool IsThere() const { return m_bitmap != nullptr; }
  // Fills in whole rows, each of an even number of bytes.
  void Read(std::vector<unsigned char> &bytes) const {
    ::GetBitmapBits(m_bitmap, static_cast<LONG>(bytes.size()), bytes.data());
  }

 private:
  HDC m_context;
  HBITMAP m_bitmap;
  HGDIOBJ m_before;
};

// From bits, where 1 is white, to bytes, where 1 is a letter.
std::vector<unsigned char> LettersOf(MonochromeBitmap const &bitmap, int width, int height) {
  auto const rows = static_cast<std::size_t>(height);
  auto const cols = static_cast<std::size_t>(width);
  std::size_t const rowBytes = (cols + 15) / 16 * 2;
  std::vector<unsigned char> bits(rowBytes * rows);
  bitmap.Read(bits);
  std::vector<unsigned char> letters(rows * cols);
  for (std::size_t y = 0; y < rows; ++y) {
    for (std::size_t x = 0; x < cols; ++x) {
      bool const white = (bits[y * rowBytes + x / 8] >> (7 - x % 8) & 1) != 0;
      letters[y * cols + x] = white ? 0 : 1;
    }
  }
  return letters;
}

}  // namespace

CStampImage DrawSystemStamp(char const *text) {
  // A longer text has no picture that is wide enough for it.
  constexpr std::size_t kLongestText = 4096;
  int const length = static_cast<int>(::strnlen(text, kLongestText));
  MemoryContext const context;
  SIZE size{};
  if (!::GetTextExtentPoint32A(context.Get(), text, length, &size) || size.cx < 1 || size.cy < 1)
    return {};
  MonochromeBitmap const bitmap(context.Get(), size.cx, size.cy);
  if (!bitmap.IsThere()) return {};
  ::SetTextColor(context.Get(), RGB(0, 0, 0));
  ::SetBkColor(context.Get(), RGB(255, 255, 255));
  ::PatBlt(context.Get(), 0, 0, size.cx, size.cy, WHITENESS);
  ::TextOutA(context.Get(), 0, 0, text, length);
  return {static_cast<int>(size.cx), static_cast<int>(size.cy),
          LettersOf(bitmap, size.cx, size.cy)};
}
