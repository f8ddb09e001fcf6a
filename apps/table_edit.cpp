// The spline tool on a table of a file.

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "apps/commands.h"
#include "apps/console.h"
#include "apps/files.h"
#include "apps/table_file.h"

#if defined(QUILLAVEN_HAS_DESKTOP)
#include <quillaven/desktop/desktop_application.h>
#endif

namespace {

constexpr unsigned int kOk = 1;

#if defined(QUILLAVEN_HAS_DESKTOP)
// The tool closes as if cancelled when a table cannot be drawn. Here the reason is kept on its way.
class ToolApplication : public CDesktopApplication {
 public:
  unsigned int RunModal(CDialog &dialog) override {
    try {
      return CDesktopApplication::RunModal(dialog);
    } catch (std::string const &text) {
      reason = text;
      throw;
    } catch (std::exception const &error) {
      reason = error.what();
      throw;
    }
  }
  std::string reason;
};

bool EditInWindow(CSpline &table) {
  ToolApplication application;
  if (!application.HasDisplay()) throw Failure("there is no display to edit a table on");
  bool const ok = CSpline::DoModal(table) == kOk;
  if (!ok && !application.reason.empty())
    throw Failure("the table cannot be drawn, and is unchanged: " + application.reason);
  return ok;
}
#else
bool EditInWindow(CSpline & /*table*/) {
  throw Failure("there is no display to edit a table on: this program was built without windows");
}
#endif

// The old file under another name, before anything is written.
std::string KeepBackup(std::string const &file) {
  std::string backup = SystemPath(file) + ".bak";
  std::error_code error;
  std::filesystem::copy_file(SystemPath(file), backup,
                             std::filesystem::copy_options::overwrite_existing, error);
  if (error) throw Failure("cannot keep '" + file + "' as '" + backup + "': " + error.message());
  return backup;
}

// What is told of a file that cannot be written ends in where to find what was there.
void WriteBytes(std::string const &file, std::string const &bytes, std::string const &advice) {
  errno = 0;
  std::ofstream stream(SystemPath(file), std::ios::binary);
  stream << bytes;
  stream.close();
  if (!stream) throw Failure("cannot write '" + file + "': " + std::strerror(errno) + advice);
}

// What was edited is not lost when its file cannot have it: it goes beside the file, or else where
// temporary files are.
[[noreturn]] void WriteElsewhere(std::string const &file, std::string const &bytes,
                                 std::string const &why) {
  std::string other = file + ".edited";
  try {
    WriteBytes(other, bytes, "");
  } catch (Failure const &) {
    namespace fs = std::filesystem;
    other = (fs::temp_directory_path() / fs::path(SystemPath(other)).filename()).string();
    WriteBytes(other, bytes, " (" + why + ")");
  }
  throw Failure(why + "; the file with the edited table is '" + other + "'");
}

// The path of the backup.
std::string WriteBack(std::string const &file, std::string const &bytes) {
  try {
    std::string const backup = KeepBackup(file);
    WriteBytes(file, bytes, ", the old file is " + backup);
    return backup;
  } catch (Failure const &failure) {
    WriteElsewhere(file, bytes, failure.what());
  }
}

// A file that can no longer be read is another one.
bool StillHolds(std::string const &file, std::string const &bytes) {
  try {
    RequirePlainFile(file);
    return BytesOf(file) == bytes;
  } catch (std::exception const &) {
    return false;
  }
}

void RequireWhole(TableInFile const &found, TableOptions const &options) {
  if (found.cut)
    throw Failure("'" + options.file + itostr("': a line of table %d ", options.table) +
                  "is too long to be read whole, so it cannot be edited");
  if (found.promised != found.table.GetSize())
    throw Failure("'" + options.file + itostr("': table %d ", options.table) +
                  itostr("tells %d points, ", found.promised) +
                  itostr("and %d can be read, so it cannot be edited", found.table.GetSize()));
}

}  // namespace

// The other tables of the file stay byte for byte.
void TableEdit(TableOptions const &options) {
  RequirePlainFile(options.file);
  std::string const bytes = BytesOf(options.file);
  TableInFile found = ReadTable(options.file, options.table);
  RequireWhole(found, options);
  if (!EditInWindow(found.table)) {
    std::printf("%s: unchanged\n", options.file.c_str());
    return;
  }
  std::string const lines = TextOfTable(found);
  std::string const edited = found.before + lines + found.behind;
  // Another program may have written the file while the window was open. Neither work is lost.
  if (!StillHolds(options.file, bytes))
    WriteElsewhere(
        options.file, edited,
        "'" + options.file + "' has changed while its table was edited; it stays as it is now");
  std::string const backup = WriteBack(options.file, edited);
  std::printf("%s: table %d written, the old file is %s\n", options.file.c_str(), options.table,
              backup.c_str());
  if (!found.tagged) WarnOfCompactForm(options.file, found.table);
  if (found.tagged && HasLongLine(lines))
    std::printf("%s: the table has a line that is too long to be read whole again\n",
                options.file.c_str());
}
