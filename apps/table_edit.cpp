// The spline tool on a table of a file.

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

#include "apps/commands.h"
#include "apps/console.h"
#include "apps/table_file.h"

#if defined(QUILLAVEN_HAS_DESKTOP)
#include <quillaven/desktop/desktop_application.h>
#endif

namespace {

constexpr unsigned int kOk = 1;

#if defined(QUILLAVEN_HAS_DESKTOP)
unsigned int EditInWindow(CSpline &table) {
  CDesktopApplication application;
  if (!application.HasDisplay()) throw Failure("there is no display to edit a table on");
  return CSpline::DoModal(table);
}
#else
unsigned int EditInWindow(CSpline & /*table*/) {
  throw Failure("there is no display to edit a table on: this program was built without wxWidgets");
}
#endif

std::string BytesOf(std::string const &file) {
  std::ifstream stream(SystemPath(file), std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

// The old file under another name, before anything is written.
std::string KeepBackup(std::string const &file) {
  std::string const backup = SystemPath(file) + ".bak";
  std::error_code error;
  std::filesystem::copy_file(SystemPath(file), backup,
                             std::filesystem::copy_options::overwrite_existing, error);
  if (error) throw Failure("cannot keep '" + file + "' as '" + backup + "': " + error.message());
  return backup;
}

// A file around one of its tables. A reader of digits stops before the end of their line, which
// belongs to the table all the same.
struct Surroundings {
  std::string before;
  std::string behind;

  Surroundings(std::string const &bytes, TableInFile const &found) {
    auto begin = std::min(static_cast<std::size_t>(found.begin), bytes.size());
    auto end = std::min(static_cast<std::size_t>(found.end), bytes.size());
    if (!found.tagged) begin = std::min(bytes.find_first_not_of(" \t\r\n", begin), end);
    if (end > 0 && bytes[end - 1] != '\n') {
      if (bytes.compare(end, 1, "\r") == 0) ++end;
      if (bytes.compare(end, 1, "\n") == 0) ++end;
    }
    before = bytes.substr(0, begin);
    behind = bytes.substr(end);
  }
};

}  // namespace

// The other tables of the file stay byte for byte.
void TableEdit(TableOptions const &options) {
  TableInFile found = ReadTable(options.file, options.table);
  std::string const bytes = BytesOf(options.file);
  if (EditInWindow(found.table) != kOk) {
    std::printf("%s: unchanged\n", options.file.c_str());
    return;
  }
  std::string const backup = KeepBackup(options.file);
  Surroundings const around(bytes, found);
  WriteTextFile(options.file, [&](CStdioFile &out) {
    out.Write(around.before.data(), static_cast<unsigned int>(around.before.size()));
    if (found.tagged) {
      found.table.OnWrite(out, found.number);
    } else {
      found.table.OnWrite2(out);
    }
    out.Write(around.behind.data(), static_cast<unsigned int>(around.behind.size()));
  });
  std::printf("%s: table %d written, the old file is %s\n", options.file.c_str(), options.table,
              backup.c_str());
  if (!found.tagged && !found.table.TableLinear())
    std::printf("%s: this form of file holds no type; the table is read as straight lines\n",
                options.file.c_str());
}
