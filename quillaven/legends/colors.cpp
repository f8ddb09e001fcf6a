#include <algorithm>
#include <cstdint>

#include <quillaven/legends/colors.h>

namespace {

constexpr int kTop = 252;  // largest hue, lightness and saturation; a full turn of hue
constexpr int kTopRgb = 255;
constexpr int kSixth = 42;
constexpr int kThird = 84;
constexpr int kUndefinedHue = 168;

// One channel as a function of hue. The hue is brought into the turn by one step only, in 16 bits:
// a blue channel of a hue below a third of the turn stays far outside it, and falls into the last
// case, where the full correction would have led as well.
std::int64_t Ramp(std::int64_t m1, std::int64_t m2, unsigned short hue) {
  if (hue > kTop) hue = static_cast<unsigned short>(hue - kTop);
  if (hue < kSixth) return m1 + ((m2 - m1) * hue + kSixth / 2) / kSixth;
  if (hue < 3 * kSixth) return m2;
  if (hue < 4 * kSixth) return m1 + ((m2 - m1) * (4 * kSixth - hue) + kSixth / 2) / kSixth;
  return m1;
}

unsigned long Pack(std::int64_t red, std::int64_t green, std::int64_t blue) {
  auto const lowByte = [](std::int64_t channel) {
    return static_cast<unsigned long>(channel) & 0xFF;
  };
  return lowByte(blue) << 16 | lowByte(green) << 8 | lowByte(red);
}

// The hue of a colour that is no grey. A tie between channels goes to the earlier one.
int HueOf(int red, int green, int blue, int max, int range) {
  auto const delta = [max, range](int channel) {
    return ((max - channel) * kSixth + range / 2) / range;
  };
  int hue = 0;
  if (red == max) {
    hue = delta(blue) - delta(green);
  } else if (green == max) {
    hue = kThird + delta(red) - delta(blue);
  } else {
    hue = 2 * kThird + delta(green) - delta(red);
  }
  if (hue < 0) hue += kTop;
  return hue > kTop ? hue - kTop : hue;
}

}  // namespace

void RGBtoHLS(unsigned long color, unsigned short &hue, unsigned short &lightness,
              unsigned short &saturation) {
  int const red = static_cast<int>(color & 0xFF);
  int const green = static_cast<int>(color >> 8 & 0xFF);
  int const blue = static_cast<int>(color >> 16 & 0xFF);
  int const max = std::max({red, green, blue});
  int const min = std::min({red, green, blue});
  int const range = max - min;
  int const light = ((max + min) * kTop + kTopRgb) / (2 * kTopRgb);
  lightness = static_cast<unsigned short>(light);
  if (range == 0) {
    saturation = 0;
    hue = kUndefinedHue;
    return;
  }
  int const room = light <= kTop / 2 ? max + min : 2 * kTopRgb - max - min;
  saturation = static_cast<unsigned short>((range * kTop + room / 2) / room);
  hue = static_cast<unsigned short>(HueOf(red, green, blue, max, range));
}

void HLStoRGB(unsigned short hue, unsigned short lightness, unsigned short saturation,
              unsigned long &color) {
  std::int64_t const light = lightness;
  std::int64_t const sat = saturation;
  if (sat == 0) {
    std::int64_t const grey = light * kTopRgb / kTop;
    color = Pack(grey, grey, grey);
    return;
  }
  constexpr int kHalf = kTop / 2;
  std::int64_t const m2 = light <= kHalf ? (light * (kTop + sat) + kHalf) / kTop
                                         : light + sat - (light * sat + kHalf) / kTop;
  std::int64_t const m1 = 2 * light - m2;
  auto const channel = [m1, m2](int at) {
    return (Ramp(m1, m2, static_cast<unsigned short>(at)) * kTopRgb + kHalf) / kTop;
  };
  color = Pack(channel(hue + kThird), channel(hue), channel(hue - kThird));
}

void CalcEquidistantColors(std::vector<unsigned long> &colors, int saturation, int lightness) {
  if (colors.empty()) return;
  // The step alone is a float. Its multiples are exact, so that 5 of 15 parts of the turn, whose step
  // lies just below 16.8, are hue 83.
  double const step = static_cast<float>(252.0 / static_cast<double>(colors.size()));
  for (std::size_t i = 0; i < colors.size(); ++i) {
    int const hue = std::min(static_cast<int>(static_cast<double>(i) * step), kTop);
    HLStoRGB(static_cast<unsigned short>(hue), static_cast<unsigned short>(lightness),
             static_cast<unsigned short>(saturation), colors[i]);
  }
}

void SunShine(unsigned long &color, double factor) {
  if (factor == 0.6) return;
  unsigned short hue = 0;
  unsigned short lightness = 0;
  unsigned short saturation = 0;
  RGBtoHLS(color, hue, lightness, saturation);
  double const wanted = (factor + 0.4) * lightness;
  // Held before it is truncated, so that no factor leaves the range of an integer; what is no
  // number counts as dark.
  double const held = wanted > 0 ? std::min(wanted, static_cast<double>(kTop)) : 0.0;
  HLStoRGB(hue, static_cast<unsigned short>(held), saturation, color);
}
