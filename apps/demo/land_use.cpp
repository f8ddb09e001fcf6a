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
  long long const index = IndexBytes(raster);
  std::printf("%s\n", title);
  std::printf("  rows %d, cols %d, blocks of %d x %d: %lld, of them fine %lld\n", raster.NRows(),
              raster.NCols(), raster.W(), raster.W(), figures.blocks, figures.fineBlocks);
  std::printf("  stored cells %lld of %lld, memory %.1f KiB of cells and %.1f KiB of index\n",
              figures.stored, static_cast<long long>(raster.NRows()) * raster.NCols(),
              static_cast<double>(figures.stored) / 1024.0, static_cast<double>(index) / 1024.0);
}

long long CellsOf(CMultiScaleByteMatrix const &raster) {
  return static_cast<long long>(raster.NRows()) * raster.NCols();
}

std::vector<std::string> RowOf(std::string const &name, CMultiScaleByteMatrix &raster) {
  Figures const figures = Count(raster);
  return {name, std::to_string(figures.fineBlocks), std::to_string(figures.stored),
          std::to_string(figures.stored), std::to_string(IndexBytes(raster))};
}

// The first cell of a class at or behind a start, in row order.
Cell FindCell(CMultiScaleByteMatrix const &raster, int value, Cell start) {
  for (int row = start.row; row < raster.NRows(); ++row)
    for (int col = row == start.row ? start.col : 0; col < raster.NCols(); ++col)
      if (raster.At(row, col) == value) return {row, col};
  throw Failure("the grid has no cell of class " + std::to_string(value));
}

// A square of cells around one, moved where needed so that it lies on the raster.
CRect Around(CMultiScaleByteMatrix const &raster, Cell cell, int side) {
  auto const from = [side](int centre, int size) {
    return std::max(0, std::min(centre - side / 2, size - side));
  };
  CRect part;
  part.left = from(cell.col, raster.NCols());
  part.top = from(cell.row, raster.NRows());
  part.right = std::min(part.left + side, raster.NCols()) - 1;
  part.bottom = std::min(part.top + side, raster.NRows()) - 1;
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

// The smallest rectangle around all cells that differ.
CRect Changed(CMultiScaleByteMatrix const &before, CMultiScaleByteMatrix const &after) {
  CRect box;
  box.left = after.NCols();
  box.top = after.NRows();
  box.right = box.bottom = -1;
  for (int row = 0; row < after.NRows(); ++row) {
    for (int col = 0; col < after.NCols(); ++col) {
      if (before.At(row, col) == after.At(row, col)) continue;
      box.left = std::min<int>(box.left, col);
      box.right = std::max<int>(box.right, col);
      box.top = std::min<int>(box.top, row);
      box.bottom = std::max<int>(box.bottom, row);
    }
  }
  return box;
}

// A black frame within a white one, so that it shows on any colour, just outside some cells.
void Frame(PixelPicture &picture, CRect cells, CRect part, int zoom) {
  for (int const away : {1, 2, 3, 4}) {
    unsigned int const color = away < 3 ? 0x000000 : 0xFFFFFF;
    int const left = (cells.left - part.left) * zoom - away;
    int const right = (cells.right + 1 - part.left) * zoom + away - 1;
    int const top = (cells.top - part.top) * zoom - away;
    int const bottom = (cells.bottom + 1 - part.top) * zoom + away - 1;
    for (int y = std::max(top, 0); y <= std::min(bottom, picture.height - 1); ++y)
      for (int x = std::max(left, 0); x <= std::min(right, picture.width - 1); ++x)
        if (x == left || x == right || y == top || y == bottom) picture.At(x, y) = color;
  }
}

void DrawEdit(CByteMatrixBaseMap &map, CMultiScaleByteMatrix const &raster, CRect changed,
              std::string const &name, std::string const &caption, Output &output) {
  constexpr int kPixels = 512;
  int side = 64;
  while (side < 256 && std::max(changed.right - changed.left, changed.bottom - changed.top) >= side)
    side *= 2;
  int const zoom = kPixels / side;
  CRect const part = Around(
      raster, {(changed.top + changed.bottom) / 2, (changed.left + changed.right) / 2}, side);
  PixelPicture picture = output.Draw(map, name, zoom, part, "");
  Frame(picture, changed, part, zoom);
  output.AddPicture(picture, name, caption);
}

CRect PaintOne(CByteMatrixBaseMap &map, CMultiScaleByteMatrix &raster, Cell cell, int item) {
  CMultiScaleByteMatrix const before = raster;  // NOLINT: the map changes the raster
  std::string const name = map.GetCellString(cell.row, cell.col);
  map.m_nSelectedItem = item;
  map.SetCell(cell.row, cell.col);
  std::printf("  cell (%d, %d), in a %s block: %s becomes %s; %s changed\n", cell.row, cell.col,
              raster.FineCell(cell.row, cell.col) ? "fine" : "coarse", name.c_str(),
              map.GetCellString(cell.row, cell.col).c_str(),
              Cells(CountDifferences(before, raster)).c_str());
  return Changed(before, raster);
}

CRect FillOne(CByteMatrixBaseMap &map, CMultiScaleByteMatrix &raster, Cell cell, int item) {
  CMultiScaleByteMatrix const before = raster;  // NOLINT: the map changes the raster
  std::string const name = map.GetCellString(cell.row, cell.col);
  map.m_nSelectedItem = item;
  map.FillArea(cell.row, cell.col);
  std::printf("  area around (%d, %d): %s becomes %s; %s changed\n", cell.row, cell.col,
              name.c_str(), map.GetCellString(cell.row, cell.col).c_str(),
              Cells(CountDifferences(before, raster)).c_str());
  return Changed(before, raster);
}

// Reads the written grid into a raster of the same blocks and compares every cell.
void CompareWithFile(CMultiScaleByteMatrix const &raster, std::string const &file,
                     Progress const &progress) {
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
  progress.Clear();
  std::printf("  read back: all %lld cells agree\n", cells);
}

}  // namespace

