#include "desktop/windows/painter.h"

#include <cstddef>
#include <cstdint>
#include <vector>
#include <windows.h>

namespace {

// A pen or brush, in force until the next one takes its place.
class Tool {
 public:
  explicit Tool(HDC context) : m_context(context) {}
  ~Tool() {
    if (m_mine == nullptr) return;
    ::SelectObject(m_context, m_before);
    ::DeleteObject(m_mine);
  }
  Tool(Tool const &) = delete;
  Tool &operator=(Tool const &) = delete;

  void Take(HGDIOBJ object) {
    if (object == nullptr) return;
    HGDIOBJ const last = ::SelectObject(m_context, object);
    if (m_mine == nullptr) {
      m_before = last;
    } else {
      ::DeleteObject(m_mine);
    }
    m_mine = object;
  }

 private:
  HDC m_context;
  HGDIOBJ m_before = nullptr;
  HGDIOBJ m_mine = nullptr;
};

class Painter {
 public:
  Painter(HDC context, HICON icon)
      : m_context(context), m_icon(icon), m_pen(context), m_brush(context) {}

  void Carry(CDrawOperation const &operation) {
    CRect const &place = operation.place;
    switch (operation.kind) {
      case CDrawOperation::Kind::pen:
        return m_pen.Take(::CreatePen(PS_SOLID, operation.width, operation.colour));
      case CDrawOperation::Kind::brush:
        return m_brush.Take(::CreateSolidBrush(operation.colour));
      case CDrawOperation::Kind::rectangle:
        ::Rectangle(m_context, place.left, place.top, place.right, place.bottom);
        return;
      case CDrawOperation::Kind::ellipse:
        ::Ellipse(m_context, place.left, place.top, place.right, place.bottom);
        return;
      case CDrawOperation::Kind::moveTo:
        ::MoveToEx(m_context, place.left, place.top, nullptr);
        return;
      case CDrawOperation::Kind::lineTo:
        ::LineTo(m_context, place.left, place.top);
        return;
      case CDrawOperation::Kind::icon:
        if (m_icon != nullptr)
          ::DrawIconEx(m_context, place.left, place.top, m_icon, 0, 0, 0, nullptr, DI_NORMAL);
        return;
    }
  }

 private:
  HDC m_context;
  HICON m_icon;
  Tool m_pen;
  Tool m_brush;
};

// 0x00BBGGRR as the bytes blue, green, red and opacity.
std::uint32_t PixelOf(unsigned long colour) {
  if (colour == CIcon::kTransparent) return 0;
  return 0xFF000000U | GetRValue(colour) << 16U | GetGValue(colour) << 8U | GetBValue(colour);
}

// One bit a pixel, 1 where the icon is transparent; rows of an even number of bytes.
std::vector<unsigned char> MaskOf(CIcon const &icon) {
  auto const width = static_cast<std::size_t>(icon.width);
  std::size_t const rowBytes = (width + 15) / 16 * 2;
  std::vector<unsigned char> mask(rowBytes * static_cast<std::size_t>(icon.height));
  for (std::size_t i = 0; i < width * static_cast<std::size_t>(icon.height); ++i) {
    if (icon.pixels[i] != CIcon::kTransparent) continue;
    std::size_t const column = i % width;
    unsigned char &byte = mask[i / width * rowBytes + column / 8];
    byte = static_cast<unsigned char>(byte | 0x80U >> column % 8);
  }
  return mask;
}

HICON MakeIcon(CIcon const &icon) {
  std::vector<std::uint32_t> pixels;
  for (unsigned long const colour : icon.pixels) pixels.push_back(PixelOf(colour));
  std::vector<unsigned char> const mask = MaskOf(icon);
  ICONINFO info{};
  info.fIcon = TRUE;
  info.hbmMask = ::CreateBitmap(icon.width, icon.height, 1, 1, mask.data());
  info.hbmColor = ::CreateBitmap(icon.width, icon.height, 1, 32, pixels.data());
  HICON const made = ::CreateIconIndirect(&info);
  ::DeleteObject(info.hbmMask);
  ::DeleteObject(info.hbmColor);
  return made;
}

bool IsPicture(CIcon const &icon) {
  constexpr int kLargest = 1024;
  if (icon.width < 1 || icon.height < 1 || icon.width > kLargest || icon.height > kLargest)
    return false;
  return icon.pixels.size() ==
         static_cast<std::size_t>(icon.width) * static_cast<std::size_t>(icon.height);
}

}  // namespace

void Draw(ContextHandle context, CDrawing const &drawing, IconHandle icon) {
  Painter painter(context, icon);
  for (CDrawOperation const &operation : drawing.Operations()) painter.Carry(operation);
}

DialogIcon::DialogIcon(CIcon const *icon) {
  if (icon == nullptr || !IsPicture(*icon)) return;
  m_large = MakeIcon(*icon);
  m_small = static_cast<HICON>(::CopyImage(m_large, IMAGE_ICON, ::GetSystemMetrics(SM_CXSMICON),
                                           ::GetSystemMetrics(SM_CYSMICON), LR_DEFAULTCOLOR));
}

DialogIcon::~DialogIcon() {
  if (m_large != nullptr) ::DestroyIcon(m_large);
  if (m_small != nullptr) ::DestroyIcon(m_small);
}

PaintBuffer::PaintBuffer(ContextHandle target, int width, int height)
    : m_target(target),
      m_context(::CreateCompatibleDC(target)),
      m_bitmap(::CreateCompatibleBitmap(target, width, height)),
      m_before(::SelectObject(m_context, m_bitmap)),
      m_width(width),
      m_height(height) {
  RECT const all{0, 0, width, height};
  ::FillRect(m_context, &all, ::GetSysColorBrush(COLOR_BTNFACE));
}

PaintBuffer::~PaintBuffer() {
  ::SelectObject(m_context, m_before);
  ::DeleteObject(m_bitmap);
  ::DeleteDC(m_context);
}

void PaintBuffer::Show() {
  ::BitBlt(m_target, 0, 0, m_width, m_height, m_context, 0, 0, SRCCOPY);
}
