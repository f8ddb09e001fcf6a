#include <vector>

#include "apps/commands.h"
#include "apps/console.h"
#include "apps/files.h"

void SpreadColors(ColorOptions const &options) {
  std::vector<unsigned long> colors(static_cast<std::size_t>(options.count));
  CalcEquidistantColors(colors, options.saturation, options.lightness);
  PrintColors(colors);
}

void BrightenColor(ColorOptions const &options) {
  unsigned long color = 0;
  for (std::size_t channel = options.channels.size(); channel-- > 0;)
    color = color << 8 | static_cast<unsigned long>(options.channels[channel]);
  SunShine(color, options.factor);
  PrintColors({color});
}
