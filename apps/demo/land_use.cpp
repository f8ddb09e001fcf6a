// The first chapter: the land use of Liechtenstein, read at one scale and at two, edited, drawn and
// written back. TellLandUse() at the end of this file reads as the story.

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "apps/demo/story.h"

namespace {

constexpr int kAsciiGrid = 1;  // the format number of OnFileImport and OnFileExport

// Classes of the legend "Landuse".
constexpr int kResidential = 1;
constexpr int kPublicFacilities = 3;
constexpr int kUrbanGreen = 4;
constexpr int kArableLand = 5;
constexpr int kForest = 8;
constexpr int kTransport = 12;

struct Cell {
  int row = 0;
  int col = 0;
};

bool IsSettlement(unsigned char value) {
  return value >= kResidential && value <= kPublicFacilities;
}

// A raster whose fine blocks are those that hold a settlement cell. Only its pattern matters.
CMultiScaleByteMatrix FineAlongSettlements(CMultiScaleByteMatrix const &classes) {
  CMultiScaleByteMatrix pattern;
  pattern.Redim(classes.NRows(), classes.NCols(), kBlockWidth);
  AssignMultiScaleByteMatrix(pattern, 0);
  for (int row = 0; row < classes.NRows(); ++row)
    for (int col = 0; col < classes.NCols(); ++col)
      if (IsSettlement(classes.At(row, col))) pattern.FineCell(row, col, true);
  return pattern;
}

std::string Cells(long long count) {
  return std::to_string(count) + (count == 1 ? " cell" : " cells");
}

// Values that a raster stores: one for each block, and W x W more for each fine block.
struct Figures {
  long long blocks = 0;
  long long fineBlocks = 0;
  long long stored = 0;
};

Figures Count(CMultiScaleByteMatrix &raster) {
  Figures figures;
  int const width = raster.W();
  for (int row = 0; row < raster.NRows(); row += width) {
    for (int col = 0; col < raster.NCols(); col += width) {
      ++figures.blocks;
      if (width > 1 && raster.FineCell(row, col)) ++figures.fineBlocks;
    }
  }
  figures.stored = figures.blocks + figures.fineBlocks * width * width;
  return figures;
}

void PrintFigures(char const *title, CMultiScaleByteMatrix &raster) {
  Figures const figures = Count(raster);
  constexpr long long kIndexEntry = 4;
  long long const index = raster.W() > 1 ? figures.blocks * kIndexEntry : 0;
  std::printf("%s\n", title);
  std::printf("  rows %d, cols %d, blocks of %d x %d: %lld, of them fine %lld\n", raster.NRows(),
              raster.NCols(), raster.W(), raster.W(), figures.blocks, figures.fineBlocks);
  std::printf("  stored cells %lld of %lld, memory %.1f KiB of cells and %.1f KiB of index\n",
              figures.stored, static_cast<long long>(raster.NRows()) * raster.NCols(),
              static_cast<double>(figures.stored) / 1024.0, static_cast<double>(index) / 1024.0);
}

// The first cell of a class at or behind a start, in row order.
Cell FindCell(CMultiScaleByteMatrix const &raster, int value, Cell start) {
  for (int row = start.row; row < raster.NRows(); ++row)
    for (int col = row == start.row ? start.col : 0; col < raster.NCols(); ++col)
      if (raster.At(row, col) == value) return {row, col};
  throw Failure("the grid has no cell of class " + std::to_string(value));
}

// A square of cells around one, moved where needed so that it lies on the raster.
CRect Around(CMultiScaleByteMatrix const &raster, Cell cell) {
  constexpr int kSide = 64;
  auto const from = [](int centre, int size) {
    return std::max(0, std::min(centre - kSide / 2, size - kSide));
  };
  CRect part;
  part.left = from(cell.col, raster.NCols());
  part.top = from(cell.row, raster.NRows());
  part.right = std::min(part.left + kSide, raster.NCols()) - 1;
  part.bottom = std::min(part.top + kSide, raster.NRows()) - 1;
  return part;
}

void PrintClasses(CByteMatrixBaseMap &map, CMultiScaleByteMatrix const &raster) {
  std::vector<long long> counts(static_cast<std::size_t>(map.GetLegendItemCount()));
  for (int row = 0; row < raster.NRows(); ++row)
    for (int col = 0; col < raster.NCols(); ++col)
      if (int const item = map.GetCellLegendIndex(row, col); item >= 0)
        ++counts[static_cast<std::size_t>(item)];
  for (int item = 0; item < map.GetLegendItemCount(); ++item)
    std::printf("  %2d  %-26s %7lld cells\n", item, map.GetLegendItemName(item).c_str(),
                counts[static_cast<std::size_t>(item)]);
}

void PaintOne(CByteMatrixBaseMap &map, CMultiScaleByteMatrix &raster, Cell cell, int item) {
  CMultiScaleByteMatrix const before = raster;  // NOLINT: the map changes the raster
  std::string const name = map.GetCellString(cell.row, cell.col);
  map.m_nSelectedItem = item;
  map.SetCell(cell.row, cell.col);
  std::printf("  cell (%d, %d), in a %s block: %s becomes %s; %s changed\n", cell.row, cell.col,
              raster.FineCell(cell.row, cell.col) ? "fine" : "coarse", name.c_str(),
              map.GetCellString(cell.row, cell.col).c_str(),
              Cells(CountDifferences(before, raster)).c_str());
}

void FillOne(CByteMatrixBaseMap &map, CMultiScaleByteMatrix &raster, Cell cell, int item) {
  CMultiScaleByteMatrix const before = raster;  // NOLINT: the map changes the raster
  std::string const name = map.GetCellString(cell.row, cell.col);
  map.m_nSelectedItem = item;
  map.FillArea(cell.row, cell.col);
  std::printf("  area around (%d, %d): %s becomes %s; %s changed\n", cell.row, cell.col,
              name.c_str(), map.GetCellString(cell.row, cell.col).c_str(),
              Cells(CountDifferences(before, raster)).c_str());
}

// Reads the written grid into a raster of the same blocks and compares every cell.
void CompareWithFile(CMultiScaleByteMatrix const &raster, std::string const &file) {
  CMultiScaleByteMatrix again;
  CByteMatrixBaseMap map;
  AttachLandUse(map, again);
  if (map.OnFileImport(file.c_str(), kAsciiGrid) == 0)
    throw Failure("cannot read all of '" + file + "'");
  long long const cells = static_cast<long long>(raster.NRows()) * raster.NCols();
  bool const sameShape = again.NRows() == raster.NRows() && again.NCols() == raster.NCols();
  long long const different = sameShape ? CountDifferences(raster, again) : cells;
  if (different > 0)
    throw Failure(std::to_string(different) + " cells differ from what was written");
  std::printf("  read back: all %lld cells agree\n", cells);
}

}  // namespace

