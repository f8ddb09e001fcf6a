// What is asked of a table that came from any bytes.

#pragma once

#include <cmath>
#include <new>
#include <string>

#include <quillaven/functions/spline.h>

/// Whether a curve through the points is cheap enough for a target that runs many times a second.
inline bool IsSmall(CSpline const &table) {
  if (table.GetSize() > 60) return false;
  for (int i = 0; i < table.GetSize(); ++i)
    if (!(std::fabs(table.GetYAt(i)) < 1e5)) return false;
  return true;
}

/// Evaluates along lines and along the curve, and simplifies a copy.
inline void AskAndSimplify(CSpline &table) {
  bool const linear = table.TableLinear();
  for (bool lines : {true, false}) {
    table.TableLinear(lines);
    if (!lines && !IsSmall(table)) continue;
    try {
      for (int i = 0; i < table.GetSize() && i < 100; ++i) {
        auto const x = static_cast<float>(table.GetXAt(i));
        table.Evaluate(x);
        table.Evaluate(x + 0.5F);
      }
    } catch (std::string const &) {  // points too close for a curve
    } catch (std::bad_alloc const &) {
    }
  }
  table.TableLinear(linear);
  CSpline copy(table);
  if (copy.GetSize() < 500) copy.Simplify();
}
