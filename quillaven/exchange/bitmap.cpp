#include <algorithm>
#include <bit>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include <quillaven/exchange/bitmap.h>
#include <quillaven/exchange/cell_conversion_internal.h>
#include <quillaven/foundation/errors.h>
#include <quillaven/foundation/numbers.h>
#include <quillaven/legends/bitmap_legend_internal.h>
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
constexpr std::size_t kInfoSize = kInfoHeaderSize + std::size_t{4} * kPaletteEntries;
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

// Classifies rows of values. Floats that agree in their upper 16 bits lie close together, and such a
// bucket holds one class or, around a bound, two: the legend is asked for a bucket, not for each
// value. Values of all other buckets are asked for one by one.
class RowClassifier {
 public:
  RowClassifier(CBitmapLegend const &legend, int colors)
      : m_legend(legend),
        m_last(static_cast<unsigned char>(std::max(colors - 1, 0))),
        m_buckets(std::size_t{1} << 16, kUnknown) {}

  // A function of its own, so that its few numbers stay in registers.
  [[gnu::noinline]] void Classify(float const *values, float const *end, unsigned char *indices) {
    std::uint32_t const *const buckets = m_buckets.data();
    for (; values != end; ++values, ++indices) {
      auto const bits = std::bit_cast<std::uint32_t>(*values);
      std::uint32_t const bucket = buckets[bits >> 16];
      if (bucket >= kUnknown) {
        *indices = ClassOf(bits);
        continue;
      }
      std::uint32_t const first = bucket >> 16;
      std::uint32_t const second = bucket >> 24;
      bool const isBehind = (bits & kLowBits) > (bucket & kLowBits);
      *indices = static_cast<unsigned char>(isBehind ? second : first);
    }
  }

 private:
  // A bucket from the lowest bits up: the low bits of the last value of its first class, that class,
  // and the class of the rest. No class is 255.
  static constexpr std::uint32_t kLowBits = 0xFFFF;
  static constexpr std::uint32_t kUnknown = 0xFF000000;
  static constexpr std::uint32_t kMixed = 0xFFFFFFFF;

  unsigned char IndexOf(std::uint32_t bits) const {
    return std::min(m_legend.GetColorIndexOfValue(std::bit_cast<float>(bits)), m_last);
  }

  [[gnu::noinline]] unsigned char ClassOf(std::uint32_t bits) {
    std::uint32_t &bucket = m_buckets[bits >> 16];
    if (bucket == kUnknown) bucket = MakeBucket(bits & ~kLowBits);
    return IndexOf(bits);
  }

  // The bound between two classes is found by halving, as the class follows the value.
  std::uint32_t MakeBucket(std::uint32_t first) const {
    std::uint32_t const last = first | kLowBits;
    auto const one = std::bit_cast<float>(first);
    auto const other = std::bit_cast<float>(last);
    if (!std::isfinite(one) || !std::isfinite(other)) return kMixed;
    if (!CBitmapLegendAccess::FollowsValue(m_legend, std::min(one, other), std::max(one, other)))
      return kMixed;
    std::uint32_t const firstClass = IndexOf(first);
    std::uint32_t const lastClass = IndexOf(last);
    std::uint32_t held = first;
    for (std::uint32_t step = 0x8000; step > 0; step /= 2)
      if (IndexOf(held + step) == firstClass) held += step;
    if (held != last && IndexOf(held + 1) != lastClass) return kMixed;  // three classes or more
    return lastClass << 24 | firstClass << 16 | (held & kLowBits);
  }

  CBitmapLegend const &m_legend;
  unsigned char m_last;
  std::vector<std::uint32_t> m_buckets;
};

// A part of a raster as an image, a palette index for each pixel. Rows of pixels lie from the bottom
// up in the file, so they are made in that order, a row of cells at a time.
class Picture {
 public:
  Picture(Rectangle const &part, CMultiScaleFloatMatrix const &raster, CBitmapLegend const &legend)
      : m_part(part),
        m_raster(raster),
        m_legend(legend),
        m_colors(std::clamp(legend.GetColorCount(), 0, kMostColors)) {
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
    m_size = m_rowBytes * m_height;
    if (m_size > kMostBytes) throw std::bad_alloc();
  }

  // Writes the file; a failure is thrown as the system's text for it.
  void Write(char const *file, CStampImage const &stamp) const {
    Bytes const fileHeader = FileHeader();
    Bytes const info = InfoAndPalette();
    std::vector<unsigned char> row(static_cast<std::size_t>(m_size > 0 ? m_rowBytes : 0));
    std::vector<unsigned char> block;
    block.reserve(row.size() + kBlockSize);

    NewFile out(SystemPath(file).c_str(), NewFile::Access::kReadAndWrite);
    bool written = out.IsOpen() && out.Write(fileHeader.Get().data(), kFileHeaderSize) &&
                   out.Write(info.Get().data(), kInfoSize);
    CellPainter painter(*this);
    for (std::int64_t r = m_size > 0 ? m_part.rows - 1 : -1; r >= 0 && written; --r) {
      painter.Paint(r, row.data());
      for (std::int64_t k = m_part.zoom - 1; k >= 0 && written; --k) {
        block.insert(block.end(), row.begin(), row.end());
        StampRow(stamp, r * m_part.zoom + k, block.data() + block.size() - row.size());
        if (block.size() < kBlockSize) continue;
        written = out.Write(block.data(), block.size());
        block.clear();
      }
    }
    written = written && out.Write(block.data(), block.size()) && out.Close();
    if (!written) throw FormatError(file, LastSystemError());
  }

