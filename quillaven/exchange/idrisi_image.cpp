// Idrisi pairs: the documentation file with the image file of cells beside it.

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

#include <quillaven/exchange/cell_conversion_internal.h>
#include <quillaven/exchange/idrisi_header.h>
#include <quillaven/exchange/number_reader_internal.h>
#include <quillaven/exchange/raster_exchange_internal.h>
#include <quillaven/foundation/byte_order_internal.h>
#include <quillaven/foundation/errors.h>
#include <quillaven/foundation/input_file_internal.h>
#include <quillaven/foundation/number_text_internal.h>
#include <quillaven/foundation/rounding_internal.h>
#include <quillaven/platform/system_paths.h>
#include <quillaven/raster/raster_access_internal.h>
#include <quillaven/raster/raster_operations.h>
#include <quillaven/raster/shape_check_internal.h>

namespace {

// A file name without its extension: the text from the last point of its last component.
std::string WithoutExtension(std::string const &file) {
  std::size_t const slash = file.find_last_of("\\/");
  std::size_t const point = file.rfind('.');
  bool const has = point != std::string::npos && (slash == std::string::npos || point > slash);
  return has ? file.substr(0, point) : file;
}

bool EqualsWithoutCase(std::string const &text, std::string const &lowerCase) {
  CString lower(text);
  lower.MakeLower();
  return lower == lowerCase;
}

// Calls `work` with a zero of the element type that a data type stands for; false for any other
// text.
template <class Work>
bool DispatchOnDataType(std::string const &dataType, Work work) {
  if (EqualsWithoutCase(dataType, "real")) return work(float{});
  if (EqualsWithoutCase(dataType, "integer")) return work(std::int16_t{});
  if (EqualsWithoutCase(dataType, "byte")) return work(std::uint8_t{});
  return false;
}

// The smallest or largest value of the cells with data; of a raster without any, the no-data value.
struct Limits {
  double minimum;
  double maximum;
};

template <class T>
Limits LimitsOf(CMultiScaleMatrix<T> const &raster) {
  double const noData = static_cast<double>(raster.NoDataValue());
  bool const hasNoData = raster.HasNoDataValue();
  bool first = true;
  if (raster.NRows() < 1 || raster.NCols() < 1) return {noData, noData};
  int const cols = raster.NCols();
  std::vector<T> row(static_cast<std::size_t>(cols));
  double minimum = noData;
  double maximum = noData;
  for (int r = 0; r < raster.NRows(); ++r) {
    T const *cell = CRasterAccess::Row(raster, r, 0, cols, row.data());
    T const *const end = cell + cols;
    for (; first && cell != end; ++cell) {
      if (hasNoData && static_cast<double>(*cell) == noData) continue;
      minimum = maximum = static_cast<double>(*cell);
      first = false;
    }
    for (; cell != end; ++cell) {
      double const value = *cell;
      if (!(value < minimum) && !(value > maximum)) continue;  // as nearly all are
      if (hasNoData && value == noData) continue;
      if (value < minimum) minimum = value;
      if (value > maximum) maximum = value;
    }
  }
  return {minimum, maximum};
}

template <class Cell, class T>
bool WriteImage(std::string const &file, CMultiScaleMatrix<T> const &raster) {
  std::ofstream stream(SystemPath(file), std::ios::binary);
  if (!stream) return false;
  if (raster.NRows() < 1 || raster.NCols() < 1) return true;
  int const cols = raster.NCols();
  std::vector<T> row(static_cast<std::size_t>(cols));
  std::vector<Cell> cells(row.size());
  for (int r = 0; r < raster.NRows(); ++r) {
    T const *from = CRasterAccess::Row(raster, r, 0, cols, row.data());
    std::transform(from, from + cols, cells.begin(), ConvertCell<Cell, T>);
    SwapIfBigEndian(cells);
    stream.write(reinterpret_cast<char const *>(cells.data()),
                 static_cast<std::streamsize>(cells.size() * sizeof(Cell)));
  }
  stream.flush();
  return static_cast<bool>(stream);
}

// Reads row by row with no check; behind the end of a short file the rows take what the buffer
// holds, so the buffer stays as the file has it.
template <class Cell, class T>
bool ReadImage(std::istream &stream, CMultiScaleMatrix<T> &raster) {
  if (raster.NRows() < 1 || raster.NCols() < 1) return true;
  std::vector<Cell> cells(static_cast<std::size_t>(raster.NCols()));
  std::vector<T> row(cells.size());
  for (int r = 0; r < raster.NRows(); ++r) {
    stream.read(reinterpret_cast<char *>(cells.data()),
                static_cast<std::streamsize>(cells.size() * sizeof(Cell)));
    std::transform(cells.begin(), cells.end(), row.begin(),
                   [](Cell cell) { return ConvertCell<T>(SwappedIfBigEndian(cell)); });
    CRasterAccess::WriteRow(raster, r, row.data());
  }
  return static_cast<bool>(stream);
}

// Cells of a data type that an image file has room for. Of another type no image is ever read.
std::uint64_t RoomForCells(std::string const &image, std::string const &dataType) {
  std::ifstream stream = OpenInputFile(image, std::ios::binary | std::ios::ate);
  std::int64_t const size = stream ? static_cast<std::int64_t>(stream.tellg()) : 0;
  std::size_t width = 1;
  DispatchOnDataType(dataType, [&width](auto zero) {
    width = sizeof zero;
    return true;
  });
  return static_cast<std::uint64_t>(std::max<std::int64_t>(size, 0)) / width;
}

// A flag value that begins with a number puts it in force as the no-data value; "none" puts it out.
template <class T>
void SetNoDataFromFlag(CMultiScaleMatrix<T> &raster, char const *flag) {
  double value = 0;
  bool const isNumber = LeadingNumber(flag, value);
  raster.SetNoDataValue(isNumber, NearestFloat(value));
}

}  // namespace