void TellLandUse(std::string const &data, Output &output, Progress &progress) {
  std::string const grid = data + "/liechtenstein/landuse.asc";
  output.Chapter(
      "Land use at one scale and at two",
      "A raster at two scales has one value for a block of 8 x 8 cells, but for the blocks "
      "that are refined: here those with a settlement. It is edited like any other map.");

  progress.Step("reading the grid at one scale");
  CMultiScaleByteMatrix oneScale = ReadClasses(grid);
  CByteMatrixBaseMap map;
  AttachLandUse(map, oneScale);
  progress.Clear();
  std::printf("Land use of Liechtenstein, (c) OpenStreetMap contributors, ODbL 1.0\n\n");
  PrintFigures("At one scale", oneScale);
  PrintClasses(map, oneScale);
  progress.Step("drawing it");
  output.Draw(map, "1-one-scale", 1, Whole(oneScale), "one scale", "At one scale");

  // From here on every raster has blocks of 8 x 8 cells, fine where settlements are.
  progress.Step("reading the grid at two scales");
  CMultiScaleByteMatrix pattern = FineAlongSettlements(oneScale);
  DefaultFineResolution(kBlockWidth);
  DefaultResolutionMap(&pattern);
  CMultiScaleByteMatrix raster = ReadClasses(grid);
  AttachLandUse(map, raster);
  progress.Clear();
  std::printf("\n");
  PrintFigures("At two scales, fine along the settlements", raster);
  std::printf("  %lld cells show another class than at one scale\n",
              CountDifferences(oneScale, raster));
  progress.Step("drawing it");
  output.Draw(map, "2-two-scales", 1, Whole(raster), "two scales",
              "At two scales, fine along the settlements");

  progress.Step("painting a cell and a block");
  progress.Clear();
  std::printf("\nEditing\n");
  Cell const house = FindCell(raster, kResidential, {raster.NRows() / 2, 0});
  PaintOne(map, raster, house, kTransport);
  Cell const wood = FindCell(raster, kForest, {house.row, 0});
  PaintOne(map, raster, wood, kArableLand);
  output.Draw(map, "3-painted-cell", 8, Around(raster, house), "a cell", "A painted cell");
  output.Draw(map, "4-painted-block", 8, Around(raster, wood), "a block",
              "A painted cell in a coarse block: the block changes");

  progress.Step("filling an area");
  // A fill walks from cell to cell, so it is at home where blocks are fine: in a settlement.
  progress.Clear();
  FillOne(map, raster, FindCell(raster, kResidential, {house.row + 1, 0}), kUrbanGreen);
  output.Draw(map, "5-filled-area", 1, Whole(raster), "filled", "A filled area");

  progress.Step("writing the edited grid");
  std::string const edited = output.Add("edited.asc");
  if (map.OnFileExport(edited.c_str(), kAsciiGrid) == 0)
    throw Failure("cannot write '" + edited + "'");
  progress.Step("reading it back");
  progress.Clear();
  CompareWithFile(raster, edited);
  DefaultResolutionMap(nullptr);
  DefaultFineResolution(1);
}
