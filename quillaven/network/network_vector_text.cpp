#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include <quillaven/foundation/errors.h>
#include <quillaven/foundation/input_file_internal.h>
#include <quillaven/network/network.h>
#include <quillaven/network/network_index_internal.h>
#include <quillaven/platform/message_box_internal.h>
#include <quillaven/platform/number_locale_internal.h>
#include <quillaven/platform/system_paths.h>

namespace {

constexpr char kTitle[] = "ArcInfo vector file";
constexpr std::size_t kLongestLine = 4095;

bool Refuse(char const *text) {
  ShowMessageBox(text, kTitle);
  return false;
}

// The lines of a file. Meeting the end of the file is told in a box each time and gives what there
// is: a last line without a line break, and then empty lines.
class LineReader {
 public:
  explicit LineReader(std::istream &stream) : m_stream(stream), m_buffer(1U << 16) {}

  /// The next line, good until the one after it is read. At most 4095 characters; what is longer
  /// arrives as the next line.
  std::string_view Next() {
    if (Left() < kLongestLine + 2) Refill();
    // A line break is one or two characters long.
    std::size_t const reach = std::min(Left(), kLongestLine + 2);
    auto const *const feed = static_cast<char const *>(std::memchr(m_at, '\n', reach));
    if (feed != nullptr) {
      std::size_t length = static_cast<std::size_t>(feed - m_at);
      if (length > 0 && m_at[length - 1] == '\r') --length;
      if (length <= kLongestLine) return Take(length, feed + 1);
    }
    if (Left() > kLongestLine) return Take(kLongestLine, m_at + kLongestLine);
    Refuse("Unexpected end of file");
    return Take(Left(), m_end);
  }

 private:
  std::size_t Left() const { return static_cast<std::size_t>(m_end - m_at); }

  std::string_view Take(std::size_t length, char const *next) {
    std::string_view const line(m_at, length);
    m_at = next;
    return line;
  }

  void Refill() {
    std::size_t const left = Left();
    std::memmove(m_buffer.data(), m_at, left);
    m_stream.read(m_buffer.data() + left, static_cast<std::streamsize>(m_buffer.size() - left));
    m_at = m_buffer.data();
    m_end = m_at + left + static_cast<std::size_t>(m_stream.gcount());
  }

