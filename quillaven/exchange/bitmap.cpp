#include <algorithm>
#include <bit>
#include <climits>
#include <cstdint>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include <quillaven/exchange/bitmap.h>
#include <quillaven/exchange/cell_conversion_internal.h>
#include <quillaven/foundation/errors.h>
#include <quillaven/foundation/numbers.h>
#include <quillaven/maps/matrix_base_map.h>
#include <quillaven/platform/application.h>
#include <quillaven/platform/message_box_internal.h>
#include <quillaven/platform/new_file_internal.h>
#include <quillaven/platform/system_errors_internal.h>
#include <quillaven/platform/system_paths.h>
#include <quillaven/raster/raster_access_internal.h>
#include <quillaven/raster/raster_operations.h>

namespace {

constexpr std::size_t kFileHeaderSize = 14;
constexpr std::size_t kInfoHeaderSize = 40;
constexpr int kPaletteEntries = 256;
constexpr std::size_t kInfoSize = kInfoHeaderSize + 4 * kPaletteEntries;
constexpr int kMostColors = kPaletteEntries - 2;  // white and black must find a place
constexpr unsigned long kWhite = 0xFFFFFF;

// Bytes of a header, lowest first.
class Bytes {
 public:
  explicit Bytes(std::size_t size) { m_bytes.reserve(size); }
  void Add(std::uint64_t number, int width) {
    for (int i = 0; i < width; ++i) m_bytes.push_back(static_cast<unsigned char>(number >> 8 * i));
  }
  std::vector<unsigned char> const &Get() const { return m_bytes; }

 private:
  std::vector<unsigned char> m_bytes;
};

// The cells to draw. Those of a rectangle that reaches beyond the raster are none.
struct Rectangle {
  std::int64_t row0;
  std::int64_t col0;
  std::int64_t rows;
  std::int64_t cols;
  std::int64_t zoom;
};

// An image in memory, a palette index for each pixel, rows of pixels from the bottom up.
class Picture {
 public:
  explicit Picture(Rectangle const &part) : m_part(part) {
    constexpr std::int64_t kMostBytes = INT32_MAX - 2048;  // sizes in the file have 31 bits
    constexpr std::int64_t kFarAway = std::int64_t{1} << 40;
    m_part.row0 = std::clamp(part.row0, -kFarAway, kFarAway);
    m_part.col0 = std::clamp(part.col0, -kFarAway, kFarAway);
    m_part.rows = std::max<std::int64_t>(part.rows, 0);
    m_part.cols = std::max<std::int64_t>(part.cols, 0);
    m_part.zoom = std::max<std::int64_t>(part.zoom, 0);
    // Each factor is held before the next is multiplied in.
    for (std::int64_t size : {m_part.rows, m_part.cols, m_part.zoom})
      if (size > kMostBytes) throw std::bad_alloc();
    m_width = m_part.cols * m_part.zoom;
    m_height = m_part.rows * m_part.zoom;
    if (m_width > kMostBytes || m_height > kMostBytes) throw std::bad_alloc();
    m_rowBytes = (m_width + 3) / 4 * 4;
    if (m_rowBytes * m_height > kMostBytes) throw std::bad_alloc();
    m_pixels.resize(static_cast<std::size_t>(m_rowBytes * m_height));
  }

  void Draw(CMultiScaleFloatMatrix const &raster, CBitmapLegend const &legend) {
    UseColors(legend);
    if (m_pixels.empty()) return;  // without pixels there may still be any number of cells
    std::int64_t const firstCol = std::clamp<std::int64_t>(m_part.col0, 0, HeldCols(raster));
    std::int64_t const endCol =
        std::clamp<std::int64_t>(m_part.col0 + m_part.cols, firstCol, HeldCols(raster));
    std::vector<float> values(static_cast<std::size_t>(endCol - firstCol));
    std::vector<unsigned char> indices(static_cast<std::size_t>(m_part.cols), Background());
    // Where the rectangle begins left of the raster, its first cells stay white.
    unsigned char *classified =
        indices.data() + std::clamp<std::int64_t>(firstCol - m_part.col0, 0, m_part.cols);
    for (std::int64_t r = 0; r < m_part.rows; ++r) {
      std::int64_t const row = m_part.row0 + r;
      if (row < 0 || row >= raster.NRows()) {
        std::fill(indices.begin(), indices.end(), Background());
      } else {
        CRasterAccess::ReadRow(raster, static_cast<int>(row), static_cast<int>(firstCol),
                               static_cast<int>(values.size()), values.data());
        Classify(legend, values, classified);
      }
      DrawRow(r, indices);
    }
  }

