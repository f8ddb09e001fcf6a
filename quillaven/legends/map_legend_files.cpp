// The room of CMapLegend that reads and writes legend files. docs/formats/legend.md tells both
// versions line by line.

#include <algorithm>
#include <fstream>
#include <istream>
#include <string>
#include <vector>

#include <quillaven/foundation/errors.h>
#include <quillaven/foundation/input_file_internal.h>
#include <quillaven/foundation/line_reader_internal.h>
#include <quillaven/foundation/number_text_internal.h>
#include <quillaven/foundation/numbers.h>
#include <quillaven/foundation/paths.h>
#include <quillaven/legends/line_scanner_internal.h>
#include <quillaven/legends/map_legend.h>
#include <quillaven/legends/map_legend_internal.h>
#include <quillaven/platform/message_box_internal.h>
#include <quillaven/platform/system_paths.h>

namespace {

constexpr std::size_t kLongestLine = 511;
constexpr int kMostClasses = 1000000;  // a count above is as unreadable as a word
constexpr float kNoLowerBound = -1e37F;
constexpr int kDefaultClasses = 11;

CString LegendPath(char const *file) {
  return AppHelpFileDir() + "Legends\\" + file;
}

bool ReadLine(std::istream &stream, std::string &line) {
  return ReadTextLine(stream, line, kLongestLine);
}

unsigned long PackColor(int red, int green, int blue) {
  auto const lowByte = [](int channel) { return static_cast<unsigned long>(channel) & 0xFF; };
  return lowByte(blue) << 16 | lowByte(green) << 8 | lowByte(red);
}

int Channel(unsigned long color, int shift) {
  return static_cast<int>(color >> shift & 0xFF);
}

// The box of a version 2 line that is not as expected; its result is the reader's.
bool NotAsExpected(std::string const &expected, std::string const &line) {
  AfxMessageBox(("version 2 Legend: " + expected + " expected instead of '" + line + "'").c_str());
  return false;
}

bool ReadInteger(std::istream &stream, char const *keyword, int &value) {
  std::string line;
  ReadLine(stream, line);
  LineScanner scanner(line.c_str());
  if (scanner.Keyword(keyword) && scanner.Integer(value)) return true;
  return NotAsExpected("'" + std::string(keyword) + " <num>'", line);
}

bool ReadNumber(std::istream &stream, char const *keyword, double &value) {
  std::string line;
  ReadLine(stream, line);
  LineScanner scanner(line.c_str());
  if (scanner.Keyword(keyword) && scanner.Double(value)) return true;
  return NotAsExpected("'" + std::string(keyword) + " <num>'", line);
}

bool ReadClassCount(std::istream &stream, int &classes) {
  std::string line;
  ReadLine(stream, line);
  LineScanner scanner(line.c_str());
  int count = 0;
  if (scanner.Keyword("NClasses") && scanner.Integer(count) && count <= kMostClasses) {
    classes = count;
    return true;
  }
  return NotAsExpected("'NClasses <num>'", line);
}

bool ReadColors(std::istream &stream, int classes, std::vector<unsigned long> &colors) {
  colors.clear();
  for (int i = 0; i < classes; ++i) {
    std::string line;
    ReadLine(stream, line);
    LineScanner scanner(line.c_str());
    int red = 0;
    int green = 0;
    int blue = 0;
    if (!scanner.Integer(red) || !scanner.Integer(green) || !scanner.Integer(blue))
      return NotAsExpected(itostr("palette entry %d '<r> <g> <b>'", i), line);
    colors.push_back(PackColor(red, green, blue));
  }
  return true;
}

// The digits behind the point that tell one class of a range from the next: those of the step
// between classes, or of half of it unless names show the middle.
int DecimalsOfRange(double minimum, double maximum, int classes, int label) {
  constexpr int kMiddleLabel = 2;
  double step = (maximum - minimum) / (classes - 1);
  if (label != kMiddleLabel) step *= 0.5;
  std::string const text = TextOfNumber(step);
  std::size_t const point = text.find('.');
  return point == std::string::npos ? 0 : static_cast<int>(text.size() - point - 1);
}

// A file of lines, each cut to what a line may hold.
class LineWriter {
 public:
  explicit LineWriter(char const *file) : m_path(LegendPath(file)), m_stream(SystemPath(m_path)) {
    if (!m_stream) CannotCreateFile(m_path);
  }
  bool IsOpen() const { return static_cast<bool>(m_stream); }
  void Write(std::string const &line) {
    std::string const all = line + "\n";
    m_stream.write(all.data(), static_cast<std::streamsize>(std::min(all.size(), kLongestLine)));
  }
  void Write(char const *keyword, int value) { Write(keyword + itostr(" %d", value)); }
  void Write(char const *keyword, double value) {
    Write(std::string(keyword) + " " + TextOfNumber(value));
  }

