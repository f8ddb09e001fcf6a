// Files against GDAL's drivers for the same content, and against one plain write or read of the same
// bytes. Without GDAL, grids are compared with what the standard library offers, and the other
// comparisons with it are left out.
//
// "ratio" is the time of the library divided by that of the peer.

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#ifdef QUILLAVEN_HAS_GDAL
#include <cpl_conv.h>
#include <cpl_error.h>
#include <gdal.h>
#endif

#include <quillaven/exchange/bitmap.h>
#include <quillaven/exchange/raster_exchange_internal.h>
#include <quillaven/foundation/number_text_internal.h>
#include <quillaven/legends/bitmap_legend.h>
#include <quillaven/legends/colors.h>
#include <quillaven/maps/matrix_base_map.h>
#include <quillaven/platform/archive.h>
#include <quillaven/raster/raster_access_internal.h>
#include <quillaven/raster/raster_operations.h>

#include "benchmarks/compare.h"
#include "tests/support/temporary_directory.h"

namespace {

int const kGridSide = Sized(1200);
int const kBitmapSide = Sized(2000);
int const kMapSide = Sized(4000);
double const kGridCells = static_cast<double>(kGridSide) * kGridSide;
double const kMapCells = static_cast<double>(kMapSide) * kMapSide;

// Heights with a few decimals, as grids have them.
CMultiScaleFloatMatrix Heights(int side, int width = 1) {
  CMultiScaleFloatMatrix raster;
  raster.Redim(side, side, width);
  std::mt19937 random(5);
  std::bernoulli_distribution fine(0.1);
  for (int row = 0; width > 1 && row < side; row += width)
    for (int col = 0; col < side; col += width)
      if (fine(random)) raster.FineCell(row, col, true);
  std::uniform_real_distribution<float> height(0, 3000);
  for (int row = 0; row < side; ++row)
    for (int col = 0; col < side; ++col)
      raster.At(row, col) = std::round(height(random) * 100) / 100;
  return raster;
}

std::vector<float> CellsOf(CMultiScaleFloatMatrix const &raster) {
  auto const cols = static_cast<std::size_t>(raster.NCols());
  std::vector<float> cells(static_cast<std::size_t>(raster.NRows()) * cols);
  for (int row = 0; row < raster.NRows(); ++row)
    CRasterAccess::ReadRow(raster, row, 0, raster.NCols(),
                           cells.data() + static_cast<std::size_t>(row) * cols);
  return cells;
}

#ifdef QUILLAVEN_HAS_GDAL

void StartGdal() {
  static bool const started = [] {
    GDALAllRegister();
    CPLSetErrorHandler(CPLQuietErrorHandler);
    CPLSetConfigOption("GDAL_PAM_ENABLED", "NO");  // no side files
    return true;
  }();
  benchmark::DoNotOptimize(started);
}

// A dataset in memory over cells that stay the caller's.
GDALDatasetH InMemory(void *cells, int side, GDALDataType type) {
  StartGdal();
  GDALDatasetH dataset = GDALCreate(GDALGetDriverByName("MEM"), "", side, side, 0, type, nullptr);
  char pointer[64] = {};
  CPLPrintPointer(pointer, cells, sizeof pointer - 1);
  std::string const option = std::string("DATAPOINTER=") + pointer;
  char const *options[] = {option.c_str(), nullptr};
  GDALAddBand(dataset, type, const_cast<char **>(options));
  return dataset;
}

void GdalWrite(GDALDatasetH source, char const *driver, std::string const &file,
               char const *option = nullptr) {
  char const *options[] = {option, nullptr};
  GDALDatasetH written = GDALCreateCopy(GDALGetDriverByName(driver), file.c_str(), source, FALSE,
                                        const_cast<char **>(options), nullptr, nullptr);
  if (written == nullptr) std::abort();
  GDALClose(written);
}

void GdalRead(std::string const &file, std::vector<float> &cells, int side) {
  StartGdal();
  GDALDatasetH dataset = GDALOpen(file.c_str(), GA_ReadOnly);
  if (dataset == nullptr) std::abort();
  CPLErr const error = GDALRasterIO(GDALGetRasterBand(dataset, 1), GF_Read, 0, 0, side, side,
                                    cells.data(), side, side, GDT_Float32, 0, 0);
  if (error != CE_None) std::abort();
  GDALClose(dataset);
}

#endif

// ---- ASCII grids ----

void WriteWithPrintf(std::string const &file, std::vector<float> const &cells) {
  std::FILE *out = std::fopen(file.c_str(), "w");
  auto const side = static_cast<std::size_t>(kGridSide);
  for (std::size_t i = 0; i < cells.size(); ++i)
    std::fprintf(out, i % side == side - 1 ? "%g\n" : "%g ", static_cast<double>(cells[i]));
  std::fclose(out);
}

void ReadWithStream(std::string const &file, std::vector<float> &cells) {
  std::ifstream in(file);
  std::string line;
  for (int i = 0; i < 6; ++i) std::getline(in, line);
  for (float &cell : cells) in >> cell;
}

void BM_GridImport(benchmark::State &state) {
  TemporaryDirectory directory;
  std::string const file = directory.Path("a.asc");
  GridTexts texts;
  ExportAsciiGrid(file.c_str(), texts, Heights(kGridSide));
  CMultiScaleFloatMatrix raster;
  std::vector<float> cells(static_cast<std::size_t>(kGridCells));
  auto const ours = [&] { ImportAsciiGrid(file.c_str(), texts, raster); };
#ifdef QUILLAVEN_HAS_GDAL
  Compare(state, kGridCells, ours, [&] { GdalRead(file, cells, kGridSide); });
#else
  Compare(state, kGridCells, ours, [&] { ReadWithStream(file, cells); });
#endif
}

void BM_GridImportVersusStream(benchmark::State &state) {
  TemporaryDirectory directory;
  std::string const file = directory.Path("a.asc");
  GridTexts texts;
  ExportAsciiGrid(file.c_str(), texts, Heights(kGridSide));
  CMultiScaleFloatMatrix raster;
  std::vector<float> cells(static_cast<std::size_t>(kGridCells));
  Compare(
      state, kGridCells, [&] { ImportAsciiGrid(file.c_str(), texts, raster); },
      [&] { ReadWithStream(file, cells); });
}

void BM_GridExport(benchmark::State &state) {
  TemporaryDirectory directory;
  CMultiScaleFloatMatrix const raster = Heights(kGridSide);
  std::vector<float> cells = CellsOf(raster);
  GridTexts const texts;
  auto const ours = [&] { ExportAsciiGrid(directory.Path("a.asc").c_str(), texts, raster); };
#ifdef QUILLAVEN_HAS_GDAL
  GDALDatasetH source = InMemory(cells.data(), kGridSide, GDT_Float32);
  Compare(state, kGridCells, ours,
          [&] { GdalWrite(source, "AAIGrid", directory.Path("b.asc"), "SIGNIFICANT_DIGITS=6"); });
  GDALClose(source);
#else
  Compare(state, kGridCells, ours, [&] { WriteWithPrintf(directory.Path("b.asc"), cells); });
#endif
}

void BM_GridExportVersusPrintf(benchmark::State &state) {
  TemporaryDirectory directory;
  CMultiScaleFloatMatrix const raster = Heights(kGridSide);
  std::vector<float> const cells = CellsOf(raster);
  GridTexts const texts;
  Compare(
      state, kGridCells, [&] { ExportAsciiGrid(directory.Path("a.asc").c_str(), texts, raster); },
      [&] { WriteWithPrintf(directory.Path("b.asc"), cells); });
}

void BM_NumberTextVersusPrintf(benchmark::State &state) {
  std::vector<float> const numbers = CellsOf(Heights(300));
  char text[kNumberTextSize];
  Compare(
      state, static_cast<double>(numbers.size()),
      [&] {
        for (float number : numbers)
          benchmark::DoNotOptimize(WriteG(text, static_cast<double>(number)));
      },
      [&] {
        for (float number : numbers)
          benchmark::DoNotOptimize(
              std::snprintf(text, sizeof text, "%g", static_cast<double>(number)));
      });
}

// ---- bitmaps ----

#ifdef QUILLAVEN_HAS_GDAL
// GDAL gets the class of each cell as a float, and turns it into a byte: from floats to pixels on
// both sides, though only the library classifies.
void BM_Bitmap(benchmark::State &state) {
  TemporaryDirectory directory;
  CMultiScaleFloatMatrix raster;
  raster.Redim(kBitmapSide, kBitmapSide, 1);
  std::vector<float> classes;
  for (int row = 0; row < kBitmapSide; ++row)
    for (int col = 0; col < kBitmapSide; ++col) {
      // Hills, some tens of cells wide.
      raster.At(row, col) = 0.5F + 0.49F * std::sin(static_cast<float>(row) / 37) *
                                       std::cos(static_cast<float>(col) / 53);
      classes.push_back(std::floor(raster.At(row, col) * 11));
    }
  CBitmapLegend legend(false, 0, 0xFFFFFF);
  legend.ReadFile(nullptr);  // eleven classes from 0 to 1
  StartGdal();
  Compare(
      state, static_cast<double>(kBitmapSide) * kBitmapSide,
      [&] {
        WriteBitmap(directory.Path("a.bmp").c_str(), raster, 0, 0, kBitmapSide, kBitmapSide, 1, "",
                    legend);
      },
      [&] {
        GDALDatasetH written =
            GDALCreate(GDALGetDriverByName("BMP"), directory.Path("b.bmp").c_str(), kBitmapSide,
                       kBitmapSide, 1, GDT_Byte, nullptr);
        CPLErr const error =
            GDALRasterIO(GDALGetRasterBand(written, 1), GF_Write, 0, 0, kBitmapSide, kBitmapSide,
                         classes.data(), kBitmapSide, kBitmapSide, GDT_Float32, 0, 0);
        if (error != CE_None) std::abort();
        GDALClose(written);
      });
}
#endif

// ---- map files and Idrisi images ----

class MapFile {
 public:
  explicit MapFile(int width) : raster(Heights(kMapSide, width)) {
    map.Attach("a", "a", &raster, nullptr, false);
  }
  void Store() {
    CFile file(name.c_str(), CFile::modeWrite | CFile::modeCreate);
    CArchive archive(&file, CArchive::store);
    map.Serialize(archive);
    archive.Close();
  }
  void Load() {
    CFile file(name.c_str(), CFile::modeRead);
    CArchive archive(&file, CArchive::load);
    map.Serialize(archive);
  }
  // A load keeps the blocks of the raster as they are.
  void LoadInto(CMultiScaleByteMatrix &pattern, int width) {
    DefaultFineResolution(width);
    DefaultResolutionMap(&pattern);
    Load();
    DefaultResolutionMap(nullptr);
    DefaultFineResolution(1);
  }

