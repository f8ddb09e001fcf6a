#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <spawn.h>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include <quillaven/platform/command_line_internal.h>
#include <quillaven/platform/run_program_internal.h>
#include <quillaven/platform/system_paths.h>

namespace {

constexpr char kCommandProcessor[] = "/bin/sh";
constexpr char kUsualPath[] = "/bin:/usr/bin";

bool IsProgram(std::string const &path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
         ::access(path.c_str(), X_OK) == 0;
}

// A name with a directory is a document's, and is matched as those are. A bare name is looked for
// along PATH as it stands, where an empty entry is the working directory; what lies in the working
// directory has no part in it otherwise. Empty if it is not there.
std::string FindProgram(std::string const &name) {
  if (name.empty() || name.find_first_of("/\\") != std::string::npos) return SystemPath(name);
  char const *variable = std::getenv("PATH");
  std::string const path = variable != nullptr ? variable : kUsualPath;
  for (std::size_t begin = 0; begin <= path.size();) {
    std::size_t const end = std::min(path.find(':', begin), path.size());
    std::string candidate = end > begin ? path.substr(begin, end - begin) : ".";
    candidate.append("/").append(name);
    if (IsProgram(candidate)) return candidate;
    begin = end + 1;
  }
  return {};
}

// Starts a program; 0 or the error. The failure of a start is known when this returns.
int Spawn(pid_t &child, std::string const &program, std::vector<std::string> &words) {
  std::vector<char *> arguments;
  arguments.reserve(words.size() + 1);
  for (std::string &word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  if (int const error = ::posix_spawn_file_actions_init(&actions); error != 0) return error;
  int error = ::posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
  if (error == 0)
    error = ::posix_spawn(&child, program.c_str(), &actions, nullptr, arguments.data(), environ);
  ::posix_spawn_file_actions_destroy(&actions);
  return error;
}

// Whether a file that the system does not know how to run may be a list of commands: the first line
// of one is text. A program for another machine has zero bytes there.
bool IsListOfCommands(std::string const &path) {
  constexpr std::size_t kLongestLook = 256;
  std::string begin(kLongestLook, '\0');
  std::ifstream file(path, std::ios::binary);
  file.read(begin.data(), static_cast<std::streamsize>(begin.size()));
  begin.resize(static_cast<std::size_t>(file.gcount()));
  return file.is_open() && !file.bad() &&
         begin.substr(0, begin.find('\n')).find('\0') == std::string::npos;
}

// A list of commands without an interpreter line is given to the command processor, which takes a
// word that begins with a dash for an option.
int Start(pid_t &child, std::string const &program, std::vector<std::string> words) {
  int const error = Spawn(child, program, words);
  if (error != ENOEXEC || !IsListOfCommands(program)) return error;
  words.front() = program.front() == '-' ? "./" + program : program;
  words.insert(words.begin(), kCommandProcessor);
  return Spawn(child, kCommandProcessor, words);
}

// A child that is gone has ended: somebody else took its status, or the application ignores the end
// of its children, in which case the system waits for it and says so then.
bool WaitForEnd(pid_t child) {
  int status = 0;
  while (::waitpid(child, &status, 0) < 0) {
    if (errno == ECHILD) return true;
    if (errno != EINTR) return false;
  }
  return true;
}

}  // namespace

// There are no windows to show here.
ProgramRun RunProgram(char const *commandLine, unsigned short /*showState*/) {
  std::vector<std::string> words = SplitCommandLine(commandLine);
  if (words.empty()) return ProgramRun::kNotStarted;
  std::string const program = FindProgram(words.front());
  pid_t child = -1;
  if (program.empty() || Start(child, program, std::move(words)) != 0)
    return ProgramRun::kNotStarted;
  return WaitForEnd(child) ? ProgramRun::kEnded : ProgramRun::kWaitFailed;
}

bool IsOlderSystemFamily() {
  return false;
}