 private:
  CString m_path;
  std::ofstream m_stream;
};

std::string ColorLine(unsigned long color) {
  return itostr("%03d", Channel(color, 0)) + itostr("\t%03d", Channel(color, 8)) +
         itostr("\t%03d", Channel(color, 16));
}

}  // namespace

void CMapLegend::SetBaseMapLegend(CBaseMap *map, char const *file) {
  map->ClearLegend();
  m_Lo.clear();
  m_Hi.clear();
  std::string label = "<internal-default>";
  bool opened = false;
  int version = 1;
  if (file != nullptr) {
    CString const path = LegendPath(file);
    std::ifstream stream = OpenInputFile(path);
    opened = static_cast<bool>(stream);
    if (opened) {
      label = path;
      ReadStream(map, stream, label.c_str(), version);
    } else {
      NoSuchFile(path);
    }
  }
  if (!opened || version == 1) {
    GenerateVersion1Data(map);
  } else if (version == 2) {
    map->m_nLegendItems = ListSize(m_nClasses);
  }
  if (!m_strPaletteFile.empty()) GenerateColorItem(map->m_LegendColors, nullptr);
  GenerateNameItem(map->m_LegendNames);
  m_bLoaded = true;
  if (file != nullptr && !opened) Write(map, file);
}

// Reads lines until one ends the file. A "Version" line with a number other than 1 and 2 is passed
// over, and its number stands until a later line says otherwise; "Version 1" is no header of
// version 1, which has none, and fails as a line of it.
bool CMapLegend::ReadStream(CBaseMap *map, std::istream &stream, char const *label, int &version) {
  m_nStateScale = kExplicitIntervals;
  m_nLegendType = kCategorial;
  std::string line;
  while (ReadLine(stream, line)) {
    if (line.empty()) continue;
    LineScanner scanner(line.c_str());
    int number = 0;
    version = scanner.Keyword("Version") && scanner.Integer(number) ? number : 1;
    if (version == 1 && !ParseVersion1Line(map, line.c_str(), label)) return false;
    if (version == 2) {
      bool const read = ReadVersion2(map->m_LegendNames, map->m_LegendColors, stream);
      if (!read) GenerateVersion1Data(map);
      return read;
    }
  }
  return true;
}

bool CMapLegend::ParseVersion1Line(CBaseMap *map, char const *line, char const *label) {
  float lo = kNoLowerBound;
  float hi = 0;
  int red = 0;
  int green = 0;
  int blue = 0;
  std::string name;
  bool const scaleLine = *line == 'l' || *line == 'L';
  bool const valueLine = *line == '\t';
  LineScanner scanner(scaleLine ? line + 1 : line);
  bool matched = false;
  if (scaleLine) {
    // Classes and three more integers, all dropped. The bounds are dropped too: a scale line of
    // this version never sets a range, and applications count on the default range behind it.
    matched = scanner.Float(lo) && scanner.Float(hi) && scanner.Integer(red) &&
              scanner.Integer(red) && scanner.Integer(green) && scanner.Integer(blue);
  } else {
    matched = (valueLine || scanner.Float(lo)) && scanner.Float(hi) && scanner.Integer(red) &&
              scanner.Integer(green) && scanner.Integer(blue) && scanner.Name(name);
  }
  if (!matched) {
    std::string const text = "legend " + std::string(label) +
                             itostr(" contains bad char at column %d:\n'", scanner.Fields() + 1) +
                             line + "'";
    AfxMessageBox(text.c_str());
    return false;
  }
  if (scaleLine) {
    m_nStateScale = 0;
    m_nLegendType = kNumeric;
    return false;  // what follows a scale line is not read
  }

  int whole = 0;
  bool const isWhole = LineScanner(line).Integer(whole) && static_cast<float>(whole) == hi;
  if (!valueLine || !isWhole) m_nLegendType = kNumeric;
  m_Lo.push_back(lo);
  m_Hi.push_back(hi);
  map->AddLegendItem(name, PackColor(red, green, blue));
  return true;
}