template <class T>
bool ExportIdrisi(char const *file, char const *dataType, CMultiScaleMatrix<T> const &raster) {
  std::string const name = WithoutExtension(file);
  CIdrisiImageHeader header;
  header.DataType(dataType);
  header.Columns(raster.NCols());
  header.Rows(raster.NRows());
  Limits const limits = LimitsOf(raster);
  header.MinValue(limits.minimum);
  header.MaxValue(limits.maximum);
  if (raster.HasNoDataValue()) {
    header.FlagValue(TextOfNumber(static_cast<double>(raster.NoDataValue())).c_str());
    header.FlagDefinition("NODATA");
  }
  if (!header.WriteFile((name + ".doc").c_str())) return false;
  if (!EqualsWithoutCase(header.FileType(), "binary")) return false;
  return DispatchOnDataType(header.DataType(), [&](auto zero) {
    return WriteImage<decltype(zero)>(name + ".img", raster);
  });
}

template <class T>
bool ImportIdrisi(char const *file, CMultiScaleMatrix<T> &raster) {
  std::string const name = WithoutExtension(file);
  std::string const image = name + ".img";
  CIdrisiImageHeader header;
  if (!header.ReadFile((name + ".doc").c_str())) return false;
  if (!EqualsWithoutCase(header.FileType(), "binary")) return false;
  bool const believed = AreCellsBelievable(header.Rows(), header.Columns(),
                                           [&] { return RoomForCells(image, header.DataType()); });
  raster.Redim(believed ? header.Rows() : 0, believed ? header.Columns() : 0,
               DefaultFineResolution());
  SetNoDataFromFlag(raster, header.FlagValue());
  return DispatchOnDataType(header.DataType(), [&](auto zero) {
    std::ifstream stream = OpenInputFile(image, std::ios::binary);
    if (!stream) {
      NoSuchFile(image.c_str());
      return false;
    }
    return ReadImage<decltype(zero)>(stream, raster) && believed;
  });
}

template bool ExportIdrisi(char const *, char const *, CMultiScaleMatrix<float> const &);
template bool ExportIdrisi(char const *, char const *, CMultiScaleMatrix<short> const &);
template bool ExportIdrisi(char const *, char const *, CMultiScaleMatrix<unsigned char> const &);
template bool ImportIdrisi(char const *, CMultiScaleMatrix<float> &);
template bool ImportIdrisi(char const *, CMultiScaleMatrix<short> &);
template bool ImportIdrisi(char const *, CMultiScaleMatrix<unsigned char> &);
