// The maps over rasters: they show cells through a legend, let a user paint cells and fill areas,
// and hand the raster to the file code.
//
//   CMultiScaleByteMatrix raster;                    // must outlive the map; a copy shares it
//   CByteMatrixBaseMap map;
//   map.Attach("Landuse", "Land use", &raster, "Landuse.txt");
//   map.m_nSelectedItem = 8;
//   map.FillArea(120, 340);                          // paints the class around that cell
//
// Cells are addressed (row, col) of the fine grid; in a coarse block an edit changes the whole
// block. Where the raster has a no-data value in force, cells that equal it are white, have item -1
// and the text "NODATA". With m_bJitter set, values are shown with a random factor of 0.5 to 1.5.
//
// The base's m_nRows and m_nCols are taken from the raster by Attach and whenever the colour or
// item of cell (0, 0) is asked for, as every draw begins there. Changes of cells set the bit 2 of
// the modified word and are told to the main window by message 32771.

#pragma once

#include <string>

#include <quillaven/legends/map_legend.h>
#include <quillaven/maps/base_map.h>
#include <quillaven/platform/api.h>
#include <quillaven/raster/multiscale_matrix.h>

/// What the three typed maps have in common. T is the element type of the raster.
template <class T>
class CMatrixBaseMap : public CBaseMap {
 public:
  ~CMatrixBaseMap() override = default;

  /// The raster's own size, read fresh; 0 without a raster.
  int NRows() const override;
  int NCols() const override;

  /// Colour, text and legend item of a cell. Without a raster: a grey ramp over m_nRows by m_nCols,
  /// the place "row,col", and item 0. A cell off the raster is shown as one without data. No
  /// allocation but for the text.
  unsigned long GetCellColor(int row, int col) override;
  std::string GetCellString(int row, int col) override;
  int GetCellLegendIndex(int row, int col) override;

  /// Stores the value of m_nSelectedItem, or 0, in a cell. The value of an item is the number that
  /// its name begins with (float and short maps, 0 for a name that is no number), or the item's
  /// number itself, by its low 8 bits (byte maps). Off the raster nothing is stored.
  void SetCell(int row, int col) override;
  void ClearCell(int row, int col) override;

  /// Paints all cells of one class around a start, four-connected, breadth first: up, right, down,
  /// left. Nothing at all happens if the start has the selected item already, not even the end of
  /// the wait cursor. Maps of more than 1024 columns are not filled correctly: a column is held in
  /// 10 bits. A coarse block is painted whole through the cell that the fill came to, and left only
  /// to that cell's neighbours. A cell is painted at most once. Costs a bit for each cell and a
  /// queue.
  void FillArea(int row, int col) override;

  /// The scale of the block of a cell, as the raster has it.
  void FineCell(int row, int col, bool fine) override;
  bool FineCell(int row, int col) override;
  /// Follows the blocks of a resolution map.
  void UpdateResolution(CMultiScaleByteMatrix &resMap, int resolution);

  /// Reads and writes a legend file in "Legends".
  void ReadLegend(char const *file);
  void WriteLegend(char const *file);

  /// Stores or loads the map file: the base's part, then every cell of the fine grid row by row, 4,
  /// 2 or 1 bytes each, little-endian. Storing takes the stored sizes m_nRows and m_nCols, which
  /// must be the raster's. Loading redimensions the raster with the default resolution; a coarse
  /// block keeps the last of its cells. The no-data value, the legend rule and the modified word
  /// stay as they are. What the archive throws passes; sizes that the file cannot hold end in
  /// endOfFile or std::bad_alloc, with an empty raster and sizes of 0. More than 67108864 cells come
  /// only from a file that can tell its length. Costs one pass over the cells.
  void Serialize(CArchive &archive) override;

  /// Reads and writes a raster file by format number: 0 an Idrisi pair, 1 an ASCII grid. Non-zero
  /// for success. An import redimensions the raster with the default resolution; it tells the main
  /// window and sets the modified bit first, whatever comes of it.
  int OnFileImport(char const *file, int format) override;
  int OnFileExport(char const *file, int format) override;
  /// Draws a rectangle, its sides inclusive, into an 8-bit bitmap of `zoom` pixels a cell, through
  /// the legend file that has the map's base name with ".txt". Non-zero for success.
  int WriteBitmap(char const *file, int zoom, CRect rectangle, char const *stamp) override;

  /// The raster, not owned; null until Attach.
  CMultiScaleMatrix<T> *m_pMatrix = nullptr;
  CMapLegend m_Legend;

 protected:
  CMatrixBaseMap() = default;
  CMatrixBaseMap(CMatrixBaseMap const &) = default;
  CMatrixBaseMap &operator=(CMatrixBaseMap const &) = default;

  void AttachRaster(char const *baseName, char const *title, CMultiScaleMatrix<T> *raster,
                    char const *legendFile);
  T ValueOfItem(int item) const;
  /// The Idrisi data type that the map is exported as.
  virtual char const *ExportDataType() const = 0;

 private:
  template <class Answer>
  auto ShowCell(int row, int col, Answer answer);
  void StoreAndTell(int row, int col, T value);
  void RefreshSize();
  void PaintArea(int row, int col, int old, T value);
};

QUILLAVEN_API_INSTANCE(CMatrixBaseMap<float>);
QUILLAVEN_API_INSTANCE(CMatrixBaseMap<short>);
QUILLAVEN_API_INSTANCE(CMatrixBaseMap<unsigned char>);

class QUILLAVEN_API CFloatMatrixBaseMap : public CMatrixBaseMap<float> {
 public:
  CFloatMatrixBaseMap() = default;
  CFloatMatrixBaseMap(CFloatMatrixBaseMap const &) = default;
  CFloatMatrixBaseMap &operator=(CFloatMatrixBaseMap const &) = default;
  ~CFloatMatrixBaseMap() override;

  /// Joins the map to a raster, which must not be null, and reads the legend: a file in "Legends",
  /// or null for the default legend. `exportAsByte` chooses the data type of an Idrisi export.
  void Attach(char const *baseName, char const *title, CMultiScaleFloatMatrix *raster,
              char const *legendFile, bool exportAsByte);
  float ValueOfLegendIndex(int item) const { return ValueOfItem(item); }

  bool m_bExportAsByte = false;

 protected:
  char const *ExportDataType() const override { return m_bExportAsByte ? "byte" : "real"; }
};

class QUILLAVEN_API CShortMatrixBaseMap : public CMatrixBaseMap<short> {
 public:
  CShortMatrixBaseMap() = default;
  CShortMatrixBaseMap(CShortMatrixBaseMap const &) = default;
  CShortMatrixBaseMap &operator=(CShortMatrixBaseMap const &) = default;
  ~CShortMatrixBaseMap() override;

  void Attach(char const *baseName, char const *title, CMultiScaleShortMatrix *raster,
              char const *legendFile);
  short ValueOfLegendIndex(int item) const { return ValueOfItem(item); }

 protected:
  char const *ExportDataType() const override { return "integer"; }
};

class QUILLAVEN_API CByteMatrixBaseMap : public CMatrixBaseMap<unsigned char> {
 public:
  CByteMatrixBaseMap() = default;
  CByteMatrixBaseMap(CByteMatrixBaseMap const &) = default;
  CByteMatrixBaseMap &operator=(CByteMatrixBaseMap const &) = default;
  ~CByteMatrixBaseMap() override;

  void Attach(char const *baseName, char const *title, CMultiScaleByteMatrix *raster,
              char const *legendFile);

 protected:
  char const *ExportDataType() const override { return "byte"; }
};