bool CMapLegend::ReadVersion2(std::vector<std::string> &names, std::vector<unsigned long> &colors,
                              std::istream &stream) {
  if (!ReadClassCount(stream, m_nClasses)) return false;

  std::string line;
  ReadLine(stream, line);
  LineScanner scanner(line.c_str());
  if (!scanner.Keyword("Palette")) return NotAsExpected("'Palette [<filename>]'", line);
  scanner.SkipBlanks();
  m_strPaletteFile = scanner.Rest();
  if (m_strPaletteFile.empty() && !ReadColors(stream, m_nClasses, colors)) return false;

  if (!ReadInteger(stream, "StateOrderColor", m_nStateOrderColor)) return false;
  if (!ReadInteger(stream, "LegendType", m_nLegendType)) return false;
  return m_nLegendType == kNumeric ? ReadVersion2LegendTypeNumeric(names, stream)
                                   : ReadVersion2LegendTypeCategorial(names, stream);
}

bool CMapLegend::ReadVersion2LegendTypeNumeric(std::vector<std::string> &names,
                                               std::istream &stream) {
  if (!ReadInteger(stream, "Decimals", m_nDecimals)) return false;
  if (!ReadNumber(stream, "DisplayMin", m_dDisplayMin)) return false;
  if (!ReadNumber(stream, "DisplayMax", m_dDisplayMax)) return false;
  if (!ReadInteger(stream, "StateLabel", m_nStateLabel)) return false;
  auto const classes = static_cast<std::size_t>(ListSize(m_nClasses));
  if (m_nStateLabel == kNamesOfTheirOwn) {
    names.resize(classes);
    for (std::string &name : names) ReadLine(stream, name);
  }
  if (!ReadInteger(stream, "StateOrder", m_nStateOrder)) return false;
  if (!ReadInteger(stream, "StateScale", m_nStateScale)) return false;
  m_Lo.clear();
  m_Hi.clear();
  if (m_nStateScale == 0) return true;
  m_Lo.resize(classes);
  m_Hi.resize(classes);
  for (std::size_t i = 0; i < classes; ++i) {
    std::string line;
    ReadLine(stream, line);
    LineScanner scanner(line.c_str());
    if (!scanner.Float(m_Lo[i]) || !scanner.Float(m_Hi[i]))
      return NotAsExpected(itostr("interval %d '<lo> <hi>'", static_cast<int>(i)), line);
  }
  return true;
}

// A file that ends early is no error here: a class whose line is not there is named by its number.
bool CMapLegend::ReadVersion2LegendTypeCategorial(std::vector<std::string> &names,
                                                  std::istream &stream) {
  names.clear();
  for (int i = 0; i < m_nClasses; ++i) {
    std::string line;
    names.push_back(ReadLine(stream, line) ? line : itostr("item %d", i));
  }
  return true;
}

// Completes the fields behind a version 1 file. It works from whatever state it finds, and so
// repairs a failed read of version 2 and makes the default legend as well.
void CMapLegend::GenerateVersion1Data(CBaseMap *map) {
  int const items = map->m_nLegendItems;
  m_strPaletteFile.clear();
  m_nClasses = items;
  if (m_nLegendType == kCategorial) {
    m_nStateOrderColor = 0;
    m_dDisplayMin = 0.0;
    m_dDisplayMax = items - 1;
    m_nDecimals = 0;
    m_nStateLabel = kNamesOfTheirOwn;
    m_nStateOrder = 1;
    m_nStateScale = 0;
    m_Lo.clear();
    m_Hi.clear();
  } else if (m_nStateScale != 0) {
    m_nStateOrderColor = 0;
    m_nLegendType = kNumeric;
    if (!RangeOfIntervals(m_dDisplayMin, m_dDisplayMax)) {
      m_dDisplayMin = 0.0;
      m_dDisplayMax = 1.0;
    }
    m_nDecimals = DecimalsOfRange(m_dDisplayMin, m_dDisplayMax, items, kNamesOfTheirOwn);
    m_nStateLabel = kNamesOfTheirOwn;
    m_nStateOrder = !m_Hi.empty() && m_Hi.front() < m_Hi.back() ? 1 : 0;
  } else {
    m_nStateOrderColor = 1;
    m_nLegendType = kNumeric;
    m_nDecimals = DecimalsOfRange(m_dDisplayMin, m_dDisplayMax, items, kRangeLabel);
    m_nStateLabel = kRangeLabel;
    m_nStateOrder = 0;
    map->m_LegendColors.clear();
  }
  if (items < 2) MakeDefault(map);
}

// The middles of the closed intervals, with half a class at both ends. False if none is closed.
bool CMapLegend::RangeOfIntervals(double &minimum, double &maximum) const {
  if (m_Lo.size() != m_Hi.size()) return false;
  int count = 0;
  for (std::size_t i = 0; i < m_Lo.size(); ++i) {
    if (!(m_Lo[i] > kNoLowerEnd && m_Hi[i] < kNoUpperEnd)) continue;
    double const middle = (m_Lo[i] + m_Hi[i]) * 0.5;
    minimum = count == 0 ? middle : std::min(minimum, middle);
    maximum = count == 0 ? middle : std::max(maximum, middle);
    ++count;
  }
  if (count == 0) return false;
  double const half = (maximum - minimum) / count * 0.5;
  minimum -= half;
  maximum += half;
  return true;
}

