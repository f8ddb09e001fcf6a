#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>
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
  bool ReadInt(int &value) { return ReadNumber("%d", value); }
  bool ReadFloat(float &value) { return ReadNumber("%g", value); }

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
  template <class T>
  bool ReadNumber(char const *format, T &value) {
    char const *end = EndField();
    PointLocale const numbers;
    return std::sscanf(m_next, format, &value) == 1 && Pass(end);
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
  int count = 0;
};

bool ReadLimits(CStdioFile &file, Limits &limits) {
  char line[kLineSize + 1] = {};
  GetLine(line, kLineSize, file);
  PointLocale const numbers;
  return std::sscanf(line, " %f %f %d", &limits.minY, &limits.maxY, &limits.count) == 3;
}

// Reads a label and the numbers behind it. A number that fails repeats the last one, even that of
// the line before.
std::string ReadLabelled(CStdioFile &file, std::vector<double> &values, double &last) {
  char label[kLineSize + 1] = {};
  ReadStr(label, kLineSize, file, '\t');
  for (double &value : values) {
    ReadDbl(last, file);
    value = last;
  }
  SkipRestOfLine(file);
  return label;
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
  // A count is believed as far as the rest of the file could bear it out.
  long long const rest = file.GetLength() - file.Seek(0, CFile::current);
  if (limits.count < 1 || limits.count > rest) return;

  auto const count = static_cast<std::size_t>(limits.count);
  m_X.reserve(count);
  m_Y.reserve(count);
  m_fMinY = limits.minY;
  m_fMaxY = limits.maxY;
  m_X.resize(count);
  m_Y.resize(count);
  double last = 0.0;
  m_strXLabel = ReadLabelled(file, m_X, last);
  m_fMinX = static_cast<float>(m_X.front());
  m_fMaxX = static_cast<float>(m_X.back());
  m_strYLabel = ReadLabelled(file, m_Y, last);
}

void CSpline::OnWrite2(CStdioFile &file) {
  CString line;
  line.Format("%.6lf\t%.6lf\t%d\n", static_cast<double>(MinY()), static_cast<double>(MaxY()),
              GetSize());
  PutLine(line, file);
  WriteNumbers(file, XLabel(), "\t%.6lf", m_X);
  WriteNumbers(file, YLabel(), "\t%.6lf", m_Y);
}
