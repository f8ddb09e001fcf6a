// The sampled curve of a table, for what looks at it without evaluating.
//
//   table.Evaluate(0.5F);
//   std::size_t samples = CSplineAccess::Curve(table).size() - 1;   // element 0 means nothing

#pragma once

#include <vector>

#include <quillaven/functions/spline.h>

struct CSplineAccess {
  static std::vector<CSplinePoint> const &Curve(CSpline const &table) { return table.m_Curve; }
  static bool CurveValid(CSpline const &table) { return table.m_bCurveValid; }
};
