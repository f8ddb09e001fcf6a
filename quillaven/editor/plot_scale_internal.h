// Where the values of a table lie on the screen, and the steps of a grid over them.
//
//   PlotScale const scale{plot, {0, 8, -1, 1}};
//   drawing.MoveTo(scale.PixelX(2.5), scale.PixelY(0));
//   double const x = scale.DataX(mouse.x);
//
// The way out multiplies by the width, and the way back divides by the width less one: they are not
// exact inverses, and must stay so. Every table was shaped with them.

#pragma once

#include <quillaven/platform/geometry.h>

/// What of the values is shown.
struct PlotLimits {
  float minX = 0;
  float maxX = 1;
  float minY = -1;
  float maxY = 1;
};

struct PlotScale {
  CRect plot;
  PlotLimits limits;

  static constexpr int kMargin = 8;

  /// Width and height within the margin; below 1 in a window that is too small.
  int Width() const { return plot.right - plot.left - 2 * kMargin; }
  int Height() const { return plot.bottom - plot.top - 2 * kMargin; }

  /// What lies too far away, or is no number because the limits are equal, goes to kFarthest.
  int PixelX(double x) const;
  int PixelY(double y) const;
  double DataX(int px) const;
  double DataY(int py) const;

  /// Values for a shift of some pixels to the right or up, as a handle that is dragged takes them.
  float ShiftX(int pixels) const;
  float ShiftY(int pixels) const;
};

/// No pixel is farther from 0 than this, so that sums of a few stay within an int.
constexpr int kFarthest = 1 << 28;

/// A number truncated toward zero and held to kFarthest; what is no number goes to the lower end.
int HeldPixel(double value);
CPoint HeldPoint(CPoint point);

/// Left and top edge are inside, right and bottom edge outside.
bool PtInRect(CRect const &rectangle, CPoint point);

struct GridSteps {
  float start = 0;
  float step = 0;
  int count = 0;
};

/// Steps of a round width over a range, at least `least` and at most `most` of them; none for a
/// range that is empty, backwards or not finite.
GridSteps ChooseScale(float lo, float hi, int least, int most);
