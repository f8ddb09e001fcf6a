#include <algorithm>
#include <type_traits>

#include <quillaven/foundation/numbers.h>
#include <quillaven/legends/map_legend.h>
#include <quillaven/legends/map_legend_internal.h>
#include <quillaven/platform/message_box_internal.h>

int ListSize(int classes) {
  return std::max(classes, 0);
}

void CMapLegend::NClasses(int classes) {
  m_nClasses = classes;
  if (m_nLegendType != kNumeric || m_nStateScale == 0) return;
  m_Lo.resize(static_cast<std::size_t>(ListSize(classes)));
  m_Hi.resize(static_cast<std::size_t>(ListSize(classes)));
}

float CMapLegend::Lo(int index) const {
  if (m_nLegendType == kCategorial) return static_cast<float>(index);
  if (m_nStateScale != 0) return Bound(m_Lo, index);
  double const step = (m_dDisplayMax - m_dDisplayMin) / m_nClasses;
  bool const first = index < 1;
  bool const inside = index + 1LL < m_nClasses;
  if (m_nStateOrder != 0) {
    if (first) return static_cast<float>(m_dDisplayMin);
    return static_cast<float>(inside ? m_dDisplayMin + step * index : m_dDisplayMax - step);
  }
  if (first) return static_cast<float>(m_dDisplayMax - step);
  return static_cast<float>(inside ? m_dDisplayMax - step - step * index : m_dDisplayMin);
}

float CMapLegend::Hi(int index) const {
  if (m_nLegendType == kCategorial) return static_cast<float>(index);
  if (m_nStateScale != 0) return Bound(m_Hi, index);
  double const step = (m_dDisplayMax - m_dDisplayMin) / m_nClasses;
  bool const first = index < 1;
  bool const inside = index + 1LL < m_nClasses;
  if (m_nStateOrder != 0) {
    if (first) return static_cast<float>(m_dDisplayMin + step);
    return static_cast<float>(inside ? m_dDisplayMin + step * (index + 1.0) : m_dDisplayMax);
  }
  if (first) return static_cast<float>(m_dDisplayMax);
  return static_cast<float>(inside ? m_dDisplayMax - step * index : m_dDisplayMin + step);
}

void CMapLegend::Update(std::vector<float> &lo, std::vector<float> &hi) {
  m_nLegendType = kNumeric;
  m_nStateScale = kExplicitIntervals;
  m_Lo = lo;
  m_Hi = hi;
}

void CMapLegend::UpdateScaleFreq(CMultiScaleFloatMatrix * /*matrix*/) {
  // The operation stands in the interface without a meaning; callers count on the message alone.
  AfxMessageBox("CMapLegend::UpdateScaleFreq: not implemented yet");
}

// The part of the regular scale that a value falls into, counted from DisplayMin. Integers stretch
// the scale so that DisplayMax is the last class; floats divide it into equal parts. That is meant.
template <class Value>
int CMapLegend::RegularPosition(Value value) const {
  double const number = value;
  int const last = m_nClasses - 1;
  if constexpr (std::is_floating_point_v<Value>) {
    if (number <= m_dDisplayMin) return 0;
    if (number >= m_dDisplayMax) return last;
    double const share = (number - m_dDisplayMin) / (m_dDisplayMax - m_dDisplayMin);
    return HoldToClasses(Truncated(share * m_nClasses), m_nClasses);
  } else {
    if (number < m_dDisplayMin) return 0;
    if (number > m_dDisplayMax) return last;
    double const share = (number - m_dDisplayMin) / (m_dDisplayMax - m_dDisplayMin);
    return share >= 0 ? Truncated(share * last) : 0;  // a range without extent has one part
  }
}

// The first interval that holds a value, both bounds included. A value outside all of them goes to
// an end of the list, or to its middle class if it lies in a gap: there is no search for the
// nearest.
int CMapLegend::IntervalIndex(int items, float value) const {
  auto const held = static_cast<int>(std::min(m_Lo.size(), m_Hi.size()));
  int const count = std::min(items, held);
  if (count < 1) return 0;
  float const *lo = m_Lo.data();
  float const *hi = m_Hi.data();
  for (int i = 0; i < count; ++i)
    if (lo[i] <= value && value <= hi[i]) return i;
  int const last = count - 1;
  if (hi[0] < hi[last]) {
    if (value < hi[0]) return 0;
    if (value >= lo[last]) return last;
  } else {
    if (value >= lo[0]) return 0;
    if (value < hi[last]) return last;
  }
  return count / 2;
}

template <class Value>
int CMapLegend::IndexOf(CBaseMap const &map, Value value) const {
  bool const byScale = m_nLegendType != kCategorial;
  if (byScale && m_nStateScale != 0)
    return IntervalIndex(map.m_nLegendItems, static_cast<float>(value));
  if (m_nClasses < 1) return 0;  // a legend that was never applied
  if (!byScale) return HoldToClasses(Truncated(value), m_nClasses);
  int const position = RegularPosition(value);
  return m_nStateOrder != 0 ? position : m_nClasses - position - 1;
}

int CMapLegend::GetCellLegendIndex(CBaseMap *map, float value) const {
  return IndexOf(*map, value);
}
int CMapLegend::GetCellLegendIndex(CBaseMap *map, short value) const {
  return IndexOf(*map, value);
}
int CMapLegend::GetCellLegendIndex(CBaseMap *map, unsigned char value) const {
  return IndexOf(*map, value);
}

unsigned long CMapLegend::GetCellColor(CBaseMap *map, float value) const {
  return ItemColor(*map, IndexOf(*map, value));
}
unsigned long CMapLegend::GetCellColor(CBaseMap *map, short value) const {
  return ItemColor(*map, IndexOf(*map, value));
}
unsigned long CMapLegend::GetCellColor(CBaseMap *map, unsigned char value) const {
  return ItemColor(*map, IndexOf(*map, value));
}

std::string CMapLegend::GetCellString(CBaseMap * /*map*/, float value) const {
  return ftostr("%g", value);
}
std::string CMapLegend::GetCellString(CBaseMap * /*map*/, short value) const {
  return itostr("%d", value);
}
std::string CMapLegend::GetCellString(CBaseMap *map, unsigned char value) const {
  return map->GetLegendItemName(IndexOf(*map, value));
}
