// A map that is nothing but its legend items, for tests of legends.
//
//   LegendMap map({"low", "high"}, {0xFF, 0xFF00});

#pragma once

#include <string>
#include <vector>

#include <quillaven/maps/base_map.h>

class LegendMap : public CBaseMap {
 public:
  LegendMap() = default;
  LegendMap(std::vector<std::string> const &names, std::vector<unsigned long> const &colors) {
    for (std::size_t i = 0; i < names.size(); ++i) AddLegendItem(names[i], colors.at(i));
  }
  int GetCellLegendIndex(int /*row*/, int /*col*/) override { return 0; }
};
