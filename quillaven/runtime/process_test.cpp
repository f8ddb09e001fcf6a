#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <quillaven/foundation/errors.h>
#include <quillaven/platform/dynamic_library_internal.h>
#include <quillaven/runtime/process.h>
#include <quillaven/runtime/process_internal.h>

#include "tests/support/open_handles.h"
#include "tests/support/recording_application.h"
#include "tests/support/system_error.h"
#include "tests/support/system_text.h"
#include "tests/support/temporary_directory.h"
#include "tests/support/working_directory.h"

namespace {

std::string Quoted(std::string const &text) {
  return "\"" + text + "\"";
}

std::string Thrown(auto const &action) {
  try {
    action();
  } catch (std::string const &text) {
    return text;
  }
  return "nothing was thrown";
}

class ProcessLaunch : public testing::Test {
 protected:
  // The command line of a program that tells what it was given and ends with status 3.
  std::string Launch(std::string const &milliseconds, std::string const &arguments) const {
    return Quoted(LAUNCHED_PROGRAM) + " " + Quoted(directory.Path("out")) + " " + milliseconds +
           " " + arguments;
  }
  std::string Told() const { return directory.Read("out"); }
  // A batch file in a directory with a blank, which leaves its working directory's word in "out".
  std::string WriteBatchFile(std::string const &firstLine = {}) const {
    std::filesystem::path path = directory.Write(
        std::string("my batch/run it") + kBatchExtension,
        firstLine + kUnechoed + "echo ran> " + Quoted(directory.Path("out")) + kLineEnd);
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    return path.make_preferred().string();
  }
  void ExpectOneBox(std::string const &text) const {
    ASSERT_EQ(application.boxes.size(), 1U);
    EXPECT_EQ(application.boxes[0].text, text);
    EXPECT_EQ(application.boxes[0].title, "WinExecAndWait");
    EXPECT_EQ(application.boxes[0].type, 0U);
  }

