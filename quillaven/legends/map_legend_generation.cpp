// The room of CMapLegend that makes colours from palettes and names from bounds.

#include <algorithm>
#include <string>
#include <vector>

#include <quillaven/exchange/idrisi_palette.h>
#include <quillaven/foundation/numbers.h>
#include <quillaven/foundation/paths.h>
#include <quillaven/legends/map_legend.h>
#include <quillaven/legends/map_legend_internal.h>

namespace {

std::vector<unsigned long> GreySteps() {
  std::vector<unsigned long> steps(256);
  for (unsigned long level = 0; level < steps.size(); ++level) steps[level] = level * 0x010101;
  return steps;
}

// A number with so many decimals. Counts that no file means are held to what a name can show.
std::string WithDecimals(int decimals, double value) {
  constexpr int kMostDecimals = 100;
  std::string const format = "%." + std::to_string(std::clamp(decimals, 0, kMostDecimals)) + "f";
  return lftostr(format.c_str(), value);
}

}  // namespace

void CMapLegend::GenerateColorItem(std::vector<unsigned long> &colors,
                                   std::vector<unsigned long> *palette) {
  std::vector<unsigned long> working;
  if (!m_strPaletteFile.empty()) {
    CString const path = AppHelpFileDir() + "Palettes\\" + m_strPaletteFile;
    if (!ReadIdrisiPalette(path, working)) working.clear();
  } else if (palette != nullptr) {
    working = *palette;
  }
  if (working.empty()) {
    // A legend that asked for a palette that is not there loses its reversal for good.
    working = GreySteps();
    m_nStateOrderColor = 0;
  }

  colors.resize(static_cast<std::size_t>(ListSize(m_nClasses)));
  std::size_t const size = working.size();
  auto const last = static_cast<double>(size - 1);
  for (std::size_t i = 0; i < colors.size(); ++i) {
    std::size_t k = i % size;
    if (m_nLegendType == kNumeric) {
      // The first class has the first colour and the last the last; a single class has the first,
      // whatever the order of the colours is.
      if (colors.size() == 1) {
        colors[i] = working[0];
        break;
      }
      k = static_cast<std::size_t>(last * static_cast<double>(i) / (m_nClasses - 1));
    }
    colors[i] = working[m_nStateOrderColor != 0 ? size - k - 1 : k];
  }
}

// The name of a class from its bounds. An end without a limit is named as such, whatever the label.
std::string CMapLegend::GeneratedName(int index) const {
  float const lo = Lo(index);
  float const hi = Hi(index);
  auto const number = [this](double value) { return WithDecimals(m_nDecimals, value); };
  bool const noLowerEnd = lo <= kNoLowerEnd;
  bool const noUpperEnd = hi >= kNoUpperEnd;
  if (noLowerEnd && noUpperEnd) return "-INF ... INF";
  if (noLowerEnd) return "-INF ... " + number(hi);
  if (noUpperEnd) return number(lo) + " ... INF";
  switch (m_nStateLabel) {
    case 0:
      return number(lo);
    case 1:
      return number(hi);
    case 2:
      return number((lo + hi) * 0.5);
    case kRangeLabel:
      return number(lo) + " ... " + number(hi);
    default:
      throw std::string("logic error in CMapLegend::GenerateNameItem");
  }
}

void CMapLegend::GenerateNameItem(std::vector<std::string> &names) {
  std::size_t const present = names.size();
  names.resize(static_cast<std::size_t>(ListSize(m_nClasses)));
  bool const generated = m_nLegendType == kNumeric && m_nStateLabel != kNamesOfTheirOwn;
  for (std::size_t i = generated ? 0 : present; i < names.size(); ++i) {
    int const index = static_cast<int>(i);
    names[i] = generated ? GeneratedName(index) : itostr("<item %d>", index);
  }
}