  // A white box with black letters in the top left corner, over the cells, cut at the picture's
  // edge.
  void Stamp(CStampImage const &stamp) {
    std::int64_t const held =
        stamp.width > 0 ? static_cast<std::int64_t>(stamp.letters.size()) / stamp.width : 0;
    std::int64_t const height = std::min({held, m_height, std::int64_t{stamp.height}});
    std::int64_t const width = std::min(m_width, std::int64_t{stamp.width});
    for (std::int64_t y = 0; y < height; ++y) {
      unsigned char *row = PixelRow(m_height - 1 - y);
      unsigned char const *letters =
          stamp.letters.data() + static_cast<std::size_t>(y * stamp.width);
      for (std::int64_t x = 0; x < width; ++x) row[x] = letters[x] != 0 ? Letters() : Background();
    }
  }

  void Write(char const *file, CBitmapLegend const &legend) const {
    Bytes const fileHeader = FileHeader();
    Bytes const info = InfoAndPalette(legend);
    NewFile out(SystemPath(file).c_str());
    bool const written = out.IsOpen() && out.Write(fileHeader.Get().data(), kFileHeaderSize) &&
                         out.Write(info.Get().data(), kInfoSize) &&
                         out.Write(m_pixels.data(), m_pixels.size()) && out.Close();
    if (!written) throw FormatError(file, LastSystemError());
  }

 private:
  static std::int64_t HeldCols(CMultiScaleFloatMatrix const &raster) {
    return std::max(raster.NCols(), 0);
  }
  unsigned char Background() const { return static_cast<unsigned char>(m_colors); }
  unsigned char Letters() const { return static_cast<unsigned char>(m_colors + 1); }
  unsigned char *PixelRow(std::int64_t fromBottom) {
    return m_pixels.data() + fromBottom * m_rowBytes;
  }

  void UseColors(CBitmapLegend const &legend) {
    m_colors = std::clamp(legend.GetColorCount(), 0, kMostColors);
  }

  // Neighbouring cells are often equal: their class is asked for once.
  void Classify(CBitmapLegend const &legend, std::vector<float> const &values,
                unsigned char *indices) const {
    auto const last = static_cast<unsigned char>(std::max(m_colors - 1, 0));
    std::uint32_t before = 0;
    unsigned char index = 0;
    bool first = true;
    for (std::size_t i = 0; i < values.size(); ++i) {
      auto const bits = std::bit_cast<std::uint32_t>(values[i]);
      if (first || bits != before) index = std::min(legend.GetColorIndexOfValue(values[i]), last);
      first = false;
      before = bits;
      indices[i] = index;
    }
  }

  // A row of cells as `zoom` equal rows of pixels.
  void DrawRow(std::int64_t r, std::vector<unsigned char> const &indices) {
    if (m_part.zoom < 1) return;
    std::int64_t const bottom = (m_part.rows - 1 - r) * m_part.zoom;
    unsigned char *first = PixelRow(bottom);
    if (m_part.zoom == 1) {
      std::copy(indices.begin(), indices.end(), first);
      return;
    }
    unsigned char *out = first;
    for (unsigned char const index : indices) out = std::fill_n(out, m_part.zoom, index);
    for (std::int64_t k = 1; k < m_part.zoom; ++k)
      std::copy_n(first, m_width, PixelRow(bottom + k));
  }

  Bytes FileHeader() const {
    Bytes header(kFileHeaderSize);
    constexpr std::uint64_t kPixelsAt = kFileHeaderSize + kInfoSize;
    header.Add(19778, 2);  // "BM"
    header.Add(kPixelsAt + m_pixels.size(), 4);
    header.Add(0, 4);
    header.Add(kPixelsAt, 4);
    return header;
  }

  Bytes InfoAndPalette(CBitmapLegend const &legend) const {
    Bytes info(kInfoSize);
    info.Add(kInfoHeaderSize, 4);
    info.Add(static_cast<std::uint64_t>(m_width), 4);
    info.Add(static_cast<std::uint64_t>(m_height), 4);
    info.Add(1, 2);  // planes
    info.Add(8, 2);  // bits a pixel
    info.Add(0, 4);  // no compression
    info.Add(m_pixels.size(), 4);
    info.Add(0, 8);  // pixels per metre, not told
    info.Add(kPaletteEntries, 4);
    info.Add(0, 4);
    for (int i = 0; i < kPaletteEntries; ++i) {
      unsigned long color = i == m_colors ? kWhite : 0;
      if (i < m_colors) color = legend.GetIthColor(i);
      info.Add(color >> 16 & 0xFF, 1);
      info.Add(color >> 8 & 0xFF, 1);
      info.Add(color & 0xFF, 1);
      info.Add(0, 1);
    }
    return info;
  }

