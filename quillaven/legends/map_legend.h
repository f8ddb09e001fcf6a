// The rule that turns a cell value into a class, and through it into a colour and a text.
//
//   CMapLegend legend;
//   legend.SetBaseMapLegend(&map, "Landuse.txt");        // from the folder "Legends"
//   int item = legend.GetCellLegendIndex(&map, 0.42F);   // an index into the map's legend items
//   unsigned long color = legend.GetCellColor(&map, 0.42F);
//
// The class names and colours are the map's legend items; the legend holds how many classes there
// are, how they divide the range of values, and how they are ordered and labelled. So every
// operation takes the map, and applying a legend rewrites the map's items. Typed maps hold one
// legend each and test for cells without data before they ask it.
//
// An interval end at or below -1e36, or at or above 1e36, is open. Colours are 0x00BBGGRR.

#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include <quillaven/maps/base_map.h>
#include <quillaven/platform/api.h>
#include <quillaven/raster/multiscale_matrix.h>

class QUILLAVEN_API CMapLegend {
 public:
  CMapLegend() = default;

  int NClasses() const { return m_nClasses; }
  /// Stores the number; explicit intervals of a numeric legend follow it, new ones being 0 to 0.
  /// The map's items are not touched.
  void NClasses(int classes);

  /// 0 categorial: the value is the class; else numeric: a quantity that falls into a class by a
  /// scale.
  int LegendType() const { return m_nLegendType; }
  void LegendType(int type) { m_nLegendType = type; }
  /// Digits behind the point in generated names.
  int Decimals() const { return m_nDecimals; }
  void Decimals(int decimals) { m_nDecimals = decimals; }
  /// Not 0: the palette is walked backwards when colours are generated.
  int StateOrderColor() const { return m_nStateOrderColor; }
  void StateOrderColor(int state) { m_nStateOrderColor = state; }
  /// What a generated name shows: 0 lower bound, 1 upper bound, 2 middle, 3 nothing (names are
  /// kept), 4 the range.
  int StateLabel() const { return m_nStateLabel; }
  void StateLabel(int state) { m_nStateLabel = state; }
  /// Regular scale: not 0 if class 0 is the lowest part of the range, 0 if it is the highest.
  int StateOrder() const { return m_nStateOrder; }
  void StateOrder(int state) { m_nStateOrder = state; }
  /// 0: a regular scale between DisplayMin and DisplayMax; else explicit intervals.
  int StateScale() const { return m_nStateScale; }
  void StateScale(int state) { m_nStateScale = state; }
  /// The ends of the regular scale.
  double DisplayMin() const { return m_dDisplayMin; }
  void DisplayMin(double value) { m_dDisplayMin = value; }
  double DisplayMax() const { return m_dDisplayMax; }
  void DisplayMax(double value) { m_dDisplayMax = value; }
  /// Name of a palette in the folder "Palettes"; empty if the colours are stored with the legend.
  std::string PaletteFile() const { return m_strPaletteFile; }
  void PaletteFile(char const *file) { m_strPaletteFile = file != nullptr ? file : ""; }

  /// The bounds of a class under every kind of scale; 0 for an explicit interval that there is not.
  float Lo(int index) const;
  float Hi(int index) const;

  /// Switches to explicit intervals. Names and colours stay; the caller generates them anew if it
  /// wants.
  void Update(std::vector<float> &lo, std::vector<float> &hi);
  /// Shows the message "CMapLegend::UpdateScaleFreq: not implemented yet", and does nothing else.
  void UpdateScaleFreq(CMultiScaleFloatMatrix *matrix);

  /// The class of a value, and its colour and text. Allocation-free but for the text; constant time
  /// on a regular scale, linear in the classes over explicit intervals. Integers are classified
  /// otherwise than floats on a regular scale: DisplayMin is the first class and DisplayMax the
  /// last, where a float map divides the range into equal parts. The text is the number for floats
  /// and shorts, the class name for bytes. A class without an item has colour 0 and an empty name.
  int GetCellLegendIndex(CBaseMap *map, float value) const;
  int GetCellLegendIndex(CBaseMap *map, short value) const;
  int GetCellLegendIndex(CBaseMap *map, unsigned char value) const;
  unsigned long GetCellColor(CBaseMap *map, float value) const;
  unsigned long GetCellColor(CBaseMap *map, short value) const;
  unsigned long GetCellColor(CBaseMap *map, unsigned char value) const;
  std::string GetCellString(CBaseMap *map, float value) const;
  std::string GetCellString(CBaseMap *map, short value) const;
  std::string GetCellString(CBaseMap *map, unsigned char value) const;

  /// Loads a legend file of version 1 or 2 from the folder "Legends" and fills the map's items.
  /// There is always a usable legend afterwards: a damaged file is told in a box and repaired from
  /// what was read; a missing one is told in a box, replaced by the default legend of 11 classes,
  /// and written. Null asks for that default without a file. Throws a std::string for a numeric
  /// file whose StateLabel is none.
  void SetBaseMapLegend(CBaseMap *map, char const *file);
  /// Applies a legend that the caller has made. `colors` has at least as many entries as `names`.
  void SetBaseMapLegend(CBaseMap *map, int colorOrder, int legendType,
                        std::vector<std::string> &names, std::vector<unsigned long> &colors);
  /// Writes the legend as a file of version 2. A file that cannot be created is told in a box.
  void Write(CBaseMap *map, char const *file);

  /// Fills `colors`, one for each class, from the palette file; else from `palette` if it is not
  /// null; else from 256 grey steps, which also stand in for a palette that cannot be read.
  void GenerateColorItem(std::vector<unsigned long> &colors, std::vector<unsigned long> *palette);
  /// Fills `names`, one for each class: from the bounds of a numeric legend, else "<item %d>" for
  /// each class that has no name yet. Throws "logic error in CMapLegend::GenerateNameItem" as a
  /// std::string for a StateLabel that is none.
  void GenerateNameItem(std::vector<std::string> &names);

 private:
  friend struct CMapLegendAccess;

  template <class Value>
  int RegularPosition(Value value) const;
  int IntervalIndex(int items, float value) const;
  template <class Value>
  int IndexOf(CBaseMap const &map, Value value) const;

  // The two file versions.
  bool ReadStream(CBaseMap *map, std::istream &stream, char const *label, int &version);
  bool ParseVersion1Line(CBaseMap *map, char const *line, char const *label);
  bool ReadVersion2(std::vector<std::string> &names, std::vector<unsigned long> &colors,
                    std::istream &stream);
  bool ReadVersion2LegendTypeNumeric(std::vector<std::string> &names, std::istream &stream);
  bool ReadVersion2LegendTypeCategorial(std::vector<std::string> &names, std::istream &stream);
  void GenerateVersion1Data(CBaseMap *map);
  bool RangeOfIntervals(double &minimum, double &maximum) const;
  void MakeDefault(CBaseMap *map);
  void WriteVersion1(CBaseMap *map, char const *file);
  void WriteVersion2(std::vector<std::string> &names, std::vector<unsigned long> &colors,
                     char const *file);
  std::string GeneratedName(int index) const;

  bool m_bLoaded = false;
  int m_nClasses = 0;
  std::string m_strPaletteFile;
  int m_nStateOrderColor = 0;
  int m_nLegendType = 1;
  int m_nDecimals = 2;
  double m_dDisplayMin = 0.0;
  double m_dDisplayMax = 1.0;
  int m_nStateLabel = 4;
  int m_nStateOrder = 0;
  int m_nStateScale = 0;
  std::vector<float> m_Lo;
  std::vector<float> m_Hi;
};