// 11 classes in place of fewer than two. The fields that are not set here keep what they hold, so
// that the default is numeric for a legend without a file and categorial behind an empty one.
void CMapLegend::MakeDefault(CBaseMap *map) {
  m_nClasses = kDefaultClasses;
  map->m_nLegendItems = kDefaultClasses;
  m_dDisplayMin = -0.05;
  m_dDisplayMax = 1.05;
  m_nDecimals = 2;
  m_nStateScale = 0;
  m_strPaletteFile.clear();
  GenerateColorItem(map->m_LegendColors, nullptr);
  GenerateNameItem(map->m_LegendNames);
}

void CMapLegend::Write(CBaseMap *map, char const *file) {
  WriteVersion2(map->m_LegendNames, map->m_LegendColors, file);
}

void CMapLegend::WriteVersion2(std::vector<std::string> &names, std::vector<unsigned long> &colors,
                               char const *file) {
  LineWriter lines(file);
  if (!lines.IsOpen()) return;
  auto const classes = static_cast<std::size_t>(ListSize(m_nClasses));
  lines.Write("Version 2");
  lines.Write("NClasses", m_nClasses);
  lines.Write(m_strPaletteFile.empty() ? "Palette" : "Palette " + m_strPaletteFile);
  if (m_strPaletteFile.empty())
    for (std::size_t i = 0; i < classes; ++i)
      lines.Write(ColorLine(i < colors.size() ? colors[i] : 0));
  lines.Write("StateOrderColor", m_nStateOrderColor);
  lines.Write("LegendType", m_nLegendType);
  if (m_nLegendType == kCategorial) {
    // The list's own size counts here, where all other lists are as long as there are classes.
    for (std::string const &name : names) lines.Write(name);
    return;
  }
  lines.Write("Decimals", m_nDecimals);
  lines.Write("DisplayMin", m_dDisplayMin);
  lines.Write("DisplayMax", m_dDisplayMax);
  lines.Write("StateLabel", m_nStateLabel);
  if (m_nStateLabel == kNamesOfTheirOwn)
    for (std::size_t i = 0; i < classes; ++i) lines.Write(i < names.size() ? names[i] : "");
  lines.Write("StateOrder", m_nStateOrder);
  lines.Write("StateScale", m_nStateScale);
  if (m_nStateScale == 0) return;
  for (int i = 0; i < m_nClasses; ++i)
    lines.Write(TextOfNumber(Bound(m_Lo, i)) + "\t" + TextOfNumber(Bound(m_Hi, i)));
}

// Kept for the format's sake: nothing in the library writes this version any more.
void CMapLegend::WriteVersion1(CBaseMap *map, char const *file) {
  LineWriter lines(file);
  if (!lines.IsOpen()) return;
  if (m_nStateScale == 0) {
    lines.Write("L\t" + TextOfNumber(m_dDisplayMin) + "\t" + TextOfNumber(m_dDisplayMax) +
                itostr("\t%d\t255\t255\t255", m_nClasses));
    return;
  }
  for (int i = 0; i < map->m_nLegendItems; ++i) {
    unsigned long const color = map->GetLegendItemColor(i);
    lines.Write(TextOfNumber(Lo(i)) + "\t" + TextOfNumber(Hi(i)) +
                itostr("\t%d", Channel(color, 0)) + itostr("\t%d", Channel(color, 8)) +
                itostr("\t%d\t", Channel(color, 16)) + map->GetLegendItemName(i));
  }
}

void CMapLegend::SetBaseMapLegend(CBaseMap *map, int colorOrder, int legendType,
                                  std::vector<std::string> &names,
                                  std::vector<unsigned long> &colors) {
  // Copies, since the lists may be the map's own, which are emptied first.
  std::vector<std::string> const newNames(names.begin(), names.end());
  std::vector<unsigned long> const newColors(colors.begin(), colors.end());
  m_Lo.clear();
  m_Hi.clear();
  m_nStateOrderColor = colorOrder;
  m_nLegendType = legendType;
  m_nClasses = static_cast<int>(newNames.size());
  map->ClearLegend();
  for (std::size_t i = 0; i < newNames.size(); ++i)
    map->AddLegendItem(newNames[i], i < newColors.size() ? newColors[i] : 0);
  m_bLoaded = true;
}
