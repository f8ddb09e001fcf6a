#include <algorithm>
#include <cmath>

#include <quillaven/editor/plot_scale_internal.h>
#include <quillaven/foundation/rounding_internal.h>

namespace {

// All of this is done in doubles; a float minus a float would lose digits of its own.
double Part(double value, double low, double high) {
  return (value - low) / (high - low);
}

}  // namespace

int HeldPixel(double value) {
  return std::clamp(Truncated(value), -kFarthest, kFarthest);
}

CPoint HeldPoint(CPoint point) {
  return {HeldPixel(point.x), HeldPixel(point.y)};
}

bool PtInRect(CRect const &rectangle, CPoint point) {
  return point.x >= rectangle.left && point.x < rectangle.right && point.y >= rectangle.top &&
         point.y < rectangle.bottom;
}

int PlotScale::PixelX(double x) const {
  return plot.left + kMargin + HeldPixel(Part(x, limits.minX, limits.maxX) * Width());
}

int PlotScale::PixelY(double y) const {
  return plot.top + kMargin + Height() - HeldPixel(Part(y, limits.minY, limits.maxY) * Height());
}

double PlotScale::DataX(int px) const {
  double const range = static_cast<double>(limits.maxX) - limits.minX;
  return range * (px - (plot.left + kMargin)) / (Width() - 1) + limits.minX;
}

double PlotScale::DataY(int py) const {
  double const range = static_cast<double>(limits.maxY) - limits.minY;
  return range * (Height() - (py - (plot.top + kMargin))) / (Height() - 1) + limits.minY;
}

float PlotScale::ShiftX(int pixels) const {
  double const range = static_cast<double>(limits.maxX) - limits.minX;
  return NearestFloat(range * pixels / (Width() - 1));
}

float PlotScale::ShiftY(int pixels) const {
  double const range = static_cast<double>(limits.maxY) - limits.minY;
  return NearestFloat(range * pixels / (Height() - 1));
}

GridSteps ChooseScale(float lo, float hi, int least, int most) {
  double const exponent = std::ceil(std::log10(static_cast<double>(hi) - lo));
  GridSteps steps;
  steps.step = NearestFloat(std::pow(10.0, exponent - 1));
  // The logarithm of an empty or backward range, and a step beyond a float, lead nowhere.
  if (!std::isfinite(exponent) || !(steps.step > 0) || !std::isfinite(steps.step)) return {};
  double const step = steps.step;
  steps.start = NearestFloat(std::floor(lo / step) * step);
  steps.count = HeldPixel((std::ceil(hi / step) * step - steps.start) / step) + 1;
  if (steps.count < 1 || !std::isfinite(steps.start)) return {};
  // Twice as many steps of half the width reach half a step too far. It is meant.
  for (; steps.count < least; steps.count *= 2) steps.step *= 0.5F;
  for (; steps.count > most; steps.count /= 2) steps.step *= 2;
  return steps;
}