  TemporaryDirectory directory;
  RecordingApplication application;
};

TEST_F(ProcessLaunch, WaitsUntilTheProgramHasEnded) {
  WinExecAndWait(Launch("300", "").c_str(), 1);
  EXPECT_EQ(Told(), "0\n");
}

TEST_F(ProcessLaunch, TakesAProgramThatFailedForASuccess) {
  EXPECT_NO_THROW(WinExecAndWait(LAUNCHED_PROGRAM, 1));  // ends with status 3
  EXPECT_TRUE(application.boxes.empty());
}

TEST_F(ProcessLaunch, GivesArgumentsAsTheyAreQuoted) {
  WinExecAndWait(Launch("0", R"(a "b  c" d\"e "" f\)").c_str(), 1);
  EXPECT_EQ(Told(), "0\na\nb  c\nd\"e\n\nf\\\n");
}

TEST_F(ProcessLaunch, ShowsNoShellTheArguments) {
  std::string const file = directory.Path("made");
  WinExecAndWait(
      Launch("0", "$HOME * ; touch " + file + " | `touch " + file + "` > " + file + " & 'a b'")
          .c_str(),
      1);
  EXPECT_FALSE(directory.Has("made"));
  EXPECT_EQ(Told(), "0\n$HOME\n*\n;\ntouch\n" + file + "\n|\n`touch\n" + file + "`\n>\n" + file +
                        "\n&\n'a\nb'\n");
}

TEST_F(ProcessLaunch, HandsDownNothingThatIsOpen) {
  std::ifstream const open(directory.Write("open", "x"));
  ASSERT_TRUE(open.is_open());
  WinExecAndWait(Launch("0", "").c_str(), 1);
  EXPECT_EQ(Told(), "0\n");
}

TEST_F(ProcessLaunch, ShowsAndThrowsThatAProgramIsNotFound) {
  std::string const command = "quillaven-no-such-program -x \"a b\"";
  EXPECT_EQ(Thrown([&] { WinExecAndWait(command.c_str(), 1); }), "Cannot execute " + command);
  ExpectOneBox("Cannot execute " + command);
}

TEST_F(ProcessLaunch, ShowsAndThrowsThatAnEmptyCommandIsNoProgram) {
  EXPECT_EQ(Thrown([] { WinExecAndWait("", 1); }), "Cannot execute ");
  ExpectOneBox("Cannot execute ");
}

TEST_F(ProcessLaunch, LeaksNothingInManyLaunches) {
  std::string const command = Quoted(LAUNCHED_PROGRAM);
  WinExecAndWait(command.c_str(), 0);
  long const before = OpenHandles();
  ASSERT_GT(before, 0);
  for (int i = 0; i < kManyLaunches; ++i) WinExecAndWait(command.c_str(), 0);
  EXPECT_EQ(OpenHandles(), before);
}

TEST_F(ProcessLaunch, LeaksNothingInAThousandFailedLaunches) {
  EXPECT_THROW(WinExecAndWait("quillaven-no-such-program", 0), std::string);
  long const before = OpenHandles();
  ASSERT_GT(before, 0);
  for (int i = 0; i < 1000; ++i)
    EXPECT_THROW(WinExecAndWait("quillaven-no-such-program", 0), std::string);
  EXPECT_EQ(OpenHandles(), before);
}

// A system that keeps what it is asked to run, and answers as it is told to.
struct {
  std::string commandLine;
  unsigned short showState = 99;
  ProgramRun answer = ProgramRun::kEnded;
} g_asked;

ProgramRun KeepAndAnswer(char const *commandLine, unsigned short showState) {
  g_asked.commandLine = commandLine;
  g_asked.showState = showState;
  return g_asked.answer;
}

// No wait of this machine can be made to fail, so the system's answer is stood in for.
TEST_F(ProcessLaunch, ShowsAndThrowsThatAWaitFailed) {
  g_asked.answer = ProgramRun::kWaitFailed;
  ProgramRunner const runner{false, KeepAndAnswer};
  EXPECT_EQ(Thrown([&] { RunAndReport(runner, "sim.exe -n 3", 1); }),
            "Wait for single object failed sim.exe -n 3");
  ExpectOneBox("Wait for single object failed sim.exe -n 3");
}

TEST_F(ProcessLaunch, HandsOnTheCommandAsItStandsAndTheShowState) {
  g_asked.answer = ProgramRun::kEnded;
  RunAndReport({false, KeepAndAnswer}, "my sim.exe -n 3", 5);
  EXPECT_EQ(g_asked.commandLine, "my sim.exe -n 3");
  EXPECT_EQ(g_asked.showState, 5);
}

TEST_F(ProcessLaunch, RunsABatchFileWithABlankInQuotesAndHidden) {
  g_asked = {};
  RunBatchFile({false, KeepAndAnswer}, "C:\\My data\\prepare.bat");
  EXPECT_EQ(g_asked.commandLine, "\"C:\\My data\\prepare.bat\"");
  EXPECT_EQ(g_asked.showState, 0);
  RunBatchFile({false, KeepAndAnswer}, "C:\\data\\prepare.bat");
  EXPECT_EQ(g_asked.commandLine, "C:\\data\\prepare.bat");
}

TEST_F(ProcessLaunch, RunsABatchFileWithAnInterpreterLine) {
  ExecBatchFile(WriteBatchFile("#!/bin/sh\n").c_str());
  EXPECT_EQ(Told(), "ran\n");
}

TEST_F(ProcessLaunch, RunsABatchFileWithoutAnInterpreterLine) {
  ExecBatchFile(WriteBatchFile().c_str());
  EXPECT_EQ(directory.ReadText("out"), "ran\n");
  EXPECT_TRUE(application.boxes.empty());
}

TEST_F(ProcessLaunch, ShowsAndThrowsThatABatchFileIsMissing) {
  std::string const file = directory.Path("no such batch");
  EXPECT_EQ(Thrown([&] { ExecBatchFile(file.c_str()); }), "Cannot execute " + Quoted(file));
  ExpectOneBox("Cannot execute " + Quoted(file));
}

TEST_F(ProcessLaunch, DoesNotLookForABareBatchFileInTheWorkingDirectory) {
  std::filesystem::path const file = WriteBatchFile();
  WorkingDirectory const inside(file.parent_path());
  EXPECT_EQ(Thrown([] { ExecBatchFile("run it"); }), "Cannot execute \"run it\"");
  EXPECT_FALSE(directory.Has("out"));
  ExecBatchFile("./run it");
  EXPECT_EQ(Told(), "ran\n");
}

TEST_F(ProcessLaunch, ShowsAndThrowsThatAProgramWithABlankIsNotQuoted) {
  // Windows would find a file with an extension.
  std::string const file = std::filesystem::path(WriteBatchFile()).replace_extension().string();
  if (*kBatchExtension != '\0') std::filesystem::rename(file + kBatchExtension, file);
  EXPECT_EQ(Thrown([&] { WinExecAndWait((file + " x").c_str(), 1); }),
            "Cannot execute " + file + " x");
  EXPECT_FALSE(directory.Has("out"));
}

TEST_F(ProcessLaunch, OnTheOlderFamilyGoesThroughTheCommandProcessor) {
  ProgramRunner const older{true, KeepAndAnswer};
  g_asked = {};
  std::string const out = directory.Path("out");
  RunAndReport(older, ("echo one two> " + Quoted(out)).c_str(), 5);
  EXPECT_EQ(directory.ReadText("out"), "one two\n");
  EXPECT_NO_THROW(RunAndReport(older, "exit 3", 5));
  RunBatchFile(older, WriteBatchFile().c_str());
  EXPECT_EQ(directory.ReadText("out"), "ran\n");
  EXPECT_EQ(g_asked.showState, 99);  // the direct run was not asked
  EXPECT_TRUE(application.boxes.empty());
}

class Registration : public testing::Test {
 protected:
  void ExpectOneWarning(std::string const &text) const {
    ASSERT_EQ(application.boxes.size(), 1U);
    EXPECT_EQ(application.boxes[0].text, text);
    EXPECT_EQ(application.boxes[0].title, "QUILLAVEN RegSvr32");
    EXPECT_EQ(application.boxes[0].type, 48U);
  }
  RecordingApplication application;
};

TEST_F(Registration, SucceedsOnAResultOf0AndUnloadsTheLibrary) {
  EXPECT_TRUE(CallDllRegisterServer(COMPONENT_REGISTERING));
  EXPECT_TRUE(application.boxes.empty());
  EXPECT_EQ(LoadedModule(COMPONENT_REGISTERING), nullptr);
}

// A positive result is a failure too, though other programs take it for a success.
TEST_F(Registration, FailsOnAResultOf1) {
  EXPECT_FALSE(CallDllRegisterServer(COMPONENT_REFUSING));
  ExpectOneWarning(std::string("Registrating ") + COMPONENT_REFUSING + " failed.\nError:\n\t" +
                   FormatError(COMPONENT_REFUSING, 1) + " (1)");
  EXPECT_EQ(LoadedModule(COMPONENT_REFUSING), nullptr);
}

TEST_F(Registration, FailsOnANegativeResult) {
  EXPECT_FALSE(CallDllRegisterServer(COMPONENT_FAILING));
  ExpectOneWarning(std::string("Registrating ") + COMPONENT_FAILING + " failed.\nError:\n\t" +
                   FormatError(COMPONENT_FAILING, 0x80004005UL) + " (-2147467259)");
  EXPECT_EQ(LoadedModule(COMPONENT_FAILING), nullptr);
}

// The entry of a library that this one uses does not count.
TEST_F(Registration, FailsWithoutAnEntryAndUnloadsTheLibrary) {
  EXPECT_FALSE(CallDllRegisterServer(COMPONENT_WITHOUT_ENTRY));
  ExpectOneWarning(std::string(COMPONENT_WITHOUT_ENTRY) +
                   " was loaded, but the DllRegisterServer entry point was not found.");
  EXPECT_EQ(LoadedModule(COMPONENT_WITHOUT_ENTRY), nullptr);
}

TEST_F(Registration, ReportsAFileThatIsMissing) {
  TemporaryDirectory const directory;
  std::string const file = directory.Path("missing.dll");
  EXPECT_FALSE(CallDllRegisterServer(file.c_str()));
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(application.boxes[0].title, "QUILLAVEN RegSvr32");
  EXPECT_EQ(application.boxes[0].type, 0U);  // the file report has the plain style
  EXPECT_THAT(application.boxes[0].text, testing::StartsWith("File:\n\t" + file + "\nCurrent"));
  EXPECT_THAT(application.boxes[0].text,
              testing::EndsWith(FormatError(file.c_str(), kMissingLibraryError)));
}

TEST_F(Registration, ReportsAFileThatIsNoLibrary) {
  TemporaryDirectory const directory;
  std::string const file = directory.Write("text.dll", std::string(5000, 'x'));
  EXPECT_FALSE(CallDllRegisterServer(file.c_str()));
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_THAT(application.boxes[0].text,
              testing::EndsWith(FormatError(file.c_str(), kNoLibraryError)));
}

TEST_F(Registration, FindsABareNameInTheWorkingDirectory) {
  TemporaryDirectory const directory;
  std::filesystem::copy_file(COMPONENT_REGISTERING, directory.Path("Component.dll"));
  WorkingDirectory const inside(directory.Path());
  EXPECT_TRUE(CallDllRegisterServer("component.DLL"));
}

TEST_F(Registration, LeaksNothingInAThousandCalls) {
  EXPECT_TRUE(CallDllRegisterServer(COMPONENT_REGISTERING));
  long const before = OpenHandles();
  ASSERT_GT(before, 0);
  for (int i = 0; i < 1000; ++i) ASSERT_TRUE(CallDllRegisterServer(COMPONENT_REGISTERING));
  EXPECT_EQ(OpenHandles(), before);
  EXPECT_EQ(LoadedModule(COMPONENT_REGISTERING), nullptr);
}

}  // namespace