void TellLandUse(std::string const &data, Output &output, Progress &progress) {
  std::string const grid = data + "/liechtenstein/landuse.asc";
  progress.Step("reading the grid at one scale");
  CMultiScaleByteMatrix oneScale = ReadClasses(grid);
  CByteMatrixBaseMap map;
  AttachLandUse(map, oneScale);
  progress.Clear();
  std::printf("Land use of Liechtenstein, (c) OpenStreetMap contributors, ODbL 1.0\n\n");
  PrintFigures("At one scale", oneScale);
  PrintClasses(map, oneScale);
  progress.Step("drawing it");
  PixelPicture const one = output.Draw(map, "1-one-scale", 1, Whole(oneScale), "one scale");

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
  long long const different = CountDifferences(oneScale, raster);
  std::printf("  %lld cells show another class than at one scale\n", different);
  progress.Step("drawing it");
  output.Chapter(
      "1. Land use, at one scale and at two",
      "The map of a country is a raster: cells of 25 m, each with the number of a class of land "
      "use. "
      "Most of a country is uniform, so a raster may store one value for a block of 8 x 8 cells, "
      "and "
      "single cells only where detail matters; here in blocks with a settlement. What one value "
      "stands for is seen in the right picture: a block is the class of its last cell, so a river "
      "that is narrower than a block becomes a chain of squares. " +
          std::to_string(different) + " of " + std::to_string(CellsOf(raster)) +
          " cells show another class than on the left.");
  output.Key(map);
  output.Table({{"", "fine blocks", "stored cells", "bytes of cells", "bytes of index"},
                RowOf("at one scale", oneScale),
                RowOf("at two scales", raster)});
  output.AddPicture(one, "1-one-scale", "At one scale: every cell is stored");
  output.AddPicture(output.Draw(map, "2-two-scales", 1, Whole(raster), "two scales"),
                    "2-two-scales", "At two scales: fine along the settlements only");

  progress.Step("painting a cell and a block");
  Cell const house = FindCell(raster, kResidential, {raster.NRows() / 2, 0});
  Cell const wood = FindCell(raster, kForest, {house.row, 0});
  progress.Clear();
  std::printf("\nEditing\n");
  output.Chapter("2. Edited like a drawing",
                 "A map is edited by its classes, on both scales alike: an application calls "
                 "SetCell and FillArea where its user clicks. Frames show what changed.");
  CRect changed = PaintOne(map, raster, house, kTransport);
  DrawEdit(map, raster, changed, "3-painted-cell", "In a fine block one cell was painted", output);
  changed = PaintOne(map, raster, wood, kArableLand);
  DrawEdit(map, raster, changed, "4-painted-block",
           "In a coarse block the whole block follows: forest became arable land", output);

  progress.Step("filling an area");
  // A fill walks from cell to cell, so it is at home where blocks are fine: in a settlement.
  Cell const village = FindCell(raster, kResidential, {house.row + 1, 0});
  progress.Clear();
  changed = FillOne(map, raster, village, kUrbanGreen);
  DrawEdit(map, raster, changed, "5-filled-area",
           "An area was filled: connected residential cells became urban green", output);

  progress.Step("writing the edited grid");
  std::string const edited = output.Add("edited.asc");
  if (map.OnFileExport(edited.c_str(), kAsciiGrid) == 0)
    throw Failure("cannot write '" + edited + "'");
  progress.Step("reading it back");
  CompareWithFile(raster, edited, progress);
  DefaultResolutionMap(nullptr);
  DefaultFineResolution(1);
}
