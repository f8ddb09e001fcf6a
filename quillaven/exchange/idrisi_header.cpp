#include <fstream>
#include <istream>
#include <string>

#include <quillaven/exchange/idrisi_header.h>
#include <quillaven/exchange/number_reader_internal.h>
#include <quillaven/foundation/errors.h>
#include <quillaven/foundation/input_file_internal.h>
#include <quillaven/foundation/line_reader_internal.h>
#include <quillaven/foundation/number_text_internal.h>
#include <quillaven/foundation/numbers.h>
#include <quillaven/foundation/rounding_internal.h>
#include <quillaven/platform/system_paths.h>

namespace {

constexpr std::size_t kLongestLine = 511;
constexpr int kBelievedCategories = 65536;

// Reads the values of a file line by line. The first line that is not there fails the whole file;
// what follows stays as it is.
class ValueReader {
 public:
  explicit ValueReader(std::istream &stream) : m_stream(stream) {}

  bool Read(CString &text) {
    std::string line;
    if (!m_good || !ReadTextLine(m_stream, line, kLongestLine)) return m_good = false;
    constexpr std::size_t kWidth = CIdrisiImageHeader::DESCRIPTOR_WIDTH;
    text = line.size() > kWidth ? CString(line.substr(kWidth)) : CString("malformed input");
    return true;
  }
  void Read(double &number) {
    CString text;
    if (!Read(text)) return;
    number = 0;  // unless the text begins with a number
    LeadingNumber(text, number);
  }
  void Read(int &number) {
    CString text;
    if (Read(text)) number = LeadingInteger(text);
  }
  bool Good() const { return m_good; }

 private:
  std::istream &m_stream;
  bool m_good = true;
};

// A number as a stream writes it, and a coordinate, which loses its fraction.
std::string Text(double number) {
  return TextOfNumber(number);
}
std::string WholeText(double number) {
  return itostr("%d", Truncated(number));
}

}  // namespace

bool CIdrisiImageHeader::ReadFile(char const *file) {
  std::ifstream stream = OpenInputFile(file);
  if (!stream) {
    NoSuchFile(file);
    return false;
  }
  ValueReader reader(stream);
  reader.Read(m_Title);
  reader.Read(m_DataType);
  reader.Read(m_FileType);
  reader.Read(m_Columns);
  reader.Read(m_Rows);
  reader.Read(m_RefSystem);
  reader.Read(m_RefUnits);
  reader.Read(m_UnitDistance);
  reader.Read(m_MinX);
  reader.Read(m_MaxX);
  reader.Read(m_MinY);
  reader.Read(m_MaxY);
  reader.Read(m_PositionError);
  reader.Read(m_Resolution);
  reader.Read(m_MinValue);
  reader.Read(m_MaxValue);
  reader.Read(m_ValueUnits);
  reader.Read(m_ValueError);
  reader.Read(m_FlagValue);
  reader.Read(m_FlagDefinition);
  int count = 0;
  reader.Read(count);
  if (!reader.Good()) return false;

  // The list has the size that the file tells, be its lines there or not. One that is too large to
  // be believed grows as its lines come.
  bool const believed = count > 0 && count <= kBelievedCategories;
  m_Categories.resize(believed ? static_cast<std::size_t>(count) : 0);
  for (int i = 0; i < count; ++i) {
    CString text;
    if (!reader.Read(text)) return false;
    if (i == CategoryCount()) m_Categories.emplace_back();
    m_Categories[static_cast<std::size_t>(i)] = text;
  }
  return true;
}

bool CIdrisiImageHeader::WriteFile(char const *file) {
  std::ofstream stream(SystemPath(file));
  if (!stream) return false;
  stream << "file title  : " << m_Title << "\n"
         << "data type   : " << m_DataType << "\n"
         << "file type   : " << m_FileType << "\n"
         << "columns     : " << itostr("%d", m_Columns) << "\n"
         << "rows        : " << itostr("%d", m_Rows) << "\n"
         << "ref. system : " << m_RefSystem << "\n"
         << "ref. units  : " << m_RefUnits << "\n"
         << "unit dist.  : " << Text(m_UnitDistance) << "\n"
         << "min. X      : " << WholeText(m_MinX) << "\n"
         << "max. X      : " << WholeText(m_MaxX) << "\n"
         << "min. Y      : " << WholeText(m_MinY) << "\n"
         << "max. Y      : " << WholeText(m_MaxY) << "\n"
         << "pos'n error : " << m_PositionError << "\n"
         << "resolution  : " << m_Resolution << "\n"
         << "min. value  : " << Text(m_MinValue) << "\n"
         << "max. value  : " << Text(m_MaxValue) << "\n"
         << "value units : " << m_ValueUnits << "\n"
         << "value error : " << m_ValueError << "\n"
         << "flag value  : " << m_FlagValue << "\n"
         << "flag def'n  : " << m_FlagDefinition << "\n"
         << "legend cats : " << itostr("%d", CategoryCount()) << "\n";
  // This label is one character wider than the reader skips, and with 1000 and more categories
  // wider still: texts move to the right. Files of other programs have it so.
  for (int i = 0; i < CategoryCount(); ++i)
    stream << "category " << itostr("%3d", i) << " : " << CategoryTitle(i) << "\n";
  stream.flush();
  return static_cast<bool>(stream);
}

void CIdrisiImageHeader::Resolution(double resolution) {
  m_Resolution = Text(resolution);
}

int CIdrisiImageHeader::CategoryIndex(char const *name) const {
  for (int i = 0; i < CategoryCount(); ++i)
    if (m_Categories[static_cast<std::size_t>(i)] == name) return i;
  return -1;
}

char const *CIdrisiImageHeader::CategoryTitle(int index) const {
  bool const isCategory = index >= 0 && index < CategoryCount();
  return isCategory ? m_Categories[static_cast<std::size_t>(index)].c_str() : "";
}
