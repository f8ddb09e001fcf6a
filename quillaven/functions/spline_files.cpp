#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include <quillaven/foundation/numbers.h>
#include <quillaven/foundation/textio.h>
#include <quillaven/functions/spline.h>
#include <quillaven/platform/files.h>
#include <quillaven/platform/message_box_internal.h>
#include <quillaven/platform/number_locale_internal.h>
#include <quillaven/platform/strings.h>

namespace {

constexpr int kLineSize = 4096;

// No line holds more numbers than this: each takes a digit and the end of its field.
constexpr int kMostNumbers = kLineSize / 2;

constexpr char kColumns[] = "Type\tName\tXmin\tXmax\tYmin\tYmax\t#Points\tXLabel\tYLabel";
constexpr char kSeveralTables[] = "NumberFunctions=";

// The number at the begin of a text, as "%d" reads it; one that no int holds becomes the nearest.
std::optional<int> WholeNumber(char const *text) {
  char *end = nullptr;
  long long const number = std::strtoll(text, &end, 10);
  if (end == text) return std::nullopt;
  return static_cast<int>(std::clamp<long long>(number, std::numeric_limits<int>::min(),
                                                std::numeric_limits<int>::max()));
}

// A line in a buffer, and the place of its next field. All lines of a table pass through one
// buffer. A field that ends the text moves the place behind the text's end, into what a longer line
// before left there; the end of the buffer stops all. A number that cannot be read leaves the place
// where it is, so that the numbers behind it fail as well, and the next text takes the bad field.
class FieldReader {
 public:
  bool ReadLine(CStdioFile &file) {
    m_next = m_buffer;
    return GetLine(m_buffer, kLineSize, file);
  }
  // From the next field to the end of the text.
  char const *Rest() const { return m_next; }

  bool ReadDummy() { return Pass(EndField()); }
  bool ReadString(std::string &value) {
    char *end = EndField();
    value = m_next;
    return Pass(end);
  }
  bool ReadInt(int &value) {
    char const *end = EndField();
    std::optional<int> const number = WholeNumber(m_next);
    value = number.value_or(value);
    return number && Pass(end);
  }
  bool ReadFloat(float &value) {
    char const *end = EndField();
    PointLocale const numbers;
    return std::sscanf(m_next, "%g", &value) == 1 && Pass(end);
  }

 private:
  char *EndField() {
    char *end = m_next + std::strcspn(m_next, "\t\n");
    *end = '\0';
    return end;
  }
  bool Pass(char const *end) {
    m_next += end - m_next;
    if (m_next < m_buffer + kLineSize) ++m_next;
    return true;
  }
  char m_buffer[kLineSize + 1] = {};  // the last place is never written: it ends what has no end
  char *m_next = m_buffer;
};

bool BeginsSeveralTables(char const *line) {
  auto const lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
  for (char const *key = kSeveralTables; *key != '\0'; ++key, ++line)
    if (lower(*line) != lower(*key)) return false;
  return true;
}

bool BeginsWith(char const *line, char const *text) {
  return std::strncmp(line, text, std::strlen(text)) == 0;
}

// A value that fails leaves its zero. A count may promise more than the line holds: all that is
// behind the last number is zero, so that one zero at the end stands for any number of them.
std::vector<float> ReadNumbers(FieldReader &line, CStdioFile &file, int count) {
  std::vector<float> values(static_cast<std::size_t>(std::clamp(count, 0, kMostNumbers + 1)));
  line.ReadLine(file);
  line.ReadDummy();  // the tag is not tested
  for (float &value : values) line.ReadFloat(value);
  return values;
}

std::string NoHeaderReport(int number, std::string const &line) {
  return "Error in file containing macromodel demands.\n" +
         itostr("Reading data for function %d\n", number) + "Expected:\n'[num|'('num')']\t" +
         kColumns + "'\nRetrieved:\n'" + line + "'";
}

void WriteNumbers(CStdioFile &file, char const *label, char const *format,
                  std::vector<double> const &values) {
  CString line(label);
  for (double value : values) line += lftostr(format, value);
  line += '\n';
  PutLine(line, file);
}

struct Limits {
  float minY = 0;
  float maxY = 0;
  std::size_t count = 0;
};

// False if there is no count, or one below 1.
bool ReadLimits(CStdioFile &file, Limits &limits) {
  char line[kLineSize + 1] = {};
  GetLine(line, kLineSize, file);
  PointLocale const numbers;
  int place = 0;
  if (std::sscanf(line, " %f %f%n", &limits.minY, &limits.maxY, &place) != 2) return false;
  int const count = WholeNumber(line + place).value_or(0);
  limits.count = static_cast<std::size_t>(std::max(count, 0));
  return count >= 1;
}

bool IsOneOf(char const *bytes, int byte) {
  return byte != '\0' && std::strchr(bytes, byte) != nullptr;
}

// A line of the compact form, read forward. Nothing tells in advance how much of it there is, so
// that the count of the file is not believed: it is held against the bytes that the lines took.
struct CompactLine {
  std::string label;
  std::vector<double> values;
  double last = 0;        // what all values behind these are
  std::size_t bytes = 0;  // how many the line took
};

// Goes over blanks, line ends included, to the begin of a number. False at any other byte, from
// which no number will ever be read, and at the end of the file.
bool ReachNumber(CStdioFile &file, CompactLine &line) {
  int next = std::getc(file.m_pStream);
  for (; IsOneOf(" \t\n\v\f\r", next); next = std::getc(file.m_pStream)) ++line.bytes;
  if (next != EOF) std::ungetc(next, file.m_pStream);
  return IsOneOf("+-.0123456789iInN", next);
}

// Appends the number that begins here. One that fails repeats the last one, and has taken a byte at
// least.
void AppendNumber(CStdioFile &file, CompactLine &line) {
  int bytes = 0;
  if (std::fscanf(file.m_pStream, "%lf%n", &line.last, &bytes) != 1) bytes = 1;
  line.bytes += static_cast<std::size_t>(bytes);
  line.values.push_back(line.last);
}

// Reads behind the next line feed.
void PassRest(CStdioFile &file, CompactLine &line) {
  for (char byte = 0; byte != '\n' && file.Read(&byte, 1) == 1;) ++line.bytes;
}

// The first numbers that fail repeat the last one of the line before.
CompactLine ReadCompactLine(CStdioFile &file, std::size_t count, double last) {
  char label[kLineSize + 1] = {};
  bool const hasTab = ReadStr(label, kLineSize, file, '\t');
  CompactLine line;
  line.label = label;
  line.last = last;
  line.bytes = line.label.size() + (hasTab ? 1 : 0);
  PointLocale const numbers;
  while (line.values.size() < count && ReachNumber(file, line)) AppendNumber(file, line);
  PassRest(file, line);
  return line;
}

}  // namespace

