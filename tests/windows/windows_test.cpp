// What the library takes from Windows, seen through the DLL that is installed.

#include <chrono>
#include <filesystem>
#include <new>
#include <string>
#include <thread>
#include <vector>
#include <windows.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <quillaven/quillaven.h>

#include "tests/support/recording_application.h"
#include "tests/support/temporary_directory.h"
#include "tests/windows/start_dde_server.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

std::string Quoted(std::string const &text) {
  return "\"" + text + "\"";
}

// ---- Texts of errors -----------------------------------------------------------------------------

TEST(ErrorTexts, TakeTheNameWhereTheSystemHasAnInsert) {
  EXPECT_THAT(FormatError("some.dll", ERROR_BAD_EXE_FORMAT), HasSubstr("some.dll"));
  EXPECT_THAT(FormatError("some.dll", ERROR_BAD_EXE_FORMAT), EndsWith("\r\n"));
}

TEST(ErrorTexts, WithMoreInsertsThanTheNameAreToldAllTheSame) {
  EXPECT_THAT(FormatError("drive", ERROR_WRONG_DISK), EndsWith("\r\n"));
}

TEST(ErrorTexts, AreTheNameWhereTheSystemHasNone) {
  EXPECT_EQ(FormatError("a.txt", 0x2FFFFFFF), "a.txt");
}

// ---- Versions ------------------------------------------------------------------------------------

TEST(VersionBlocks, OfTheLibraryTellItsVersion) {
  CModuleVersion version;
  ASSERT_TRUE(version.GetFileVersionInfoA("QuillavenLib.dll"));
  EXPECT_EQ(version.dwSignature, 0xFEEF04BDU);
  int major = -1;
  int minor = -1;
  ASSERT_EQ(std::sscanf(QUILLAVEN_VERSION, "%d.%d", &major, &minor), 2);
  EXPECT_EQ(version.dwFileVersionMS, static_cast<DWORD>(major << 16 | minor));
  EXPECT_EQ(version.dwFileType, static_cast<DWORD>(VFT_DLL));
  EXPECT_EQ(version.GetValue("FileVersion"), QUILLAVEN_VERSION);
  EXPECT_EQ(version.GetValue("ProductName"), "QuillavenLib");
  EXPECT_EQ(version.GetValue("OriginalFilename"), "QuillavenLib.dll");
  EXPECT_EQ(version.GetValue("NoSuchKey"), "");
}

TEST(VersionBlocks, OfAProgramWithoutOneAreNotThere) {
  CModuleVersion version;
  EXPECT_FALSE(version.GetFileVersionInfoA(nullptr));
  EXPECT_EQ(version.GetValue("FileVersion"), "");
}

TEST(VersionEntries, OfLibrariesThatHaveOneAreAsked) {
  HMODULE const shell = ::LoadLibraryA("shell32.dll");
  ASSERT_NE(shell, nullptr);
  _DllVersionInfo info{};
  EXPECT_TRUE(CModuleVersion::DllGetVersion("shell32.dll", info));
  EXPECT_GT(info.dwMajorVersion, 0U);
  EXPECT_FALSE(CModuleVersion::DllGetVersion("kernel32.dll", info));
  ::FreeLibrary(shell);
}

// ---- Programs ------------------------------------------------------------------------------------

class Programs : public testing::Test {
 protected:
  std::string WriteBatchFile() const {
    return directory.Write("my batch\\run it.bat",
                           "@echo ran> " + Quoted(directory.Path("out")) + "\r\n");
  }
  TemporaryDirectory directory;
  RecordingApplication application;
};

TEST_F(Programs, ABatchFileWithABlankInItsNameIsRunToItsEnd) {
  ExecBatchFile(WriteBatchFile().c_str());
  EXPECT_EQ(directory.ReadText("out"), "ran\n");
  EXPECT_TRUE(application.boxes.empty());
}