 private:
  static constexpr std::size_t kBlockSize = std::size_t{1} << 16;

  // Makes rows of pixels from rows of cells.
  class CellPainter {
   public:
    explicit CellPainter(Picture const &picture)
        : m_part(picture.m_part),
          m_raster(picture.m_raster),
          m_background(picture.Background()),
          m_classifier(picture.m_legend, picture.m_colors) {
      std::int64_t const cols = std::max(m_raster.NCols(), 0);
      std::int64_t const first = std::clamp<std::int64_t>(m_part.col0, 0, cols);
      std::int64_t const end = std::clamp<std::int64_t>(m_part.col0 + m_part.cols, first, cols);
      m_firstCol = static_cast<int>(first);
      m_count = static_cast<int>(end - first);
      m_left = std::clamp<std::int64_t>(first - m_part.col0, 0, m_part.cols);
      m_values.resize(static_cast<std::size_t>(m_count));
    }

    // Row `r` of the rectangle. Cells outside the raster are white.
    void Paint(std::int64_t r, unsigned char *pixels) {
      std::int64_t const row = m_part.row0 + r;
      bool const held = m_count > 0 && 0 <= row && row < m_raster.NRows();
      std::fill_n(pixels, held ? m_left : m_part.cols, m_background);
      if (held) {
        float const *cells = CRasterAccess::Row(m_raster, static_cast<int>(row), m_firstCol,
                                                m_count, m_values.data());
        m_classifier.Classify(cells, cells + m_count, pixels + m_left);
        std::fill(pixels + m_left + m_count, pixels + m_part.cols, m_background);
      }
      // One pixel for each cell becomes `zoom`, from the last on, so that none is overwritten before
      // its turn.
      for (std::int64_t c = m_part.zoom > 1 ? m_part.cols - 1 : -1; c >= 0; --c)
        std::fill_n(pixels + c * m_part.zoom, m_part.zoom, pixels[c]);
    }

   private:
    Rectangle m_part;
    CMultiScaleFloatMatrix const &m_raster;
    unsigned char m_background;
    RowClassifier m_classifier;
    int m_firstCol;       // of the raster, that lies in the rectangle ...
    int m_count;          // ... with so many columns from there on ...
    std::int64_t m_left;  // ... behind so many that do not
    std::vector<float> m_values;
  };

  // A white box with black letters in the top left corner, over the cells, cut at the picture's
  // edge: what of it lies in the row `y` from the top.
  void StampRow(CStampImage const &stamp, std::int64_t y, unsigned char *pixels) const {
    std::int64_t const held =
        stamp.width > 0 ? static_cast<std::int64_t>(stamp.letters.size()) / stamp.width : 0;
    if (y >= std::min(held, std::int64_t{stamp.height})) return;
    std::int64_t const width = std::min(m_width, std::int64_t{stamp.width});
    unsigned char const *letters = stamp.letters.data() + static_cast<std::size_t>(y * stamp.width);
    for (std::int64_t x = 0; x < width; ++x) pixels[x] = letters[x] != 0 ? Letters() : Background();
  }

  unsigned char Background() const { return static_cast<unsigned char>(m_colors); }
  unsigned char Letters() const { return static_cast<unsigned char>(m_colors + 1); }

  Bytes FileHeader() const {
    Bytes header(kFileHeaderSize);
    constexpr std::uint64_t kPixelsAt = kFileHeaderSize + kInfoSize;
    header.Add(19778, 2);  // "BM"
    header.Add(kPixelsAt + static_cast<std::uint64_t>(m_size), 4);
    header.Add(0, 4);
    header.Add(kPixelsAt, 4);
    return header;
  }

  Bytes InfoAndPalette() const {
    Bytes info(kInfoSize);
    info.Add(kInfoHeaderSize, 4);
    info.Add(static_cast<std::uint64_t>(m_width), 4);
    info.Add(static_cast<std::uint64_t>(m_height), 4);
    info.Add(1, 2);  // planes
    info.Add(8, 2);  // bits a pixel
    info.Add(0, 4);  // no compression
    info.Add(static_cast<std::uint64_t>(m_size), 4);
    info.Add(0, 8);  // pixels per metre, not told
    info.Add(kPaletteEntries, 4);
    info.Add(0, 4);
    for (int i = 0; i < kPaletteEntries; ++i) {
      unsigned long color = i == m_colors ? kWhite : 0;
      if (i < m_colors) color = m_legend.GetIthColor(i);
      info.Add(color >> 16 & 0xFF, 1);
      info.Add(color >> 8 & 0xFF, 1);
      info.Add(color & 0xFF, 1);
      info.Add(0, 1);
    }
    return info;
  }

  Rectangle m_part;
  CMultiScaleFloatMatrix const &m_raster;
  CBitmapLegend const &m_legend;
  int m_colors;  // of the legend, as many as find a place
  std::int64_t m_width = 0;
  std::int64_t m_height = 0;
  std::int64_t m_rowBytes = 0;  // a multiple of 4; what fills a row up is 0
  std::int64_t m_size = 0;      // of all pixels, in bytes
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
    Picture const picture({row0, col0, rows, cols, zoom}, raster, legend);
    picture.Write(file, GetApplication().MakeStamp(stamp));
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
