#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <quillaven/foundation/errors.h>
#include <quillaven/foundation/errors_internal.h>
#include <quillaven/platform/directories_internal.h>
#include <quillaven/platform/message_box_internal.h>
#include <quillaven/platform/system_errors_internal.h>

namespace {

// The last error is read only when all else stands: a caller calls straight after the operation
// that failed, and an error that was cleared in between is told as the system tells it.
std::string FileReport(char const *file) {
  constexpr std::size_t kDirectoryLimit = 260;
  char directory[kDirectoryLimit] = "";
  GetWorkingDirectory(directory, sizeof directory);
  std::string report = "File:\n\t";
  report += file;
  report += "\nCurrent working directory:\n\t";
  report += directory;
  report += "\nError:\n\t";
  report += FormatError(file, LastSystemError());
  return report;
}

constexpr char kCannotOpen[] = "Error: Cannot open file";
constexpr char kCannotCreate[] = "Error: Cannot create file";

}  // namespace

std::string FormatError(char const *name, unsigned long code) {
  return SystemErrorText(code, name).value_or(name);
}

void FileError(char const *file, char const *title) {
  std::string const report = FileReport(file);
  ShowMessageBox(report.c_str(), title);
}

void ThrowFileErrorException(char const *file, char const *text) {
  std::string const report = FileReport(file);
  throw std::string(text) + "\n" + report;
}

void NoSuchFile(char const *file) {
  FileError(file, kCannotOpen);
}
void ThrowNoSuchFileException(char const *file) {
  ThrowFileErrorException(file, kCannotOpen);
}
void CannotCreateFile(char const *file) {
  FileError(file, kCannotCreate);
}

int RunShellCommand(char const *command) {
  return RunShellCommand(command, std::system);
}

// A command that cannot be started is both shown and thrown; one that ran and failed is no failure.
int RunShellCommand(char const *command, int (*processor)(char const *)) {
  int const result = processor(command);
  if (result != -1) return result;
  std::string const text = std::string(command) + ": " + std::strerror(errno);
  ShowMessageBox(text.c_str(), "WinExecAndWait");
  throw text;
}

std::string QuoteIfBlank(char const *text) {
  // Only the first character is looked at: a text that opens with a quote is trusted to close it.
  if (std::strchr(text, ' ') == nullptr || text[0] == '"') return text;
  return std::string("\"") + text + "\"";
}
