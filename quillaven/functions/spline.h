// A function of one variable, given by a table of points.
//
//   CSpline decay;
//   decay.Add(0, 1);
//   decay.Add(1, 0.5);
//   decay.Add(8, 0);
//   float weight = decay.Evaluate(2.5F);      // on the line from (1, 0.5) to (8, 0)
//
// A table answers along straight lines between its points (the default) or along a smooth curve
// through them. It never extrapolates: outside its first and last point it answers with the y of
// that point. A table of no point or one has no shape, and answers with the middle of its display
// range. A name, two axis labels and a display range are carried along for editors and files; they
// have no other part in the evaluation.

#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <quillaven/platform/api.h>

class CStdioFile;

/// A point of a curve, or a sample on it.
struct CSplinePoint {
  double x = 0;
  double y = 0;
};

class QUILLAVEN_API CSpline {
 public:
  CSpline() = default;
  /// Copies are complete: points, texts, limits, and the sampled curve if there is one. An
  /// assignment that finds no memory leaves the table as it was.
  CSpline(CSpline const &) = default;
  CSpline &operator=(CSpline const &other) { return *this = CSpline(other); }
  /// Moves swap: what is moved from holds a new table, or that of the target.
  CSpline(CSpline &&other) noexcept { Swap(other); }
  CSpline &operator=(CSpline &&other) noexcept {
    Swap(other);
    return *this;
  }
  ~CSpline() = default;

  /// Reads a table in tagged form from where an open file stands, and adds its points to those the
  /// table holds. A first line "NumberFunctions=..." is skipped. False, after a box that quotes the
  /// line, if no header of a table stands there; nothing is changed then. `number` is told in the
  /// box, and is not compared. Values pass through 32-bit floats. Behind the header every fault is
  /// taken as it comes: a number that is none leaves the default or zero, and nothing is said.
  virtual bool OnRead(CStdioFile &file, int number);
  /// Writes the table in tagged form: four lines, six significant digits, everything but the curve.
  /// Always true. A line of more than 4095 bytes cannot be read back whole.
  virtual bool OnWrite(CStdioFile &file, int number);

  /// Reads a table in compact form: the limits of y, the points and the labels. The points replace
  /// those of the table as they stand in the file, without sorting; name and type stay. The limits
  /// of x become the first and last x. A curve that was sampled before stays in force until the
  /// next change of a point. A file without a count, with a count below 1, or with a count above
  /// the number of bytes in the two lines behind it changes nothing, and neither does one that
  /// throws. The file is read once and forward, so that a pipe will do.
  void OnRead2(CStdioFile &file);
  /// Writes the table in compact form: three lines, six decimals.
  void OnWrite2(CStdioFile &file);

  /// Texts are never null; a null argument counts as an empty text.
  char const *Name() const { return m_strName.c_str(); }
  void Name(char const *text) { m_strName = text != nullptr ? text : ""; }
  char const *XLabel() const { return m_strXLabel.c_str(); }
  void XLabel(char const *text) { m_strXLabel = text != nullptr ? text : ""; }
  char const *YLabel() const { return m_strYLabel.c_str(); }
  void YLabel(char const *text) { m_strYLabel = text != nullptr ? text : ""; }

  /// The display range, 0 to 1 in x and -1 to 1 in y at first. Points may lie outside it.
  float MinX() const { return m_fMinX; }
  void MinX(float value) { m_fMinX = value; }
  float MaxX() const { return m_fMaxX; }
  void MaxX(float value) { m_fMaxX = value; }
  float MinY() const { return m_fMinY; }
  void MinY(float value) { m_fMinY = value; }
  float MaxY() const { return m_fMaxY; }
  void MaxY(float value) { m_fMaxY = value; }

  /// 1 for straight lines, 0 for a spline; any argument but 0 means lines. One flag with the next.
  int TblType() const { return m_bTableLinear ? 1 : 0; }
  void TblType(int type) { m_bTableLinear = type != 0; }
  bool TableLinear() const { return m_bTableLinear; }
  void TableLinear(bool linear) { m_bTableLinear = linear; }

  /// The points, ascending in x; a compact file alone can bring them in another order.
  int GetSize() const { return static_cast<int>(m_X.size()); }
  /// False, with nothing stored, for a null pointer or an index that is none.
  bool GetAt(int index, double *x, double *y) const;
  /// The index is not tested.
  double GetXAt(int index) const { return m_X[static_cast<std::size_t>(index)]; }
  double GetYAt(int index) const { return m_Y[static_cast<std::size_t>(index)]; }
  /// Inserts a point in its place, or gives the point at exactly this x another y.
  void Add(double x, double y);
  /// False if the index is none.
  bool RemoveAt(int index);
  void RemoveAll();

  /// The function at x; not a number counts as left of the first point. Two points are a straight
  /// line whatever the type.
  ///
  /// The first evaluation of a spline table between its ends samples the curve, in time that grows
  /// with the cube of the number of points; after that an evaluation walks through the samples (80
  /// to 400 of them for most tables) and allocates nothing. The shape of the curve depends on the
  /// size of the y values: x is stretched to 800 units first, and y is not. Throws std::string
  /// "spline only for n >= 3 points" where points lie so close that fewer are left, and "unable to
  /// invert spline matrix"; std::bad_alloc for a curve that is too long to be sampled, which is
  /// one whose chords from point to point have more than about 6.7e8 units in all.
  float Evaluate(float x);
  void Evaluate(float x, float *result);

  /// Makes the table linear and drops every inner point that lies exactly on the line through its
  /// neighbours. A table of two points, or one with two left, gets two more at the thirds.
  void Simplify();

  /// The distances between the centres of cells of a square grid from 0 to 8, 30 of them, rounded
  /// to four decimals: the x values of a table by distance. The index is not tested.
  static float Root(int index);
  static int NRoots();

  /// Lets the user edit a table in a dialog of the application in force, on a copy. 1 for OK, with
  /// the table changed; 2 for Cancel or after any exception, with the table as it was. Without a
  /// screen: 2.
  static unsigned int DoModal(CSpline &table);

 private:
  friend struct CSplineAccess;
  inline void Swap(CSpline &other) noexcept;
  float OnCurve(float x);
  void SampleCurve();

  std::string m_strName;
  float m_fMinX = 0.0F;
  float m_fMaxX = 1.0F;
  float m_fMinY = -1.0F;
  float m_fMaxY = 1.0F;
  bool m_bTableLinear = true;
  std::string m_strXLabel;
  std::string m_strYLabel;
  std::vector<double> m_X;
  std::vector<double> m_Y;
  std::vector<std::uint32_t> m_Reserved;  // nothing fills it; copied with the table
  std::vector<CSplinePoint> m_Curve;      // samples from element 1 on
  bool m_bCurveValid = false;             // m_Curve belongs to the present points
};

inline void CSpline::Swap(CSpline &other) noexcept {
  m_strName.swap(other.m_strName);
  std::swap(m_fMinX, other.m_fMinX);
  std::swap(m_fMaxX, other.m_fMaxX);
  std::swap(m_fMinY, other.m_fMinY);
  std::swap(m_fMaxY, other.m_fMaxY);
  std::swap(m_bTableLinear, other.m_bTableLinear);
  m_strXLabel.swap(other.m_strXLabel);
  m_strYLabel.swap(other.m_strYLabel);
  m_X.swap(other.m_X);
  m_Y.swap(other.m_Y);
  m_Reserved.swap(other.m_Reserved);
  m_Curve.swap(other.m_Curve);
  std::swap(m_bCurveValid, other.m_bCurveValid);
}
