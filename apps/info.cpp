// Tells what a file holds: the kind is found from its first bytes.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "apps/commands.h"
#include "apps/console.h"
#include "apps/files.h"
#include "apps/network_options.h"
#include "apps/raster_files.h"
#include "apps/table_file.h"

namespace {

constexpr int kAsciiGrid = 1;
constexpr std::size_t kClassesShown = 20;
// What a text of an Idrisi document is without a value.
constexpr char kNoText[] = "malformed input";

std::string FirstBytes(std::string const &file, std::size_t count) {
  std::ifstream stream(SystemPath(file), std::ios::binary);
  std::string bytes(count, '\0');
  stream.read(bytes.data(), static_cast<std::streamsize>(count));
  if (stream.bad()) throw Failure("'" + file + "' could not be read");
  bytes.resize(static_cast<std::size_t>(stream.gcount()));
  return bytes;
}

// How often each value occurs, and how many cells have no data.
struct Values {
  std::map<float, long long> counts;
  long long noData = 0;
};

Values CountValues(CMultiScaleFloatMatrix const &raster) {
  Values values;
  for (int row = 0; row < raster.NRows(); ++row) {
    for (int col = 0; col < raster.NCols(); ++col) {
      float const value = raster.At(row, col);
      if (raster.HasNoDataValue() && value == raster.NoDataValue()) {
        ++values.noData;
      } else {
        ++values.counts[value];
      }
    }
  }
  return values;
}

void PrintGrid(std::string const &file) {
  Progress progress(2);
  progress.Step("reading " + file);
  Console const console(HelpDirectory(""));
  CMultiScaleFloatMatrix raster;
  CFloatMatrixBaseMap map;
  map.Attach("", "", &raster, nullptr, false);
  int const read = map.OnFileImport(file.c_str(), kAsciiGrid);
  console.ThrowIfBoxShown(file);
  long long const cells = static_cast<long long>(raster.NRows()) * raster.NCols();
  bool const complete =
      HasCells(raster.NRows(), raster.NCols()) && (read != 0 || GridIsComplete(file, cells));

  progress.Step("counting " + file);
  Values const values = CountValues(raster);
  std::printf("ASCII grid\nrows      %d\ncolumns   %d\nno data   %g (%lld cells)\n", raster.NRows(),
              raster.NCols(), raster.NoDataValue(), values.noData);
  if (!values.counts.empty())
    std::printf("values    %g to %g, %zu different\n", values.counts.begin()->first,
                values.counts.rbegin()->first, values.counts.size());
  if (values.counts.size() <= kClassesShown)
    for (auto const &[value, count] : values.counts) std::printf("%9g %lld cells\n", value, count);
  if (!complete) throw Failure("'" + file + "' ends before its last cell");
}

void PrintPalette(std::string const &file) {
  Console const console(HelpDirectory(""));
  std::vector<unsigned long> palette;
  bool const read = ReadIdrisiPalette(file.c_str(), palette);
  console.ThrowIfBoxShown(file);
  if (!read) throw Failure("the indices of palette '" + file + "' are out of order");
  std::printf("Idrisi palette\ncolours   %zu\n", palette.size());
  PrintColors(palette);
}

// A number of 16 or 32 bits, lowest byte first.
std::uint32_t Number(std::string const &bytes, std::size_t offset, int width) {
  std::uint32_t number = 0;
  for (int i = width - 1; i >= 0; --i)
    number = number << 8 | static_cast<unsigned char>(bytes[offset + static_cast<std::size_t>(i)]);
  return number;
}

void PrintBitmap(std::string const &file) {
  constexpr std::size_t kHeaders = 54;
  std::string const bytes = FirstBytes(file, kHeaders);
  if (bytes.size() < kHeaders) throw Failure("bitmap '" + file + "' ends within its header");
  auto const height = static_cast<std::int32_t>(Number(bytes, 22, 4));
  std::printf("Bitmap\nwidth     %u\nheight    %d\nbits      %u a pixel\ncolours   %u\n",
              Number(bytes, 18, 4), height, Number(bytes, 28, 2), Number(bytes, 46, 4));
}

// Unlike a bitmap's, the numbers of a PNG begin with the highest byte.
std::uint32_t HighFirst(std::string const &bytes, std::size_t offset) {
  std::uint32_t number = 0;
  for (std::size_t i = offset; i < offset + 4; ++i)
    number = number << 8 | static_cast<unsigned char>(bytes[i]);
  return number;
}

void PrintPng(std::string const &file) {
  constexpr std::size_t kHeaders = 26;
  std::string const bytes = FirstBytes(file, kHeaders);
  if (bytes.size() < kHeaders) throw Failure("PNG '" + file + "' ends within its header");
  std::printf("PNG\nwidth     %u\nheight    %u\nbits      %d a channel\n", HighFirst(bytes, 16),
              HighFirst(bytes, 20), bytes[24]);
}

// A folder of its own, with the file as its only legend: legends are read by name from "Legends".
class LegendFolder {
 public:
  explicit LegendFolder(std::string const &file)
      : m_folder(std::filesystem::temp_directory_path() /
                 ("quillaven-" + std::to_string(std::random_device()()))) {
    std::filesystem::create_directories(m_folder / "Legends");
    std::filesystem::copy_file(SystemPath(file), m_folder / "Legends" / "legend.txt");
  }
  ~LegendFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
  }
  LegendFolder(LegendFolder const &) = delete;
  LegendFolder &operator=(LegendFolder const &) = delete;

