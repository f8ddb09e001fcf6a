#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include <quillaven/foundation/errors.h>
#include <quillaven/foundation/errors_internal.h>
#include <quillaven/foundation/paths.h>

#include "tests/support/recording_application.h"
#include "tests/support/system_error.h"
#include "tests/support/temporary_directory.h"

namespace {

std::string WorkingDirectory() {
  return std::filesystem::current_path().string();
}

// How many line breaks the system's own text of an error has.
std::ptrdiff_t OwnLines(unsigned long error) {
  std::string const text = TextOfSystemError(error);
  return std::count(text.begin(), text.end(), '\n');
}

// The report on a file after the system's error of that number.
std::string Report(std::string const &file, unsigned long error) {
  return "File:\n\t" + file + "\nCurrent working directory:\n\t" + WorkingDirectory() +
         "\nError:\n\t" + TextOfSystemError(error);
}

std::string Thrown(void (*action)()) {
  try {
    action();
  } catch (std::string const &text) {
    return text;
  }
  return "nothing was thrown";
}

TEST(FormatError, GivesTheTextOfTheSystem) {
  for (unsigned long error : {kMissingFileError, kAccessError}) {
    EXPECT_FALSE(TextOfSystemError(error).empty());
    EXPECT_EQ(FormatError("a.txt", error), TextOfSystemError(error));
  }
}

TEST(FormatError, GivesTheNameWhereTheSystemHasNoText) {
  EXPECT_EQ(FormatError("a.txt", 99999), "a.txt");
  EXPECT_EQ(FormatError("a.txt", ~0UL), "a.txt");
}

TEST(FileReport, ShownInABoxHasSixLinesAndTheTitleInTheCaption) {
  RecordingApplication application;
  SetLastSystemError(kMissingFileError);
  FileError("a.txt", "A title");
  ASSERT_EQ(application.boxes.size(), 1U);
  RecordedBox const &box = application.boxes[0];
  EXPECT_EQ(box.text, Report("a.txt", kMissingFileError));
  EXPECT_EQ(std::count(box.text.begin(), box.text.end(), '\n'), 5 + OwnLines(kMissingFileError));
  EXPECT_EQ(box.title, "A title");
  EXPECT_EQ(box.type, 0U);
}

TEST(FileReport, ThrownHasSevenLinesAndTheTextAsTheFirst) {
  std::string const text = Thrown([] {
    SetLastSystemError(kAccessError);
    ThrowFileErrorException("b.txt", "A text");
  });
  EXPECT_EQ(text, "A text\n" + Report("b.txt", kAccessError));
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 6 + OwnLines(kAccessError));
}

TEST(FileReport, MissingAndUncreatableFilesHaveTheirTitles) {
  RecordingApplication application;
  SetLastSystemError(kMissingFileError);
  NoSuchFile("c.txt");
  SetLastSystemError(kAccessError);
  CannotCreateFile("d.txt");
  ASSERT_EQ(application.boxes.size(), 2U);
  EXPECT_EQ(application.boxes[0].title, "Error: Cannot open file");
  EXPECT_EQ(application.boxes[0].text, Report("c.txt", kMissingFileError));
  EXPECT_EQ(application.boxes[1].title, "Error: Cannot create file");
  EXPECT_EQ(application.boxes[1].text, Report("d.txt", kAccessError));
  EXPECT_EQ(Thrown([] {
              SetLastSystemError(kMissingFileError);
              ThrowNoSuchFileException("e.txt");
            }),
            "Error: Cannot open file\n" + Report("e.txt", kMissingFileError));
}

TEST(FileReport, TellsTheReasonOfAnOpenThatJustFailed) {
  RecordingApplication application;
  TemporaryDirectory const directory;
  std::ifstream file(directory.Path("missing"));
  ASSERT_FALSE(file);
  NoSuchFile("x");
  EXPECT_EQ(application.boxes.at(0).text, Report("x", kMissingFileError));
}

TEST(FileReport, ErrorThatWasClearedIsToldAsTheSystemTellsIt) {
  RecordingApplication application;
  SetLastSystemError(0);
  FileError("f.txt", "t");
  EXPECT_EQ(application.boxes.at(0).text, Report("f.txt", 0));
}

TEST(FileReport, WorkingDirectoryThatDoesNotFitLeavesItsLineEmpty) {
  RecordingApplication application;
  TemporaryDirectory directory;
  CPreserveDir const preserve;
  std::filesystem::path deep = directory.Path();
  for (int i = 0; i < 3; ++i) deep /= std::string(120, 'd');
  std::filesystem::create_directories(deep);
  std::filesystem::current_path(deep);
  FileError("g.txt", "t");
  std::filesystem::current_path("/");
  EXPECT_EQ(application.boxes.at(0).text.substr(0, 47),
            "File:\n\tg.txt\nCurrent working directory:\n\t\nError");
}

TEST(RunShellCommand, ReturnsTheResultOfACommandThatFailedWithoutAnyMessage) {
  RecordingApplication application;
  EXPECT_EQ(RunShellCommand("exit 0"), 0);
  EXPECT_NE(RunShellCommand("exit 3"), 0);
  EXPECT_TRUE(application.boxes.empty());
}

TEST(RunShellCommand, CommandThatCannotBeStartedIsBothShownAndThrown) {
  RecordingApplication application;
  auto const cannotStart = [](char const *) {
    errno = ENOMEM;
    return -1;
  };
  std::string const expected = std::string("copy a b: ") + std::strerror(ENOMEM);
  try {
    RunShellCommand("copy a b", cannotStart);
    FAIL() << "nothing was thrown";
  } catch (std::string const &text) {
    EXPECT_EQ(text, expected);
  }
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(application.boxes[0].text, expected);
  EXPECT_EQ(application.boxes[0].title, "WinExecAndWait");
}

TEST(QuoteIfBlank, QuotesOnlyWhatHasABlankAndIsNotQuotedAlready) {
  EXPECT_EQ(QuoteIfBlank("a b"), "\"a b\"");
  EXPECT_EQ(QuoteIfBlank("ab"), "ab");
  EXPECT_EQ(QuoteIfBlank(""), "");
  EXPECT_EQ(QuoteIfBlank("a\tb"), "a\tb");
  EXPECT_EQ(QuoteIfBlank("\"a b"), "\"a b");
  EXPECT_EQ(QuoteIfBlank("\"ab\""), "\"ab\"");
}

}  // namespace
