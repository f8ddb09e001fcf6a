// A smooth plane curve through a list of points, as a close chain of samples along it.
//
//   std::vector<CSplinePoint> points(4);            // element 0 is idle: three points
//   points[1] = {0, 0}; points[2] = {400, 1}; points[3] = {800, 0};
//   std::vector<CSplinePoint> curve;
//   BuildSplineCurve(points, curve, 10.0);          // a sample every 10 units along the chords
//
// Everything here counts from 1: a list of n points has n + 1 elements, and a system of n equations
// has n + 1 rows and columns. Matrices, chords, their squares and tangents are 32-bit floats; each
// expression is computed in the type of its operands and stored once, so that every compiler gives
// the same curve.

#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include <quillaven/functions/spline.h>
#include <quillaven/raster/smart_io_matrix.h>

/// Elements that are not initialised, know no length and test no index.
template <class T>
class CSmartIOVector {
 public:
  explicit CSmartIOVector(std::size_t size) : m_pElements(new T[size]) {}
  CSmartIOVector(CSmartIOVector const &) = delete;
  CSmartIOVector &operator=(CSmartIOVector const &) = delete;
  virtual ~CSmartIOVector() { delete[] m_pElements; }

  T &operator[](std::size_t index) { return m_pElements[index]; }
  T const &operator[](std::size_t index) const { return m_pElements[index]; }

 private:
  T *m_pElements;
};

using CSmartIOFloatVector = CSmartIOVector<float>;
using CSmartIOShortVector = CSmartIOVector<std::int16_t>;

/// Replaces `output` by an element without meaning, the first point, and samples of the parametric cubic spline
/// with chord lengths as parameter and relaxed ends, `step` apart along the curve. A segment on
/// which the curve backs up in x is one straight line. Points closer than about 0.0003 to the one
/// before them are dropped. The last point is in the output only if its segment is such a line.
///
/// Throws std::string: "spline only for n >= 3 points" if fewer are given or left, and "unable to
/// invert spline matrix". Throws std::bad_alloc for a curve of more than 2^26 samples.
/// Takes time with the cube of the number of points, memory with the square.
void BuildSplineCurve(std::vector<CSplinePoint> points, std::vector<CSplinePoint> &output,
                      double step);

/// Inverts a square matrix in place, row and column 0 included. False for a singular one, which
/// stays half worked. Throws std::string "InvertMatrix: nrows <> ncols".
bool InvertMatrix(CSmartIOFloatMatrix &a);

/// c = a x b, over the rows and columns from 1 on; row 0 and column 0 of c are not written. Throws
/// std::string "MultiplyMatrix: incompatible matrix sizes".
void MultiplyMatrix(CSmartIOFloatMatrix const &a, CSmartIOFloatMatrix const &b,
                    CSmartIOFloatMatrix &c);
