#include <quillaven/legends/bitmap_legend.h>
#include <quillaven/legends/map_legend_internal.h>

CBitmapLegend::CTempBaseMap::~CTempBaseMap() = default;

int CBitmapLegend::CTempBaseMap::GetCellLegendIndex(int /*row*/, int /*col*/) {
  return -1;
}

CBitmapLegend::CBitmapLegend(bool hasNoData, float noDataValue, unsigned long noDataColor)
    : m_bHasNoData(hasNoData), m_fNoData(noDataValue), m_nNoDataColor(noDataColor) {}

bool CBitmapLegend::ReadFile(char const *legendFile) {
  m_Legend.SetBaseMapLegend(&m_TempMap, legendFile);
  return true;
}

int CBitmapLegend::GetColorCount() const {
  return static_cast<int>(m_TempMap.m_LegendColors.size()) + (m_bHasNoData ? 1 : 0);
}

unsigned long CBitmapLegend::GetIthColor(int index) const {
  bool const isClass = index < static_cast<int>(m_TempMap.m_LegendColors.size());
  return isClass || !m_bHasNoData ? ItemColor(m_TempMap, index) : m_nNoDataColor;
}

unsigned char CBitmapLegend::GetColorIndexOfValue(float value) const {
  if (m_bHasNoData && value == m_fNoData)
    return static_cast<unsigned char>(m_TempMap.m_LegendColors.size());
  return static_cast<unsigned char>(m_Legend.GetCellLegendIndex(&m_TempMap, value));
}
