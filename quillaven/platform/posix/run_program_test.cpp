#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <pthread.h>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include <quillaven/platform/run_program_internal.h>

#include "tests/support/temporary_directory.h"
#include "tests/support/working_directory.h"

namespace {

// Puts an action for a signal in force and brings the one before back.
class SignalAction {
 public:
  SignalAction(int signal, void (*handler)(int)) : m_signal(signal) {
    struct sigaction action {};
    action.sa_handler = handler;  // without SA_RESTART: what waits is interrupted
    ::sigaction(signal, &action, &m_before);
  }
  ~SignalAction() { ::sigaction(m_signal, &m_before, nullptr); }
  SignalAction(SignalAction const &) = delete;
  SignalAction &operator=(SignalAction const &) = delete;

 private:
  int m_signal;
  struct sigaction m_before {};
};

// Sets an environment variable, or takes it away for null, and brings the value before back.
class EnvironmentVariable {
 public:
  EnvironmentVariable(char const *name, char const *value) : m_name(name) {
    if (char const *before = std::getenv(name)) m_before = before;
    Set(value);
  }
  ~EnvironmentVariable() { Set(m_before.c_str()); }
  EnvironmentVariable(EnvironmentVariable const &) = delete;
  EnvironmentVariable &operator=(EnvironmentVariable const &) = delete;

 private:
  void Set(char const *value) const {
    if (value != nullptr) {
      ::setenv(m_name, value, 1);
    } else {
      ::unsetenv(m_name);
    }
  }

  char const *m_name;
  std::string m_before;
};

volatile std::sig_atomic_t g_interruptions = 0;

void CountInterruption(int /*signal*/) {
  g_interruptions = g_interruptions + 1;
}

class RunProgramHere : public testing::Test {
 protected:
  // A program that takes its time and leaves a file when it has ended.
  std::string SlowCommand() const {
    return "sh -c \"sleep 0.3; echo done > '" + directory.Path("out") + "'\"";
  }
  // A list of commands that leaves its arguments in a file.
  void WriteCommands(std::string const &name, std::string const &firstLine,
                     bool executable = true) {
    std::string const path =
        directory.Write(name, firstLine + "echo \"$1\" > '" + directory.Path("out") + "'\n");
    using std::filesystem::perms;
    if (executable) std::filesystem::permissions(path, perms::owner_all);
  }

