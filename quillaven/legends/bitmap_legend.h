// The legend that a bitmap is drawn with: a map legend with a small map of its own, and one colour
// more for cells without data.
//
//   CBitmapLegend legend(true, -9999.0F, 0xFFFFFF);
//   legend.ReadFile("Landuse.txt");                            // from the folder "Legends"
//   unsigned char index = legend.GetColorIndexOfValue(3.0F);   // fit for an 8-bit pixel
//   unsigned long color = legend.GetIthColor(index);

#pragma once

#include <quillaven/legends/map_legend.h>
#include <quillaven/maps/base_map.h>
#include <quillaven/platform/api.h>

class QUILLAVEN_API CBitmapLegend {
 public:
  /// A legend with the defaults; the no-data value is told apart only if `hasNoData` says so.
  CBitmapLegend(bool hasNoData, float noDataValue, unsigned long noDataColor);

  /// Reads a legend file and returns true, always: a missing or damaged file has been told in a box
  /// and replaced by the default legend.
  bool ReadFile(char const *legendFile);

  /// The legend's colours, and one more if there is a no-data colour.
  int GetColorCount() const;
  /// A colour by index. Where there is a no-data colour, it answers for every index from the number
  /// of the legend's colours up; an index that is none has colour 0.
  unsigned long GetIthColor(int index) const;
  /// The index of the colour of a value, cut to 8 bits. No allocation.
  unsigned char GetColorIndexOfValue(float value) const;

 private:
  friend struct CBitmapLegendAccess;

  /// Holds the legend items; it has no raster.
  class CTempBaseMap : public CBaseMap {
   public:
    CTempBaseMap() = default;
    CTempBaseMap(CTempBaseMap const &) = default;
    CTempBaseMap &operator=(CTempBaseMap const &) = default;
    ~CTempBaseMap() override;
    int GetCellLegendIndex(int row, int col) override;
  };

  bool m_bHasNoData;
  float m_fNoData;
  unsigned long m_nNoDataColor;
  mutable CTempBaseMap m_TempMap;  // the legend takes it as the map to ask
  CMapLegend m_Legend;
};
