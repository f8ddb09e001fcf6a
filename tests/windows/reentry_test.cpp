// The link to a spreadsheet, used again from a box of itself.

#include <algorithm>
#include <chrono>
#include <sstream>
#include <string>
#include <thread>
#include <windows.h>

#include <gtest/gtest.h>

#include <quillaven/quillaven.h>

#include "tests/support/recording_application.h"
#include "tests/support/temporary_directory.h"
#include "tests/windows/start_dde_server.h"

namespace {

// Asks for a sheet while the box of a command that was refused is open.
class AskingApplication : public RecordingApplication {
 public:
  int DoMessageBox(char const *text, char const *title, unsigned int type,
                   unsigned int helpId) override {
    isOpen = XLLINK::is_sheet_open("Sheet1");
    return RecordingApplication::DoMessageBox(text, title, type, helpId);
  }
  bool isOpen = false;
};

std::ptrdiff_t LinesThatBegin(std::string const &log, std::string const &begin) {
  std::istringstream lines(log);
  std::ptrdiff_t count = 0;
  for (std::string line; std::getline(lines, line);) count += line.starts_with(begin) ? 1 : 0;
  return count;
}

// Looks until it is so, for ten seconds at most.
template <class Condition>
void WaitFor(Condition const &holds) {
  for (int tries = 0; tries < 1000 && !holds(); ++tries)
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
}

TEST(SpreadsheetLink, UsedFromABoxOfItselfEndsEveryConversation) {
  TemporaryDirectory const directory;
  HANDLE const server = StartDdeServer(directory.Path("log"));
  WaitFor([&] { return directory.Read("log") == "ready\n"; });
  AskingApplication application;
  EXPECT_TRUE(XLLINK::excel_command("[REFUSE]"));
  EXPECT_TRUE(application.isOpen);
  EXPECT_EQ(application.boxes.size(), 1U);
  WaitFor([&] { return LinesThatBegin(directory.Read("log"), "disconnect") == 2; });
  std::string const log = directory.Read("log");
  EXPECT_EQ(LinesThatBegin(log, "connect"), 2) << log;
  EXPECT_EQ(LinesThatBegin(log, "disconnect"), 2) << log;
  XLLINK::excel_command("[QUIT()]");
  ExpectEndOf(server);
}

}  // namespace
