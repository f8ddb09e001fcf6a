// Small function tables, and their points as pairs.
//
//   CSpline table = Table({{0, 0}, {1, 10}});
//   EXPECT_EQ(PointsOf(table), (Pairs{{0, 0}, {1, 10}}));

#pragma once

#include <utility>
#include <vector>

#include <quillaven/functions/spline.h>
#include <quillaven/functions/spline_access_internal.h>

using Pairs = std::vector<std::pair<double, double>>;

inline CSpline Table(Pairs const &points) {
  CSpline table;
  for (auto const &[x, y] : points) table.Add(x, y);
  return table;
}

inline Pairs PointsOf(CSpline const &table) {
  Pairs points;
  for (int i = 0; i < table.GetSize(); ++i) points.emplace_back(table.GetXAt(i), table.GetYAt(i));
  return points;
}

/// Three points from 0 to 8, shown from 0 to 8 and from -10 to 100.
inline CSpline DistanceTable() {
  CSpline table = Table({{0, 80}, {1, 75}, {8, 0}});
  table.MaxX(8);
  table.MinY(-10);
  table.MaxY(100);
  return table;
}

/// A spline through 30 points at the distances between cells, shown from 0 to 8 and from 0 to 100.
inline CSpline SplineOf30Points() {
  CSpline table;
  table.TableLinear(false);
  table.MaxX(8);
  table.MinY(0);
  table.MaxY(100);
  for (int i = 0; i < CSpline::NRoots(); ++i) table.Add(CSpline::Root(i), i % 2 == 0 ? 30 : 60);
  return table;
}
