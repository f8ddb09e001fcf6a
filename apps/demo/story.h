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
  /// Draws a part of a map through its legend as NAME.bmp and NAME.png.
  void Draw(CByteMatrixBaseMap &map, std::string const &name, int zoom, CRect part,
            std::string const &stamp, std::string const &caption);
  /// Writes a picture as NAME.png.
  void AddPicture(PixelPicture const &picture, std::string const &name, std::string const &caption);
  /// Notes a picture that is there for the page.
  void Show(std::string const &file, std::string const &caption);
  /// A chapter of the page: the pictures that follow stand below its title.
  void Chapter(std::string const &title, std::string const &text);

  /// Writes the page with all chapters as index.html.
  void WritePage();
  void Print() const;

 private:
  struct Picture {
    std::string name;
    std::string caption;
  };
  struct Section {
    std::string title;
    std::string text;
    std::vector<Picture> pictures;
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
long long StoredCells(CMultiScaleByteMatrix &raster);

/// Rasters at one scale and at two, edited, drawn, written and read back.
void TellLandUse(std::string const &data, Output &output, Progress &progress);
/// Roads and railways as one network over three years. The definitions file is left for the growth,
/// and its path is the result.
std::string TellRoads(std::string const &data, Output &output);
/// Settlements that grow from year to year, at one scale and at two.
void TellGrowth(std::string const &data, std::string const &networkYears, Output &output,
                Progress &progress);
