#include "apps/table_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>

#include "apps/files.h"

namespace {

constexpr int kLineSize = 4096;
constexpr std::size_t kLongestLine = kLineSize - 2;  // longer ones are read in pieces
constexpr char kColumns[] = "Type\tName\tXmin\tXmax\tYmin\tYmax\t#Points\tXLabel\tYLabel";
constexpr int kPointsColumn = 7;

// A file as text, with LF alone at the ends of its lines. Places in the text are found in the bytes
// of the file again, so that what stands around a table can be kept byte for byte.
class TextOfFile {
 public:
  explicit TextOfFile(std::string const &file) : m_bytes(BytesOf(file)) {
    for (std::size_t i = 0; i < m_bytes.size(); ++i)
      if (!IsLineEnd(i)) m_text += m_bytes[i];
  }
  std::string const &Text() const { return m_text; }
  std::string const &Bytes() const { return m_bytes; }

  std::size_t PlaceInBytes(std::size_t place) const {
    std::size_t i = 0;
    for (; i < m_bytes.size(); ++i) {
      if (IsLineEnd(i)) continue;
      if (place-- == 0) return i > 0 && IsLineEnd(i - 1) ? i - 1 : i;
    }
    return i;
  }

 private:
  // Whether this is the CR of a CR LF.
  bool IsLineEnd(std::size_t i) const { return m_bytes.compare(i, 2, "\r\n") == 0; }

  std::string m_bytes;
  std::string m_text;
};

// A text as a stream that the library reads, in which each byte counts as one place.
class TextStream {
 public:
  explicit TextStream(std::string const &text) {
    std::ofstream(m_file.Path(), std::ios::binary) << text;
    if (!m_stream.Open(m_file.Path().c_str(), CFile::modeRead | CFile::typeBinary))
      throw Failure("cannot open '" + m_file.Path() + "'");
  }
  CStdioFile &Stream() { return m_stream; }
  std::size_t Place() { return static_cast<std::size_t>(m_stream.Seek(0, CFile::current)); }

 private:
  ScratchFile m_file;
  CStdioFile m_stream;
};

std::size_t BehindLine(std::string const &text, std::size_t from) {
  std::size_t const end = text.find('\n', from);
  return end != std::string::npos ? end + 1 : text.size();
}

std::string LineAt(std::string const &text, std::size_t from) {
  return text.substr(from, BehindLine(text, from) - from);
}

bool HasColumns(std::string const &line) {
  return line.find(kColumns) != std::string::npos;
}

// Whether a file begins as a table in tagged form, with or without the line of several tables.
bool IsTagged(std::string const &text) {
  return HasColumns(LineAt(text, 0)) || HasColumns(LineAt(text, BehindLine(text, 0)));
}

// The number of points in the line behind the header.
int PromisedPoints(std::string const &line) {
  std::size_t place = 0;
  for (int column = 0; column < kPointsColumn; ++column) {
    place = line.find('\t', place);
    if (place == std::string::npos) return 0;
    ++place;
  }
  long const count = std::strtol(line.c_str() + place, nullptr, 10);
  return static_cast<int>(std::clamp(count, 0L, 1000000000L));
}

// What the file tells of a table that was read from `begin` to `end` of the text.
void Describe(TableInFile &found, TextOfFile const &file, std::size_t begin, std::size_t end) {
  std::string const &text = file.Text();
  if (found.tagged) {
    // behind the line of several tables, if there is one
    if (!HasColumns(LineAt(text, begin))) begin = BehindLine(text, begin);
    found.header = LineAt(text, begin);
    if (found.header.back() != '\n') found.header += '\n';
    found.promised = PromisedPoints(LineAt(text, BehindLine(text, begin)));
    found.cut = HasLongLine(text.substr(begin, end - begin));
  } else {
    begin = std::min(text.find_first_not_of(" \t\n", begin), end);
    found.promised = found.table.GetSize();
  }
  // A reader of numbers may stop before the end of their line, which belongs to the table, too.
  if (end > 0 && text[end - 1] != '\n' && text.compare(end, 1, "\n") == 0) ++end;
  std::size_t const first = file.PlaceInBytes(begin);
  std::size_t const last = file.PlaceInBytes(end);
  std::string const &bytes = file.Bytes();
  found.before = bytes.substr(0, first);
  found.behind = bytes.substr(last);
  std::string const lines = bytes.substr(first, last - first);
  found.lineEnd = lines.find("\r\n") != std::string::npos ? "\r\n" : "\n";
}

std::string Replaced(std::string const &text, char from, std::string const &to) {
  std::string result;
  for (char const c : text) {
    if (c == from) {
      result += to;
    } else {
      result += c;
    }
  }
  return result;
}

}  // namespace

std::string BytesOf(std::string const &file) {
  std::ifstream stream(SystemPath(file), std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

bool HasLongLine(std::string const &lines) {
  for (std::size_t begin = 0; begin < lines.size(); begin = BehindLine(lines, begin))
    if (LineAt(lines, begin).size() > kLongestLine + 1) return true;
  return false;
}

void WarnOfCompactForm(std::string const &file, CSpline &table) {
  if (table.GetSize() == 0) return;
  auto const from = static_cast<float>(table.GetXAt(0));
  auto const to = static_cast<float>(table.GetXAt(table.GetSize() - 1));
  if (table.TableLinear() && table.MinX() == from && table.MaxX() == to) return;
  std::fprintf(stderr,
               "quillaven: warning: '%s': the compact form holds neither type nor limits of x; the "
               "table is read as straight lines from %s to %s\n",
               file.c_str(), ftostr("%g", from).c_str(), ftostr("%g", to).c_str());
}

TableInFile ReadTable(std::string const &file, int n) {
  Console const console(".");  // a box for a table that is not there ends here
  RequirePlainFile(file);
  TextOfFile const content(file);
  bool const tagged = IsTagged(content.Text());
  TextStream stream(content.Text());
  for (int i = 1;; ++i) {
    TableInFile found;
    found.tagged = tagged;
    std::size_t const begin = stream.Place();
    bool read = true;
    if (tagged) {
      read = found.table.OnRead(stream.Stream(), i);
    } else {
      found.table.OnRead2(stream.Stream());
      read = found.table.GetSize() > 0;
    }
    if (!read && i == 1) throw Failure("'" + file + "' holds no function table");
    if (!read) throw Failure("'" + file + itostr("' holds no table number %d", n));
    if (i < n) continue;
    Describe(found, content, begin, stream.Place());
    return found;
  }
}

std::string TextOfTable(TableInFile &found) {
  ScratchFile const scratch;
  WriteTextFile(scratch.Path(), [&](CStdioFile &out) {
    if (found.tagged) {
      found.table.OnWrite(out, 0);
    } else {
      found.table.OnWrite2(out);
    }
  });
  std::string text = TextOfFile(scratch.Path()).Text();
  if (found.tagged) text.replace(0, BehindLine(text, 0), found.header);
  return Replaced(text, '\n', found.lineEnd);
}

void WriteTextFile(std::string const &file, std::function<void(CStdioFile &)> const &write) {
  errno = 0;
  CStdioFile out;
  if (!out.Open(file.c_str(), CFile::modeCreate | CFile::modeWrite | CFile::typeText))
    throw Failure("cannot write '" + file + "': " + std::strerror(errno));
  try {
    write(out);
    out.Close();
  } catch (CFileException const &) {
    throw Failure("cannot write '" + file + "': " + std::strerror(errno));
  }
}