  Rectangle m_part;
  std::int64_t m_width = 0;
  std::int64_t m_height = 0;
  std::int64_t m_rowBytes = 0;
  std::vector<unsigned char> m_pixels;
  int m_colors = 0;  // of the legend, as many as find a place
};

// A typed map's raster as floats. Where the new raster's blocks are coarse, the last value of a
// block stays.
template <class T>
void CopyAsFloats(CMultiScaleMatrix<T> const &from, int rows, int cols,
                  CMultiScaleFloatMatrix &to) {
  to.Redim(rows, cols, DefaultFineResolution());
  to.SetNoDataValue(from.HasNoDataValue(), from.NoDataValue());
  std::vector<T> cells(static_cast<std::size_t>(std::max(cols, 0)));
  std::vector<float> values(cells.size());
  int const held = std::min(cols, from.NCols());
  for (int row = 0; row < rows; ++row) {
    // A map that has not seen its raster shrink asks for cells that are no more.
    std::fill(cells.begin(), cells.end(), T{});
    if (row < from.NRows()) CRasterAccess::ReadRow(from, row, 0, held, cells.data());
    std::transform(cells.begin(), cells.end(), values.begin(), ConvertCell<float, T>);
    CRasterAccess::WriteRow(to, row, values.data());
  }
}

constexpr char kBoxTitle[] = "Save bitmap";

}  // namespace

bool WriteBitmap(char const *file, CMultiScaleFloatMatrix &raster, long row0, long col0, long rows,
                 long cols, long zoom, char const *stamp, CBitmapLegend &legend) {
  try {
    Picture picture({row0, col0, rows, cols, zoom});
    picture.Draw(raster, legend);
    picture.Stamp(GetApplication().MakeStamp(stamp));
    picture.Write(file, legend);
    return true;
  } catch (std::string const &text) {
    ShowMessageBox(text.c_str(), kBoxTitle);
  } catch (...) {
    ShowMessageBox("unknown exception", kBoxTitle);
  }
  return false;
}

bool WriteBitmap(char const *file, CMultiScaleFloatMatrix &raster, long row0, long col0, long rows,
                 long cols, long zoom, long stamp, CBitmapLegend &legend) {
  return WriteBitmap(file, raster, row0, col0, rows, cols, zoom, litostr("%ld", stamp).c_str(),
                     legend);
}

// The rectangle is clipped to the map's size without regard to where it starts: a caller must not
// pass one that starts inside and reaches beyond the end.
template <class T>
int CMatrixBaseMap<T>::WriteBitmap(char const *file, int zoom, CRect rectangle, char const *stamp) {
  if (m_pMatrix == nullptr) return 0;
  CBitmapLegend legend(m_pMatrix->HasNoDataValue(), m_pMatrix->NoDataValue(), kWhite);
  if (!legend.ReadFile((m_strBaseName + ".txt").c_str())) return 0;

  CMultiScaleFloatMatrix floats;
  CMultiScaleFloatMatrix *raster = &floats;
  if constexpr (std::is_same_v<T, float>) {
    raster = m_pMatrix;
  } else {
    CopyAsFloats(*m_pMatrix, m_nRows, m_nCols, floats);
  }
  auto const shorter = [](int size, std::int64_t from, std::int64_t to) {
    return static_cast<long>(std::clamp<std::int64_t>(to - from + 1, INT_MIN, size));
  };
  long const rows = shorter(m_nRows, rectangle.top, rectangle.bottom);
  long const cols = shorter(m_nCols, rectangle.left, rectangle.right);
  return ::WriteBitmap(file, *raster, std::max(rectangle.top, 0), std::max(rectangle.left, 0), rows,
                       cols, zoom, stamp, legend)
             ? 1
             : 0;
}

template int CMatrixBaseMap<float>::WriteBitmap(char const *, int, CRect, char const *);
template int CMatrixBaseMap<short>::WriteBitmap(char const *, int, CRect, char const *);
template int CMatrixBaseMap<unsigned char>::WriteBitmap(char const *, int, CRect, char const *);
