// ASCII grids: docs/formats/ascii-grid.md tells the lines.

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

#include <quillaven/exchange/cell_conversion_internal.h>
#include <quillaven/exchange/number_reader_internal.h>
#include <quillaven/exchange/raster_exchange_internal.h>
#include <quillaven/foundation/errors.h>
#include <quillaven/foundation/input_file_internal.h>
#include <quillaven/foundation/number_text_internal.h>
#include <quillaven/foundation/rounding_internal.h>
#include <quillaven/platform/system_paths.h>
#include <quillaven/raster/raster_access_internal.h>
#include <quillaven/raster/raster_operations.h>
#include <quillaven/raster/shape_check_internal.h>

namespace {

constexpr std::size_t kLongestHeaderLine = 127;
constexpr std::size_t kLongestText = 63;
constexpr std::size_t kOutputBlock = std::size_t{1} << 16;

// The second word of a header line; the first is not looked at.
std::string SecondWord(std::string const &line) {
  constexpr char kBlanks[] = " \t\v\f\r";
  std::size_t const first = line.find_first_not_of(kBlanks);
  std::size_t const gap = line.find_first_of(kBlanks, first);
  std::size_t const begin = line.find_first_not_of(kBlanks, gap);
  if (first == std::string::npos || gap == std::string::npos || begin == std::string::npos)
    return {};
  std::size_t const end = std::min(line.find_first_of(kBlanks, begin), line.size());
  return line.substr(begin, end - begin);
}

void ReadText(TextReader &reader, std::string &text) {
  std::string const word = SecondWord(reader.Line(kLongestHeaderLine));
  if (!word.empty()) text = word.substr(0, kLongestText);
}

template <class T>
void ReadCells(TextReader &reader, CMultiScaleMatrix<T> &raster) {
  if (raster.NRows() < 1 || raster.NCols() < 1) return;
  std::vector<T> row(static_cast<std::size_t>(raster.NCols()));
  double number = 0;  // behind a word or the end, cells take the last number that was read
  for (int r = 0; r < raster.NRows(); ++r) {
    for (T &cell : row) {
      reader.Number(number);
      cell = ConvertCell<T>(number);
    }
    CRasterAccess::WriteRow(raster, r, row.data());
  }
}

std::string ReadWholeFile(std::ifstream &stream) {
  stream.seekg(0, std::ios::end);
  std::streamoff const size = stream.tellg();
  std::string text;
  if (size > 0) {
    stream.seekg(0);
    text.resize(static_cast<std::size_t>(size));
    stream.read(text.data(), size);
    text.resize(static_cast<std::size_t>(stream.gcount()));
  } else {  // not a plain file: read it to its end
    stream.clear();
    text.assign(std::istreambuf_iterator<char>(stream), {});
  }
  return text;
}

template <class T>
std::string Header(GridTexts const &texts, CMultiScaleMatrix<T> const &raster) {
  return "NCOLS " + std::to_string(raster.NCols()) + "\nNROWS " + std::to_string(raster.NRows()) +
         "\nXLLCORNER " + texts.xCorner + "\nYLLCORNER " + texts.yCorner + "\nCELLSIZE " +
         texts.cellSize + "\nNODATA_VALUE " +
         TextOfNumber(static_cast<double>(raster.NoDataValue())) + "\n";
}

}  // namespace

template <class T>
bool ExportAsciiGrid(char const *file, GridTexts const &texts, CMultiScaleMatrix<T> const &raster) {
  std::ofstream stream(SystemPath(file));
  if (!stream) return false;
  std::string const header = Header(texts, raster);
  stream.write(header.data(), static_cast<std::streamsize>(header.size()));

  int const cols = raster.NRows() < 1 ? 0 : std::max(raster.NCols(), 0);
  std::vector<T> row(static_cast<std::size_t>(cols));
  // Room for a block of output and one number more.
  std::vector<char> block(kOutputBlock + kNumberTextSize + 2);
  char *out = block.data();
  auto const flush = [&] {
    stream.write(block.data(), out - block.data());
    out = block.data();
  };
  auto const flushWhenFull = [&] {
    if (out - block.data() >= static_cast<std::ptrdiff_t>(kOutputBlock)) flush();
  };
  for (int r = 0; r < raster.NRows(); ++r) {
    CRasterAccess::ReadRow(raster, r, 0, cols, row.data());
    for (int c = 0; c < cols; ++c) {
      if (c > 0) *out++ = ' ';
      out = WriteG(out, static_cast<double>(row[static_cast<std::size_t>(c)]));
      flushWhenFull();
    }
    *out++ = '\n';
    flushWhenFull();
  }
  flush();
  return true;
}

template <class T>
bool ImportAsciiGrid(char const *file, GridTexts &texts, CMultiScaleMatrix<T> &raster) {
  std::ifstream stream = OpenInputFile(file, std::ios::binary);
  if (!stream) {
    NoSuchFile(file);
    return false;
  }
  std::string const text = ReadWholeFile(stream);
  TextReader reader(text);
  int const cols = LeadingInteger(SecondWord(reader.Line(kLongestHeaderLine)).c_str());
  int const rows = LeadingInteger(SecondWord(reader.Line(kLongestHeaderLine)).c_str());
  // A cell takes a digit and a blank at least.
  bool const believed = AreCellsBelievable(rows, cols, [&] { return reader.Left() / 2 + 1; });
  raster.Redim(believed ? rows : 0, believed ? cols : 0, DefaultFineResolution());
  ReadText(reader, texts.xCorner);
  ReadText(reader, texts.yCorner);
  ReadText(reader, texts.cellSize);
  double noData = static_cast<double>(CSmartIOHeader().m_fNoData);  // where the file tells none
  LeadingNumber(SecondWord(reader.Line(kLongestHeaderLine)), noData);
  raster.SetNoDataValue(true, NearestFloat(noData));
  ReadCells(reader, raster);
  return believed && !reader.MetEnd();
}

template bool ExportAsciiGrid(char const *, GridTexts const &, CMultiScaleMatrix<float> const &);
template bool ExportAsciiGrid(char const *, GridTexts const &, CMultiScaleMatrix<short> const &);
template bool ExportAsciiGrid(char const *, GridTexts const &,
                              CMultiScaleMatrix<unsigned char> const &);
template bool ImportAsciiGrid(char const *, GridTexts &, CMultiScaleMatrix<float> &);
template bool ImportAsciiGrid(char const *, GridTexts &, CMultiScaleMatrix<short> &);
template bool ImportAsciiGrid(char const *, GridTexts &, CMultiScaleMatrix<unsigned char> &);