bool CSpline::OnRead(CStdioFile &file, int number) {
  FieldReader line;
  line.ReadLine(file);
  if (BeginsSeveralTables(line.Rest())) line.ReadLine(file);
  std::string const header = line.Rest();
  if (!BeginsWith(line.Rest(), "Type")) line.ReadDummy();
  if (!BeginsWith(line.Rest(), kColumns)) {
    ShowMessageBox(NoHeaderReport(number, header).c_str(), "Error reading file");
    return false;
  }

  line.ReadLine(file);
  line.ReadDummy();
  int type = 0;
  if (line.ReadInt(type)) TblType(type);
  line.ReadString(m_strName);
  line.ReadFloat(m_fMinX);
  line.ReadFloat(m_fMaxX);
  line.ReadFloat(m_fMinY);
  line.ReadFloat(m_fMaxY);
  int count = 0;
  line.ReadInt(count);
  line.ReadString(m_strXLabel);
  line.ReadString(m_strYLabel);

  std::vector<float> const x = ReadNumbers(line, file, count);
  std::vector<float> const y = ReadNumbers(line, file, count);
  for (std::size_t i = 0; i < x.size(); ++i) Add(x[i], y[i]);
  return true;
}

bool CSpline::OnWrite(CStdioFile &file, int number) {
  CString line;
  line.Format("(%d)\t%s\n", number, kColumns);
  PutLine(line, file);
  line.Format("\t%d\t%s\t%lg\t%lg\t%lg\t%lg\t%d\t%s\t%s\n", TblType(), Name(),
              static_cast<double>(MinX()), static_cast<double>(MaxX()), static_cast<double>(MinY()),
              static_cast<double>(MaxY()), GetSize(), XLabel(), YLabel());
  PutLine(line, file);
  WriteNumbers(file, "XDATA", "\t%lg", m_X);
  WriteNumbers(file, "YDATA", "\t%lg", m_Y);
  return true;
}

void CSpline::OnRead2(CStdioFile &file) {
  Limits limits;
  if (!ReadLimits(file, limits)) return;
  CompactLine x = ReadCompactLine(file, limits.count, 0.0);
  CompactLine y = ReadCompactLine(file, limits.count, x.last);
  if (limits.count > x.bytes + y.bytes) return;  // more than the lines could hold
  x.values.resize(limits.count, x.last);
  y.values.resize(limits.count, y.last);
  // From here on nothing fails.
  m_fMinY = limits.minY;
  m_fMaxY = limits.maxY;
  m_fMinX = static_cast<float>(x.values.front());
  m_fMaxX = static_cast<float>(x.values.back());
  m_strXLabel.swap(x.label);
  m_strYLabel.swap(y.label);
  m_X.swap(x.values);
  m_Y.swap(y.values);
}

void CSpline::OnWrite2(CStdioFile &file) {
  CString line;
  line.Format("%.6lf\t%.6lf\t%d\n", static_cast<double>(MinY()), static_cast<double>(MaxY()),
              GetSize());
  PutLine(line, file);
  WriteNumbers(file, XLabel(), "\t%.6lf", m_X);
  WriteNumbers(file, YLabel(), "\t%.6lf", m_Y);
}