  std::istream &m_stream;
  std::vector<char> m_buffer;
  char const *m_at = m_buffer.data();
  char const *m_end = m_at;
};

bool IsClosing(std::string_view line) {
  return line.substr(0, 3) == "END";
}

bool IsBlank(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}
bool IsDigit(char c) {
  return static_cast<unsigned char>(c - '0') < 10;
}

// An unsigned number behind blanks, with a sign if need be, as scanf takes it. Its low bits alone
// count, so it may be as long as it likes.
bool ScanId(std::string_view line, std::uint32_t &id) {
  char const *at = std::find_if_not(line.begin(), line.end(), IsBlank);
  char const *const end = line.end();
  bool const negative = at != end && *at == '-';
  if (at != end && (*at == '-' || *at == '+')) ++at;
  if (at == end || !IsDigit(*at)) return false;
  std::uint32_t number = 0;
  for (; at != end && IsDigit(*at); ++at)
    number = number * 10 + static_cast<unsigned int>(*at - '0');
  id = (negative ? 0U - number : number) & 0xFFFFFFU;
  return true;
}

constexpr std::array<double, 16> kPowersOfTen{1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                              1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
constexpr std::ptrdiff_t kExactDigits = 15;  // so many decimal digits fit a double exactly

// A short decimal number, as nearly all are: an integer and one exact power of ten give it with a
// single division that rounds as it must. False, and nothing is said, for all others.
bool ScanShortNumber(char const *&at, char const *end, double &value) {
  while (at != end && IsBlank(*at)) ++at;
  bool const negative = at != end && *at == '-';
  if (negative) ++at;
  char const *const digits = at;
  std::uint64_t number = 0;
  while (at != end && IsDigit(*at)) number = number * 10 + static_cast<std::uint64_t>(*at++ - '0');
  std::ptrdiff_t count = at - digits;
  std::ptrdiff_t decimals = 0;
  if (at != end && *at == '.') {
    char const *const point = at++;
    while (at != end && IsDigit(*at))
      number = number * 10 + static_cast<std::uint64_t>(*at++ - '0');
    decimals = at - point - 1;
    count += decimals;
  }
  if (count == 0 || count > kExactDigits || (at != end && !IsBlank(*at))) return false;
  double const magnitude =
      static_cast<double>(number) / kPowersOfTen[static_cast<std::size_t>(decimals)];
  value = negative ? -magnitude : magnitude;
  return true;
}

// A number in decimal digits, however many. The few kinds that are left to the system's scanf are
// those beyond the doubles, hexadecimal ones, and an exponent that goes wrong.
bool ScanDecimalNumber(char const *&at, char const *end, double &value) {
  while (at != end && IsBlank(*at)) ++at;
  bool const negative = at != end && *at == '-';
  if (at != end && (*at == '-' || *at == '+')) ++at;
  if (at == end || (!IsDigit(*at) && *at != '.')) return false;
  double magnitude = 0.0;
  auto const [stop, error] = std::from_chars(at, end, magnitude);
  if (error != std::errc()) return false;
  if (stop != end && (*stop == 'e' || *stop == 'E' || *stop == 'x' || *stop == 'X')) return false;
  at = stop;
  value = negative ? -magnitude : magnitude;
  return true;
}

bool ScanAnyNumber(char const *&at, char const *end, double &value) {
  PointLocale const numbers;
  int length = 0;
  if (std::sscanf(std::string(at, end).c_str(), " %lf%n", &value, &length) != 1) return false;
  at += length;
  return true;
}

// A number as scanf takes it: blanks are skipped, and it ends where no more of it can follow.
bool ScanNumber(char const *&at, char const *end, double &value) {
  char const *const start = at;
  if (ScanShortNumber(at, end, value)) return true;
  at = start;
  if (ScanDecimalNumber(at, end, value)) return true;
  at = start;
  return ScanAnyNumber(at, end, value);
}

// What is behind the two numbers is ignored.
bool ScanPoint(std::string_view line, double &x, double &y) {
  char const *at = line.data();
  char const *const end = at + line.size();
  return ScanNumber(at, end, x) && ScanNumber(at, end, y);
}

// Writes the lines of a file as printf's "%10lu\n", " %17.6lf %17.6lf\n" and "END\n".
class LineWriter {
 public:
  explicit LineWriter(std::ostream &stream) : m_stream(stream) {}

  void Id(std::uint32_t id) {
    Field(10, id);
    m_stream << '\n';
  }
  void Point(CNetwork::CNode const &node) {
    m_stream << ' ';
    Field(17, node.x, std::chars_format::fixed, 6);
    m_stream << ' ';
    Field(17, node.y, std::chars_format::fixed, 6);
    m_stream << '\n';
  }
  void Close() { m_stream << "END\n"; }

 private:
  template <class Number, class... Form>
  void Field(std::ptrdiff_t width, Number number, Form... form) {
    char text[400];  // the largest double has 309 digits in front of the point
    char const *const end = std::to_chars(text, text + sizeof text, number, form...).ptr;
    for (std::ptrdiff_t i = end - text; i < width; ++i) m_stream << ' ';
    m_stream.write(text, end - text);
  }

  std::ostream &m_stream;
};

}  // namespace

bool CNetwork::ReadAsciiFile(char const *file, unsigned char type) {
  std::ifstream stream = OpenInputFile(file);
  if (!stream) {
    NoSuchFile(file);
    return false;
  }
  LineReader lines(stream);
  CNetworkIndex index(nodes, links, idListElems);
  for (;;) {
    std::string_view line = lines.Next();
    if (IsClosing(line)) return true;
    std::uint32_t id = 0;
    double x = 0.0;
    double y = 0.0;
    if (!ScanId(line, id)) return Refuse("Id of vector expected");
    if (!ScanPoint(lines.Next(), x, y)) return Refuse("First coordinate of vector expected");
    // A point is taken in when the line behind it has been read: by then the look for its node need
    // not wait for memory.
    std::uint32_t previous = 0;
    auto const takeIn = [&] {
      std::uint32_t const node = FindOrCreateNode(x, y, index);
      if (previous != 0) Connect(previous, node, type, id, index);
      previous = node;
    };
    for (line = lines.Next(); !IsClosing(line); line = lines.Next()) {
      double nextX = 0.0;
      double nextY = 0.0;
      bool const isPoint = ScanPoint(line, nextX, nextY);
      index.nodes.Expect(nextX, nextY);
      takeIn();
      if (!isPoint) return Refuse("Subsequent coordinate of vector expected");
      x = nextX;
      y = nextY;
    }
    takeIn();
  }
}

// Polylines are put together by id and order in the pool alone. The last id starts at 0, the next
// record is looked at whatever its type and use, and an id that returns behind links of other types
// is not written again: readers of these files know them so.
bool CNetwork::WriteAsciiFile(char const *file, unsigned char type) const {
  std::ofstream stream(SystemPath(file));
  if (!stream) {
    CannotCreateFile(file);
    return false;
  }
  LineWriter lines(stream);
  std::uint32_t lastId = 0;
  for (std::size_t i = 1; i < links.size(); ++i) {
    CLink const &link = links[i];
    if (IsUnused(&link) || link.type != type) continue;
    if (link.id != lastId) {
      lines.Id(link.id);
      lines.Point(NodeAt(link.from));
      lastId = link.id;
    }
    lines.Point(NodeAt(link.to));
    if (i + 1 == links.size() || links[i + 1].id != link.id) lines.Close();
  }
  lines.Close();
  return true;
}
