#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

#include <quillaven/foundation/textio.h>
#include <quillaven/functions/spline.h>

#include "apps/canvas.h"
#include "apps/commands.h"
#include "apps/console.h"
#include "apps/files.h"
#include "apps/table_file.h"

namespace {

// A range that shows all values and has a width.
struct Range {
  double low;
  double high;

  void Take(double value) {
    low = std::min(low, value);
    high = std::max(high, value);
  }
  void Widen() {
    if (low < high) return;
    low -= 0.5;
    high += 0.5;
  }
  // Whether numbers and pixels can tell its ends apart.
  bool CanBeDrawn() const {
    double const width = high - low;
    double const size = std::max(std::fabs(low), std::fabs(high));
    return std::isfinite(width) && width > 1e-300 && width > 1e-9 * size;
  }
  double Part(double value) const { return (value - low) / (high - low); }
};

// 1, 2 or 5 times a power of ten, for about `count` steps over a range.
double RoundStep(Range const &range, int count) {
  double const raw = (range.high - range.low) / count;
  double const power = std::pow(10.0, std::floor(std::log10(raw)));
  for (double const factor : {1.0, 2.0, 5.0})
    if (factor * power >= raw) return factor * power;
  return 10 * power;
}

class Plot {
 public:
  Plot(CSpline &table, Canvas &canvas)
      : m_Table(table),
        m_Canvas(canvas),
        m_X{table.MinX(), table.MaxX()},
        m_Y{table.MinY(), table.MaxY()} {
    bool finite = true;
    for (int i = 0; i < table.GetSize(); ++i) {
      finite = finite && std::isfinite(table.GetXAt(i)) && std::isfinite(table.GetYAt(i));
      m_X.Take(table.GetXAt(i));
      m_Y.Take(table.GetYAt(i));
    }
    m_X.Widen();
    m_Y.Widen();
    if (!finite || !m_X.CanBeDrawn() || !m_Y.CanBeDrawn())
      throw Failure("the table holds values that cannot be drawn");
  }

  void Draw() {
    DrawAxes();
    m_Canvas.Curve(m_Table.TableLinear() || m_Table.GetSize() < 3 ? Corners() : Samples(), kBlue);
    for (int i = 0; i < m_Table.GetSize(); ++i)
      m_Canvas.Dot(At(m_Table.GetXAt(i), m_Table.GetYAt(i)), kRed);
    m_Canvas.Text({(kLeft + kRight) / 2, 22}, Anchor::middle, m_Table.Name());
    m_Canvas.Text({kRight, kBottom + 44}, Anchor::end, m_Table.XLabel());
    m_Canvas.Text({kLeft - 50, kTop - 12}, Anchor::start, m_Table.YLabel());
  }

  static constexpr int kWidth = 800;
  static constexpr int kHeight = 500;

 private:
  static constexpr double kLeft = 70;
  static constexpr double kRight = kWidth - 30;
  static constexpr double kTop = 50;
  static constexpr double kBottom = kHeight - 60;

  Place At(double x, double y) const {
    return {kLeft + m_X.Part(x) * (kRight - kLeft), kBottom - m_Y.Part(y) * (kBottom - kTop)};
  }

  void DrawAxes() {
    double const xStep = RoundStep(m_X, 8);
    for (double k = std::ceil(m_X.low / xStep); k * xStep <= m_X.high; ++k) {
      Place const foot = At(k * xStep, m_Y.low);
      m_Canvas.Line(foot, {foot.x, kTop}, kGrey);
      m_Canvas.Line(foot, {foot.x, foot.y + 5}, kBlack);
      m_Canvas.Text({foot.x, foot.y + 20}, Anchor::middle, lftostr("%g", k * xStep));
    }
    double const yStep = RoundStep(m_Y, 6);
    for (double k = std::ceil(m_Y.low / yStep); k * yStep <= m_Y.high; ++k) {
      Place const foot = At(m_X.low, k * yStep);
      m_Canvas.Line(foot, {kRight, foot.y}, kGrey);
      m_Canvas.Line({foot.x - 5, foot.y}, foot, kBlack);
      m_Canvas.Text({foot.x - 9, foot.y + 4}, Anchor::end, lftostr("%g", k * yStep));
    }
    m_Canvas.Line({kLeft, kBottom}, {kRight, kBottom}, kBlack);
    m_Canvas.Line({kLeft, kTop}, {kLeft, kBottom}, kBlack);
  }

  // The points themselves, with the ends drawn on to the sides; a table without a function is its
  // one value.
  std::vector<Place> Corners() {
    if (m_Table.GetSize() < 2) {
      double const y = m_Table.Evaluate(0);
      return {At(m_X.low, y), At(m_X.high, y)};
    }
    int const last = m_Table.GetSize() - 1;
    std::vector<Place> places{At(m_X.low, m_Table.GetYAt(0))};
    for (int i = 0; i <= last; ++i) places.push_back(At(m_Table.GetXAt(i), m_Table.GetYAt(i)));
    places.push_back(At(m_X.high, m_Table.GetYAt(last)));
    return places;
  }

  std::vector<Place> Samples() {
    constexpr int kSamples = 1400;
    std::vector<Place> places;
    for (int i = 0; i <= kSamples; ++i) {
      auto const x = static_cast<float>(m_X.low + (m_X.high - m_X.low) * i / kSamples);
      places.push_back(At(x, std::clamp<double>(m_Table.Evaluate(x), m_Y.low, m_Y.high)));
    }
    return places;
  }

  CSpline &m_Table;
  Canvas &m_Canvas;
  Range m_X;
  Range m_Y;
};

}  // namespace

void TableEval(TableOptions const &options) {
  CSpline table = ReadTable(options.file, options.table).table;
  for (double const x : options.questions) {
    auto const asked = static_cast<float>(x);
    std::printf("%s\t%s\n", lftostr("%g", x).c_str(), ftostr("%g", table.Evaluate(asked)).c_str());
  }
}

void TablePlot(TableOptions const &options) {
  auto const canvas = MakeCanvas(options.out, Plot::kWidth, Plot::kHeight);
  RequireOtherFile(options.file, options.out);
  CSpline table = ReadTable(options.file, options.table).table;
  Plot(table, *canvas).Draw();
  canvas->Save(options.out);
}

void TableConvert(TableOptions const &options) {
  RequireOtherFile(options.file, options.out);  // which may hold more tables than one
  CSpline table = ReadTable(options.file, options.table).table;
  WriteTextFile(options.out, [&](CStdioFile &out) {
    if (options.form == "tagged") {
      table.OnWrite(out, options.table);
    } else {
      table.OnWrite2(out);
    }
  });
  if (options.form == "compact") WarnOfCompactForm(options.out, table);
}