  TemporaryDirectory directory;
};

TEST_F(RunProgramHere, WaitsThroughInterruptions) {
  SignalAction const action(SIGUSR1, CountInterruption);
  g_interruptions = 0;
  pthread_t const waiting = ::pthread_self();
  std::atomic<bool> ended{false};
  std::thread interrupter([&] {
    while (!ended) {
      ::pthread_kill(waiting, SIGUSR1);
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
  });
  EXPECT_EQ(RunProgram(SlowCommand().c_str(), 0), ProgramRun::kEnded);
  bool const done = directory.Has("out");
  ended = true;
  interrupter.join();
  EXPECT_TRUE(done);
  EXPECT_GT(g_interruptions, 3);
}

TEST_F(RunProgramHere, WaitsWhereTheApplicationIgnoresTheEndOfItsChildren) {
  SignalAction const action(SIGCHLD, SIG_IGN);
  EXPECT_EQ(RunProgram(SlowCommand().c_str(), 0), ProgramRun::kEnded);
  EXPECT_EQ(directory.Read("out"), "done\n");
}

TEST_F(RunProgramHere, FindsABareNameAlongThePath) {
  WriteCommands("second/tool", "#!/bin/sh\n");
  WriteCommands("first/tool", "#!/bin/sh\n", false);  // not executable: passed over
  std::string const path = directory.Path("first") + "::" + directory.Path("second") + ":/bin";
  EnvironmentVariable const variable("PATH", path.c_str());
  EXPECT_EQ(RunProgram("tool x", 0), ProgramRun::kEnded);
  EXPECT_EQ(directory.Read("out"), "x\n");
  EXPECT_EQ(RunProgram("no-such-tool", 0), ProgramRun::kNotStarted);
}

TEST_F(RunProgramHere, DoesNotMatchABareNameWithWhatLiesInTheWorkingDirectory) {
  std::filesystem::create_directory(directory.Path("SH"));
  WriteCommands("Tool", "#!/bin/sh\n");
  WorkingDirectory const inside(directory.Path());
  EXPECT_EQ(RunProgram("sh -c \"exit 0\"", 0), ProgramRun::kEnded);
  EXPECT_EQ(RunProgram("tool x", 0), ProgramRun::kNotStarted);
  EXPECT_EQ(RunProgram("Tool x", 0), ProgramRun::kNotStarted);
  EXPECT_FALSE(directory.Has("out"));
}

TEST_F(RunProgramHere, FindsAFileOfTheWorkingDirectoryByItsDirectory) {
  WriteCommands("Tool", "#!/bin/sh\n");
  WorkingDirectory const inside(directory.Path());
  EXPECT_EQ(RunProgram("./Tool one", 0), ProgramRun::kEnded);
  EXPECT_EQ(directory.Read("out"), "one\n");
  EXPECT_EQ(RunProgram(".\\tool x", 0), ProgramRun::kEnded);
  EXPECT_EQ(directory.Read("out"), "x\n");
}

// A name with a backslash in it that exists as it stands is that file, and not one along the path.
TEST_F(RunProgramHere, TakesANameWithABackslashThatExistsForThatFile) {
  WriteCommands("odd\\name", "#!/bin/sh\n");
  WorkingDirectory const inside(directory.Path());
  EXPECT_EQ(RunProgram("odd\\name x", 0), ProgramRun::kEnded);
  EXPECT_EQ(directory.Read("out"), "x\n");
}

// No prefix of the command is tried out as a program.
TEST_F(RunProgramHere, WantsAProgramWithABlankInQuotes) {
  WriteCommands("my tool", "#!/bin/sh\n");
  std::string const path = directory.Path("my tool");
  EXPECT_EQ(RunProgram((path + " x").c_str(), 0), ProgramRun::kNotStarted);
  EXPECT_EQ(RunProgram(("\"" + path + "\" x").c_str(), 0), ProgramRun::kEnded);
  EXPECT_EQ(directory.Read("out"), "x\n");
}

TEST_F(RunProgramHere, HasAPathWhereTheEnvironmentHasNone) {
  EnvironmentVariable const variable("PATH", nullptr);
  EXPECT_EQ(RunProgram("sh -c \"exit 3\"", 0), ProgramRun::kEnded);
}

TEST_F(RunProgramHere, FindsAFileWhoseNameIsWrittenWithBackslashes) {
  WriteCommands("Tools/run.sh", "#!/bin/sh\n");
  std::string const command = "\"" + directory.Path() + "\\tools\\RUN.sh\" x";
  EXPECT_EQ(RunProgram(command.c_str(), 0), ProgramRun::kEnded);
  EXPECT_EQ(directory.Read("out"), "x\n");
}

TEST_F(RunProgramHere, GivesAFileWithoutAnInterpreterLineToTheCommandProcessor) {
  WriteCommands("my commands", "");
  std::string const command = "\"" + directory.Path("my commands") + "\" \"$HOME; a b\"";
  EXPECT_EQ(RunProgram(command.c_str(), 0), ProgramRun::kEnded);
  EXPECT_EQ(directory.Read("out"), "$HOME; a b\n");
}

TEST_F(RunProgramHere, GivesTheCommandProcessorNoPathThatLooksLikeAnOption) {
  WriteCommands("-x/tool", "");
  WorkingDirectory const inside(directory.Path());
  EnvironmentVariable const variable("PATH", "-x");
  EXPECT_EQ(RunProgram("tool one", 0), ProgramRun::kEnded);
  EXPECT_EQ(directory.Read("out"), "one\n");
  EXPECT_EQ(RunProgram("-x/tool two", 0), ProgramRun::kEnded);
  EXPECT_EQ(directory.Read("out"), "two\n");
}

// A program whose machine is none.
TEST_F(RunProgramHere, DoesNotStartAProgramForAnotherMachine) {
  std::string program = "\177ELF\2\1\1";
  program.resize(200, '\0');
  WriteCommands("other", program);
  EXPECT_EQ(RunProgram(directory.Path("other").c_str(), 0), ProgramRun::kNotStarted);
}

TEST_F(RunProgramHere, TakesAFileForAListOfCommandsThoughZeroBytesFollowItsFirstLine) {
  WriteCommands("list", "# commands\n" + std::string(1, '\0') + "\n");
  EXPECT_EQ(RunProgram((directory.Path("list") + " x").c_str(), 0), ProgramRun::kEnded);
  EXPECT_EQ(directory.Read("out"), "x\n");
  WriteCommands("empty", "");
  std::filesystem::resize_file(directory.Path("empty"), 0);
  EXPECT_EQ(RunProgram(directory.Path("empty").c_str(), 0), ProgramRun::kEnded);
}

TEST_F(RunProgramHere, DoesNotStartWhatIsNoProgram) {
  WriteCommands("text", "#!/bin/sh\n", false);
  WriteCommands("lost", "#!/no/such/interpreter\n");
  EXPECT_EQ(RunProgram(directory.Path("text").c_str(), 0), ProgramRun::kNotStarted);
  EXPECT_EQ(RunProgram(directory.Path("lost").c_str(), 0), ProgramRun::kNotStarted);
  EXPECT_EQ(RunProgram(directory.Path("missing").c_str(), 0), ProgramRun::kNotStarted);
  EXPECT_EQ(RunProgram(directory.Path().c_str(), 0), ProgramRun::kNotStarted);
  EXPECT_EQ(RunProgram("", 0), ProgramRun::kNotStarted);
  EXPECT_EQ(RunProgram("\"\" x", 0), ProgramRun::kNotStarted);
}

TEST_F(RunProgramHere, TheSystemIsOfNoOlderFamily) {
  EXPECT_FALSE(IsOlderSystemFamily());
}

}  // namespace
