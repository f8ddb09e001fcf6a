// Colours in a space of hue, lightness and saturation, for applications that choose legend colours.
//
//   std::vector<unsigned long> colors(6);
//   CalcEquidistantColors(colors, 252, 126);      // red, yellow, green, cyan, blue, magenta
//   SunShine(colors[0], 0.8);                     // a brighter red
//
// A colour is 0x00BBGGRR. The space is one of integers: hue, lightness and saturation run over 0 to
// 252, and all divisions truncate, so a colour that goes there and back may change a little. None
// of these fails; each costs a few integer operations a colour.

#pragma once

#include <vector>

#include <quillaven/platform/api.h>

/// The hue, lightness and saturation of a colour. A grey has saturation 0 and hue 168.
QUILLAVEN_API void RGBtoHLS(unsigned long color, unsigned short &hue, unsigned short &lightness,
                            unsigned short &saturation);

/// The colour of a hue, lightness and saturation. With saturation 0 the hue plays no part. Values
/// above 252 are not refused; each channel keeps its low 8 bits.
QUILLAVEN_API void HLStoRGB(unsigned short hue, unsigned short lightness, unsigned short saturation,
                            unsigned long &color);

/// Rewrites every entry with colours spread evenly over the hues, from red. The size stays.
QUILLAVEN_API void CalcEquidistantColors(std::vector<unsigned long> &colors, int saturation,
                                         int lightness);

/// Brightens a colour with a factor above 0.6 and darkens it with one below: its lightness is
/// multiplied by the factor + 0.4 and held to 0 to 252. Exactly 0.6 leaves the colour untouched.
QUILLAVEN_API void SunShine(unsigned long &color, double factor);