  TemporaryDirectory directory;
  std::string name = directory.Path("map");
  CMultiScaleFloatMatrix raster;
  CFloatMatrixBaseMap map;
};

void WriteBlock(std::string const &name, std::vector<float> const &cells) {
  CFile file(name.c_str(), CFile::modeWrite | CFile::modeCreate);
  file.Write(cells.data(), cells.size() * sizeof(float));
}

// Into memory that is fresh, as that of a raster is.
void ReadBlock(std::string const &name, std::size_t count) {
  std::vector<float> cells(count);
  CFile file(name.c_str(), CFile::modeRead);
  benchmark::DoNotOptimize(file.Read(cells.data(), count * sizeof(float)));
}

void BM_MapStoreVersusOneWrite(benchmark::State &state) {
  MapFile file(static_cast<int>(state.range(0)));
  std::vector<float> const cells = CellsOf(file.raster);
  Compare(
      state, kMapCells, [&] { file.Store(); },
      [&] { WriteBlock(file.directory.Path("block"), cells); });
}

void BM_MapLoadVersusOneRead(benchmark::State &state) {
  int const width = static_cast<int>(state.range(0));
  MapFile file(width);
  file.Store();
  std::vector<float> const cells = CellsOf(file.raster);
  WriteBlock(file.directory.Path("block"), cells);
  CMultiScaleByteMatrix pattern;
  pattern.Redim(kMapSide, kMapSide, width);
  for (int row = 0; width > 1 && row < kMapSide; row += width)
    for (int col = 0; col < kMapSide; col += width)
      if (file.raster.FineCell(row, col)) pattern.FineCell(row, col, true);
  Compare(
      state, kMapCells, [&] { file.LoadInto(pattern, width); },
      [&] { ReadBlock(file.directory.Path("block"), cells.size()); });
}

#ifdef QUILLAVEN_HAS_GDAL
void BM_MapStoreVersusGdal(benchmark::State &state) {
  MapFile file(1);
  std::vector<float> cells = CellsOf(file.raster);
  GDALDatasetH source = InMemory(cells.data(), kMapSide, GDT_Float32);
  Compare(
      state, kMapCells, [&] { file.Store(); },
      [&] { GdalWrite(source, "ENVI", file.directory.Path("raw")); });
  GDALClose(source);
}

void BM_MapLoadVersusGdal(benchmark::State &state) {
  MapFile file(1);
  file.Store();
  std::vector<float> cells = CellsOf(file.raster);
  GDALDatasetH source = InMemory(cells.data(), kMapSide, GDT_Float32);
  GdalWrite(source, "ENVI", file.directory.Path("raw"));
  GDALClose(source);
  Compare(
      state, kMapCells, [&] { file.Load(); },
      [&] { GdalRead(file.directory.Path("raw"), cells, kMapSide); });
}

void BM_IdrisiExportVersusGdal(benchmark::State &state) {
  MapFile file(1);
  std::vector<float> cells = CellsOf(file.raster);
  GDALDatasetH source = InMemory(cells.data(), kMapSide, GDT_Float32);
  Compare(
      state, kMapCells,
      [&] { ExportIdrisi(file.directory.Path("a").c_str(), "real", file.raster); },
      [&] { GdalWrite(source, "ENVI", file.directory.Path("raw")); });
  GDALClose(source);
}

void BM_IdrisiImportVersusGdal(benchmark::State &state) {
  MapFile file(1);
  std::vector<float> cells = CellsOf(file.raster);
  ExportIdrisi(file.directory.Path("a").c_str(), "real", file.raster);
  GDALDatasetH source = InMemory(cells.data(), kMapSide, GDT_Float32);
  GdalWrite(source, "ENVI", file.directory.Path("raw"));
  GDALClose(source);
  Compare(
      state, kMapCells, [&] { ImportIdrisi(file.directory.Path("a").c_str(), file.raster); },
      [&] { GdalRead(file.directory.Path("raw"), cells, kMapSide); });
}
#endif

// ---- colours: nanoseconds each, limit 10 ----

void BM_Colors(benchmark::State &state) {
  std::mt19937 random(1);
  std::vector<unsigned long> colors(4096);
  for (unsigned long &color : colors) color = random() & 0xFFFFFF;
  double const count = static_cast<double>(colors.size());
  auto const per = [&](char const *name, auto work) {
    state.counters[name] = SecondsInTurn(work) * 1e9 / count;
  };
  for (auto _ : state) {
    unsigned short h = 0;
    unsigned short l = 0;
    unsigned short s = 0;
    unsigned long color = 0;
    per("to_hls_ns", [&] {
      for (unsigned long const from : colors) {
        RGBtoHLS(from, h, l, s);
        benchmark::DoNotOptimize(h + l + s);
      }
    });
    per("to_rgb_ns", [&] {
      for (unsigned long const from : colors) {
        HLStoRGB(static_cast<unsigned short>(from % 253), from >> 8 & 127, from >> 16 & 127, color);
        benchmark::DoNotOptimize(color);
      }
    });
    per("brighten_ns", [&] {
      for (unsigned long const from : colors) {
        color = from;
        SunShine(color, 0.8);
        benchmark::DoNotOptimize(color);
      }
    });
    state.SetIterationTime(1e-3);
  }
}

}  // namespace

BENCHMARK(BM_GridImport)->Apply(Turns);
BENCHMARK(BM_GridImportVersusStream)->Apply(Turns);
BENCHMARK(BM_GridExport)->Apply(Turns);
BENCHMARK(BM_GridExportVersusPrintf)->Apply(Turns);
BENCHMARK(BM_NumberTextVersusPrintf)->Apply(Turns);
#ifdef QUILLAVEN_HAS_GDAL
BENCHMARK(BM_Bitmap)->Apply(Turns);
BENCHMARK(BM_MapStoreVersusGdal)->Apply(Turns);
BENCHMARK(BM_MapLoadVersusGdal)->Apply(Turns);
BENCHMARK(BM_IdrisiExportVersusGdal)->Apply(Turns);
BENCHMARK(BM_IdrisiImportVersusGdal)->Apply(Turns);
#endif
BENCHMARK(BM_MapStoreVersusOneWrite)->Arg(1)->Arg(8)->Apply(Turns);
BENCHMARK(BM_MapLoadVersusOneRead)->Arg(1)->Arg(8)->Apply(Turns);
BENCHMARK(BM_Colors)->Apply(Turns);
