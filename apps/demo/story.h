// The chapters of the demo, in the order in which they are told. Each prints what it does and writes
// its files through the output.

#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <quillaven/quillaven.h>

#include "apps/console.h"
#include "apps/pixel_files.h"

constexpr unsigned char kNoDataClass = 255;
constexpr int kBlockWidth = 8;  // cells along a coarse block in runs at two scales

/// The files that the demo writes, in order, and the pictures among them that its page shows.
class Output {
 public:
  explicit Output(std::string const &folder);

  /// The path of a new file.
  std::string Add(std::string const &name);
  /// Draws a part of a map through its legend as NAME.bmp; the same picture is returned.
  PixelPicture Draw(CByteMatrixBaseMap &map, std::string const &name, int zoom, CRect part,
                    std::string const &stamp);
  /// Writes a picture as NAME.png, and shows it on the page if there is a caption.
  void AddPicture(PixelPicture const &picture, std::string const &name, std::string const &caption);
  /// Notes a picture that is there for the page.
  void Show(std::string const &file, std::string const &caption);
  /// A chapter of the page: the pictures that follow stand below its title.
  void Chapter(std::string const &title, std::string const &text);
  /// What stands between a chapter's text and its pictures: the colours of a legend, the lines of a
  /// rule, figures with a heading in the first row, a text file as it is.
  void Key(CByteMatrixBaseMap &map);
  void Lines(std::vector<std::string> const &lines);
  void Table(std::vector<std::vector<std::string>> const &rows);
  void Text(std::string const &file);

  /// Writes the page with all chapters as index.html.
  void WritePage();
  void Print() const;

 private:
  // What a chapter shows, as HTML.
  struct Section {
    std::string title;
    std::string text;
    std::string figures;
    std::string pictures;
  };

  std::filesystem::path m_folder;
  std::vector<std::string> m_files;
  std::vector<Section> m_sections;
};

/// Land use of a country in a byte raster, whose cells are class numbers, with 255 for cells without
/// data. The raster follows the default resolution.
CMultiScaleByteMatrix ReadClasses(std::string const &grid);
void AttachLandUse(CByteMatrixBaseMap &map, CMultiScaleByteMatrix &raster);
CRect Whole(CMultiScaleByteMatrix const &raster);
long long CountDifferences(CMultiScaleByteMatrix const &a, CMultiScaleByteMatrix const &b);
/// Values that a raster stores: one for each block, and W x W more for each fine block.
template <class Raster>
long long StoredCells(Raster &raster) {
  long long stored = 0;
  int const width = raster.W();
  for (int row = 0; row < raster.NRows(); row += width)
    for (int col = 0; col < raster.NCols(); col += width)
      stored += 1 + (width > 1 && raster.FineCell(row, col) ? width * width : 0);
  return stored;
}

/// Bytes of the index over a raster's blocks: four for each, and none at one scale.
template <class Raster>
long long IndexBytes(Raster const &raster) {
  long long const width = raster.W();
  long long const blocks =
      ((raster.NRows() + width - 1) / width) * ((raster.NCols() + width - 1) / width);
  return width > 1 ? 4 * blocks : 0;
}

/// Rasters at one scale and at two, edited, drawn, written and read back.
void TellLandUse(std::string const &data, Output &output, Progress &progress);
/// Roads and railways as one network over three years. The definitions file is left for the growth,
/// and its path is the result.
std::string TellRoads(std::string const &data, Output &output, Progress &progress);
/// Settlements that grow from year to year, at one scale and at two.
void TellGrowth(std::string const &data, std::string const &networkYears, unsigned int seed,
                Output &output, Progress &progress);