TEST_F(Programs, ABareNameIsFoundAlongThePath) {
  WinExecAndWait(("cmd /c mkdir " + Quoted(directory.Path("made"))).c_str(), SW_HIDE);
  EXPECT_TRUE(directory.Has("made"));
}

TEST_F(Programs, AFailureToStartIsShownAndThrown) {
  try {
    WinExecAndWait("quillaven-no-such-program.exe -x", SW_SHOW);
    FAIL() << "nothing was thrown";
  } catch (std::string const &text) {
    EXPECT_EQ(text, "Cannot execute quillaven-no-such-program.exe -x");
  }
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(application.boxes[0].title, "WinExecAndWait");
}

TEST_F(Programs, InheritNoHandleEvenIfItMayBeInherited) {
  SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  std::vector<HANDLE> handles(2000);
  for (HANDLE &handle : handles) handle = ::CreateEventA(&inheritable, FALSE, FALSE, nullptr);
  ASSERT_GT(reinterpret_cast<std::uintptr_t>(handles.back()), 4000U);
  WinExecAndWait((Quoted(LAUNCHED_PROGRAM) + " " + Quoted(directory.Path("out")) + " 0").c_str(),
                 SW_HIDE);
  for (HANDLE const handle : handles) ::CloseHandle(handle);
  EXPECT_EQ(directory.Read("out"), "0\n");
}

TEST(Components, RegisterThemselves) {
  RecordingApplication application;
  EXPECT_TRUE(CallDllRegisterServer(COMPONENT_REGISTERING));
  EXPECT_TRUE(application.boxes.empty());
}

// ---- Memory --------------------------------------------------------------------------------------

TEST(AllocationHandler, OfTheLibraryServesTheProgramToo) {
  RecordingApplication application;
  constexpr std::size_t kMoreThanThereIs = std::size_t{1} << 50;
  EXPECT_THROW(::operator delete(::operator new(kMoreThanThereIs)), std::bad_alloc);
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(application.boxes[0].text, "Out of memory\nClose some applications and try again");
}

TEST(AllocationHandler, OfTheProgramServesTheLibraryToo) {
  static int calls;
  calls = 0;
  std::new_handler const before = std::set_new_handler([] {
    ++calls;
    throw std::bad_alloc();
  });
  CMultiScaleFloatMatrix raster;
  EXPECT_THROW(raster.Redim(10000000, 10000000, 1), std::bad_alloc);  // 400 terabytes
  std::set_new_handler(before);
  EXPECT_EQ(calls, 1);
}

// ---- The spreadsheet -----------------------------------------------------------------------------

int CountOf(std::string const &part, std::string const &text) {
  int count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
    ++count;
  return count;
}

