#include "apps/table_file.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "apps/files.h"

namespace {

constexpr int kLineSize = 4096;
constexpr char kColumns[] = "Type\tName\tXmin\tXmax\tYmin\tYmax\t#Points\tXLabel\tYLabel";

void OpenText(CStdioFile &stream, std::string const &file) {
  RequirePlainFile(file);
  if (!stream.Open(file.c_str(), CFile::modeRead | CFile::typeText))
    throw Failure("cannot open '" + file + "'");
}

long long Position(CStdioFile &stream) {
  return static_cast<long long>(stream.Seek(0, CFile::current));
}

// Whether a file begins as a table in tagged form, with or without the line of several tables.
bool IsTagged(std::string const &file) {
  CStdioFile stream;
  OpenText(stream, file);
  char line[kLineSize + 1] = {};
  for (int i = 0; i < 2; ++i) {
    GetLine(line, kLineSize, stream);
    if (std::strstr(line, kColumns) != nullptr) return true;
  }
  return false;
}

// Where the lines of a table begin, from where the one before has ended: behind the line of several
// tables, if there is one. Gives the number in the brackets, too.
long long FindFirstLine(std::string const &file, long long from, int &number) {
  CStdioFile stream;
  OpenText(stream, file);
  stream.Seek(from, CFile::begin);
  char line[kLineSize + 1] = {};
  GetLine(line, kLineSize, stream);
  if (std::strstr(line, kColumns) == nullptr) {
    from = Position(stream);
    GetLine(line, kLineSize, stream);
  }
  number = line[0] == '(' ? std::atoi(line + 1) : 0;
  return from;
}

}  // namespace

TableInFile ReadTable(std::string const &file, int n) {
  Console const console(".");  // a box for a table that is not there ends here
  bool const tagged = IsTagged(file);
  CStdioFile stream;
  OpenText(stream, file);
  for (int i = 1;; ++i) {
    TableInFile found;
    found.tagged = tagged;
    found.begin = Position(stream);
    bool read = true;
    if (tagged) {
      read = found.table.OnRead(stream, i);
    } else {
      found.table.OnRead2(stream);
      read = found.table.GetSize() > 0;
    }
    if (!read && i == 1) throw Failure("'" + file + "' holds no function table");
    if (!read) throw Failure("'" + file + itostr("' holds no table number %d", n));
    found.end = Position(stream);
    if (i < n) continue;
    if (tagged) found.begin = FindFirstLine(file, found.begin, found.number);
    return found;
  }
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