  std::string Path() const { return m_folder.string(); }

 private:
  std::filesystem::path m_folder;
};

void PrintItems(CFloatMatrixBaseMap &map) {
  std::printf("Legend\nclasses   %d\n", map.GetLegendItemCount());
  for (int item = 0; item < map.GetLegendItemCount(); ++item) {
    unsigned long const color = map.GetLegendItemColor(item);
    std::printf("%5d  %3lu %3lu %3lu  %s\n", item, color & 255, color >> 8 & 255, color >> 16 & 255,
                map.GetLegendItemName(item).c_str());
  }
}

// What the library tells of a legend that it cannot read, without the name of the copy that it read;
// nothing for a legend that is printed.
std::string PrintLegend(std::string const &file) {
  constexpr char kCopy[] = "\\legend.txt ";
  try {
    LegendFolder const folder(file);
    Console const console(folder.Path());
    CMultiScaleFloatMatrix raster;
    CFloatMatrixBaseMap map;
    map.Attach("", "", &raster, "legend.txt", false);
    console.ThrowIfBoxShown("");
    PrintItems(map);
    return "";
  } catch (Failure const &failure) {
    std::string const reason = failure.what();
    std::size_t const copy = reason.find(kCopy);
    return copy == std::string::npos ? reason : reason.substr(copy + sizeof kCopy - 1);
  }
}

bool PrintedAsTable(std::string const &file) {
  try {
    TableInFile found = ReadTable(file, 1);
    std::printf("Function table\nform      %s\npoints    %d\nbetween   %s\n",
                found.tagged ? "tagged" : "compact", found.table.GetSize(),
                found.table.TableLinear() ? "straight lines" : "a spline");
    return true;
  } catch (Failure const &) {
    return false;
  }
}

// No table can be read as a legend: its lines have too few numbers. Vector text goes first, as its
// numbers may pass as those of a table.
void PrintText(std::string const &file) {
  if (DescribedAsVectorText(file)) return;
  std::string const reason = PrintLegend(file);
  if (!reason.empty() && !PrintedAsTable(file) && !DescribedAsYears(file))
    throw Failure("'" + file + "' is of no kind that is known here; as a legend: " + reason);
}

// Either file of an Idrisi pair stands for both.
void PrintIdrisi(std::string const &file) {
  Console const console(HelpDirectory(""));
  CIdrisiImageHeader header = ReadIdrisiDocument(file, console);
  std::string const title = header.Title();
  std::printf("Idrisi image\n");
  if (title != kNoText) std::printf("title     %s\n", title.c_str());
  std::printf("type      %s, %s\nrows      %d\ncolumns   %d\n", header.DataType(),
              header.FileType(), header.Rows(), header.Columns());
  std::printf("corners   %g %g to %g %g\nvalues    %g to %g\nflag      %s, %s\n", header.MinX(),
              header.MinY(), header.MaxX(), header.MaxY(), header.MinValue(), header.MaxValue(),
              header.FlagValue(), header.FlagDefinition());
  for (int i = 0; i < header.CategoryCount(); ++i)
    std::printf("%9d %s\n", i, header.CategoryTitle(i));
  RequireIdrisiImage(file, header);
}

bool PrintedAsMap(std::string const &file) {
  std::optional<MapHead> const head = ReadMapHead(file);
  if (!head) return false;
  char const *const types[] = {"none", "byte", "short", "", "float"};
  std::printf("Map file\nrows      %d\ncolumns   %d\ncells     %s\nclasses   %d\n", head->rows,
              head->cols, types[head->cellBytes], head->items);
  return true;
}

bool IsText(std::string const &file) {
  std::string const bytes = FirstBytes(file, 512);
  return std::all_of(bytes.begin(), bytes.end(), [](unsigned char c) {
    return c >= 32 || c == '\t' || c == '\n' || c == '\r';
  });
}

}  // namespace

void Info(std::string const &file) {
  RequirePlainFile(file);
  std::string const start = FirstBytes(file, 8);
  bool const isPair = KindOfRaster(file) == RasterKind::kIdrisi;  // an image may hold no cells
  if (start.empty() && !isPair) throw Failure("'" + file + "' is empty");
  if (IsGrid(file)) return PrintGrid(file);
  if (start == "[IDRISI]") return PrintPalette(file);
  if (isPair) return PrintIdrisi(file);
  if (start.starts_with("MI03")) return DescribeNetwork(file);
  if (start == "\x89PNG\r\n\x1a\n") return PrintPng(file);
  if (PrintedAsMap(file)) return;
  if (start.starts_with("BM")) return PrintBitmap(file);
  if (!IsText(file)) throw Failure("'" + file + "' is of no kind that is known here");
  PrintText(file);
}