std::string Repeated(int times, std::string const &text) {
  std::string all;
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

// A spreadsheet that runs as long as the object lives.
class Spreadsheet {
 public:
  Spreadsheet() : m_process(StartDdeServer(m_directory.Path("log"))) {
    for (int tries = 0; tries < 1000 && m_directory.Read("log").empty(); ++tries)
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(m_directory.Read("log"), "ready\n");
  }
  ~Spreadsheet() {
    XLLINK::excel_command("[QUIT()]");
    ExpectEndOf(m_process);
  }
  Spreadsheet(Spreadsheet const &) = delete;
  Spreadsheet &operator=(Spreadsheet const &) = delete;

  /// What has happened, once so many conversations have ended: their ends come in their time.
  std::string Log(int disconnects) const {
    std::string log;
    for (int tries = 0; tries < 500; ++tries) {
      log = m_directory.Read("log").substr(6);
      if (CountOf("disconnect\n", log) >= disconnects) break;
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return log;
  }

 private:
  TemporaryDirectory m_directory;
  HANDLE m_process;
};

// An instance that does not start cannot be had from this system: the tests of the link itself stand in
// for it.
class SpreadsheetOnThisMachine : public testing::Test {
 protected:
  void ExpectOneBox(std::string const &text, std::string const &title) const {
    ASSERT_EQ(application.boxes.size(), 1U);
    EXPECT_EQ(application.boxes[0].text, text);
    EXPECT_EQ(application.boxes[0].title, title);
    EXPECT_EQ(application.boxes[0].type, 16U);
  }
  RecordingApplication application;
};

TEST_F(SpreadsheetOnThisMachine, GetsACommandInTheSystemTopicWithItsZeroByte) {
  Spreadsheet const spreadsheet;
  EXPECT_TRUE(XLLINK::excel_command("[OPEN(\"Caf\xE9\")]"));
  EXPECT_EQ(spreadsheet.Log(1),
            "connect EXCEL|system\nexecute system [OPEN(\"Caf\xE9\")]<0>\ndisconnect\n");
  EXPECT_TRUE(application.boxes.empty());
}

TEST_F(SpreadsheetOnThisMachine, GetsDataInTheCellOfTheSheetWithTheirZeroByte) {
  Spreadsheet const spreadsheet;
  EXPECT_TRUE(XLLINK::excel_data("Sheet1", "R1C2", "1.5\t2\r\n\xE9t\xE9"));
  EXPECT_EQ(spreadsheet.Log(1),
            "connect EXCEL|Sheet1\npoke Sheet1!R1C2 1 1.5\t2\r\n\xE9t\xE9<0>\ndisconnect\n");
  EXPECT_TRUE(application.boxes.empty());
}

TEST_F(SpreadsheetOnThisMachine, GetsLongDataWhole) {
  Spreadsheet const spreadsheet;
  std::string const data(100000, 'x');
  EXPECT_TRUE(XLLINK::excel_data("Sheet1", "R1C1", data.c_str()));
  EXPECT_EQ(spreadsheet.Log(1),
            "connect EXCEL|Sheet1\npoke Sheet1!R1C1 1 " + data + "<0>\ndisconnect\n");
}

TEST_F(SpreadsheetOnThisMachine, IsAskedForAnOpenSheetByAConnectAlone) {
  Spreadsheet const spreadsheet;
  EXPECT_TRUE(XLLINK::is_sheet_open("Sheet1"));
  EXPECT_TRUE(XLLINK::is_sheet_open("SHEET1"));  // DDE names have no case
  EXPECT_FALSE(XLLINK::is_sheet_open("Sheet2"));
  EXPECT_TRUE(application.boxes.empty());
  EXPECT_EQ(spreadsheet.Log(2), Repeated(2, "connect EXCEL|Sheet1\ndisconnect\n") +
                                    Repeated(10, "connect EXCEL|Sheet2 unknown\n"));
}

// In DDE a topic that is null stands for any topic, and an empty name may not become one.
TEST_F(SpreadsheetOnThisMachine, HasNoSheetWithoutAName) {
  Spreadsheet const spreadsheet;
  EXPECT_FALSE(XLLINK::is_sheet_open(""));
  EXPECT_TRUE(application.boxes.empty());
  EXPECT_TRUE(XLLINK::excel_data("", "R1C1", "1"));
  ExpectOneBox("Can't connect to Excel sheet : ", "ERROR");
  EXPECT_THAT(spreadsheet.Log(0), Not(HasSubstr("wildcard")));
  EXPECT_THAT(spreadsheet.Log(0), Not(HasSubstr("poke")));
}

TEST_F(SpreadsheetOnThisMachine, TakesNamesOf255Characters) {
  Spreadsheet const spreadsheet;
  std::string const sheet(255, 'S');
  std::string const cell(255, 'C');
  EXPECT_TRUE(XLLINK::is_sheet_open(sheet.c_str()));
  EXPECT_TRUE(XLLINK::excel_data(sheet.c_str(), cell.c_str(), "1"));
  EXPECT_TRUE(application.boxes.empty());
  std::string const connect = "connect EXCEL|" + sheet + "\n";
  EXPECT_EQ(spreadsheet.Log(2), connect + "disconnect\n" + connect + "poke " + sheet + "!" + cell +
                                    " 1 1<0>\ndisconnect\n");
}

// DDE pokes into nothing without a name.
TEST_F(SpreadsheetOnThisMachine, GetsNoDataForACellWithoutAName) {
  Spreadsheet const spreadsheet;
  EXPECT_TRUE(XLLINK::excel_data("Sheet1", "", "1"));
  ExpectOneBox("DdeClientTransaction failure", "Link to Excel");
  EXPECT_EQ(spreadsheet.Log(1), "connect EXCEL|Sheet1\ndisconnect\n");
}

TEST_F(SpreadsheetOnThisMachine, WithoutThatSheetIsToldInABoxAfterTenTries) {
  Spreadsheet const spreadsheet;
  EXPECT_TRUE(XLLINK::excel_data("Sheet2", "R1C1", "1"));
  ExpectOneBox("Can't connect to Excel sheet : Sheet2", "ERROR");
  EXPECT_EQ(spreadsheet.Log(0), Repeated(10, "connect EXCEL|Sheet2 unknown\n"));
}

TEST_F(SpreadsheetOnThisMachine, ThatRefusesACommandIsToldInABox) {
  Spreadsheet const spreadsheet;
  EXPECT_TRUE(XLLINK::excel_command("[REFUSE]"));
  ExpectOneBox("DdeClientTransaction failure", "Link to Excel");
  EXPECT_EQ(spreadsheet.Log(1), "connect EXCEL|system\nexecute system [REFUSE]<0>\ndisconnect\n");
}

// Wine takes every answer to data for a yes.
TEST_F(SpreadsheetOnThisMachine, ThatRefusesDataIsToldInABoxByWindows) {
  Spreadsheet const spreadsheet;
  bool const wine =
      ::GetProcAddress(::GetModuleHandleA("ntdll.dll"), "wine_get_version") != nullptr;
  EXPECT_TRUE(XLLINK::excel_data("Sheet1", "REFUSE", "1"));
  if (!wine) ExpectOneBox("DdeClientTransaction failure", "Link to Excel");
  EXPECT_EQ(application.boxes.size(), wine ? 0U : 1U);
  EXPECT_EQ(spreadsheet.Log(1), "connect EXCEL|Sheet1\npoke Sheet1!REFUSE 1 1<0>\ndisconnect\n");
}

// Data wait as long: both go the same way through the client.
TEST_F(SpreadsheetOnThisMachine, ThatDoesNotAnswerIsToldInABoxAfterTenSeconds) {
  Spreadsheet const spreadsheet;
  auto const start = std::chrono::steady_clock::now();
  EXPECT_TRUE(XLLINK::excel_command("[WAIT]"));
  std::chrono::duration<double> const seconds = std::chrono::steady_clock::now() - start;
  ExpectOneBox("DdeClientTransaction failure", "Link to Excel");
  EXPECT_GE(seconds.count(), 9.9);
  EXPECT_LT(seconds.count(), 15);
  EXPECT_EQ(spreadsheet.Log(1), "connect EXCEL|system\nexecute system [WAIT]<0>\ndisconnect\n");
}

TEST_F(SpreadsheetOnThisMachine, ThatDoesNotRunIsToldInABox) {
  EXPECT_TRUE(XLLINK::excel_command("[BEEP]"));
  ExpectOneBox("Can't connect to Excel", "ERROR");
  EXPECT_FALSE(XLLINK::is_sheet_open("Sheet1"));
  EXPECT_EQ(application.boxes.size(), 1U);
}

TEST_F(SpreadsheetOnThisMachine, ThatDoesNotRunGetsNoData) {
  EXPECT_TRUE(XLLINK::excel_data("Sheet1", "R1C1", "1"));
  ExpectOneBox("Can't connect to Excel sheet : Sheet1", "ERROR");
}

}  // namespace
