#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <quillaven/spreadsheet/transport.h>
#include <quillaven/spreadsheet/xllink.h>

#include "tests/support/recording_application.h"

namespace {

using Lines = std::vector<std::string>;

std::string Bytes(void const *data, unsigned long bytes) {
  return {static_cast<char const *>(data), bytes};
}

// Keeps what it is asked to do, and does as it is told to.
class RecordingTransport : public CSpreadsheetTransport {
 public:
  RecordingTransport() : m_before(SetSpreadsheetTransport(this)) {}
  ~RecordingTransport() override { SetSpreadsheetTransport(m_before); }
  RecordingTransport(RecordingTransport const &) = delete;
  RecordingTransport &operator=(RecordingTransport const &) = delete;

  bool Start() override {
    calls.emplace_back("start");
    return starts;
  }
  bool Connect(char const *service, char const *topic) override {
    calls.push_back(std::string("connect ") + service + "|" + topic);
    return ++tries >= connectsAt;
  }
  bool Execute(void const *data, unsigned long bytes, unsigned int timeoutMs) override {
    calls.push_back("execute " + Bytes(data, bytes) + " " + std::to_string(timeoutMs));
    return transacts;
  }
  bool Poke(char const *item, void const *data, unsigned long bytes,
            unsigned int timeoutMs) override {
    calls.push_back(std::string("poke ") + item + "=" + Bytes(data, bytes) + " " +
                    std::to_string(timeoutMs));
    return transacts;
  }
  void Disconnect() override { calls.emplace_back("disconnect"); }
  void Stop() override { calls.emplace_back("stop"); }

  bool starts = true;
  int connectsAt = 1;  // the try that succeeds
  bool transacts = true;
  int tries = 0;
  Lines calls;

 private:
  CSpreadsheetTransport *m_before;
};

constexpr int kNever = 1000;

// A call of each try that fails, between the start and the stop.
Lines TenTries(std::string const &topic) {
  Lines lines{"start"};
  lines.insert(lines.end(), 10, "connect EXCEL|" + topic);
  lines.emplace_back("stop");
  return lines;
}

class SpreadsheetLink : public testing::Test {
 protected:
  void ExpectOneBox(std::string const &text, std::string const &title) const {
    ASSERT_EQ(application.boxes.size(), 1U);
    EXPECT_EQ(application.boxes[0].text, text);
    EXPECT_EQ(application.boxes[0].title, title);
    EXPECT_EQ(application.boxes[0].type, 16U);
  }

  RecordingApplication application;
  RecordingTransport transport;
};

TEST_F(SpreadsheetLink, ACommandGoesToTheSystemTopicWithItsZeroByte) {
  EXPECT_TRUE(XLLINK::excel_command("[BEEP]"));
  EXPECT_EQ(transport.calls,
            (Lines{"start", "connect EXCEL|system", std::string("execute [BEEP]\0 10000", 21),
                   "disconnect", "stop"}));
  EXPECT_TRUE(application.boxes.empty());
}

TEST_F(SpreadsheetLink, DataGoToTheCellOfTheSheetWithTheirZeroByte) {
  EXPECT_TRUE(XLLINK::excel_data("Sheet1", "R2C3", "0.75"));
  EXPECT_EQ(transport.calls,
            (Lines{"start", "connect EXCEL|Sheet1", std::string("poke R2C3=0.75\0 10000", 21),
                   "disconnect", "stop"}));
  EXPECT_TRUE(application.boxes.empty());
}

TEST_F(SpreadsheetLink, AnOpenSheetIsKnownByTheConnectAloneWhichEndsWithTheLink) {
  EXPECT_TRUE(XLLINK::is_sheet_open("Sheet1"));
  EXPECT_EQ(transport.calls, (Lines{"start", "connect EXCEL|Sheet1", "stop"}));
  EXPECT_TRUE(application.boxes.empty());
}

TEST_F(SpreadsheetLink, TextsAreSentAsTheyStandHoweverLong) {
  std::string const text = "\xE9\t\"%s\"\r\n" + std::string(100000, 'x');
  EXPECT_TRUE(XLLINK::excel_data("Sheet1", "", text.c_str()));
  EXPECT_EQ(transport.calls.at(2), "poke =" + text + std::string(1, '\0') + " 10000");
  transport.calls.clear();
  EXPECT_TRUE(XLLINK::excel_command(text.c_str()));
  EXPECT_EQ(transport.calls.at(2), "execute " + text + std::string(1, '\0') + " 10000");
}

TEST_F(SpreadsheetLink, AnEmptyTextIsSentAsItsZeroByte) {
  EXPECT_TRUE(XLLINK::excel_data("Sheet1", "R1C1", ""));
  EXPECT_EQ(transport.calls.at(2), std::string("poke R1C1=\0 10000", 17));
}

TEST_F(SpreadsheetLink, ALinkThatDoesNotStartIsAFailureOfAllThree) {
  transport.starts = false;
  std::string const text = "Can't initialize communication with DDE Manager";
  EXPECT_FALSE(XLLINK::excel_command("[BEEP]"));
  ExpectOneBox(text, "ERROR");
  application.boxes.clear();
  EXPECT_FALSE(XLLINK::excel_data("Sheet1", "R1C1", "1"));
  ExpectOneBox(text, "ERROR");
  application.boxes.clear();
  EXPECT_FALSE(XLLINK::is_sheet_open("Sheet1"));
  ExpectOneBox(text, "ERROR");
  EXPECT_EQ(transport.calls, (Lines{"start", "start", "start"}));
}

// That true covers a failed connect looks odd and is meant: callers know the operation so.
TEST_F(SpreadsheetLink, ACommandWithoutASpreadsheetShowsItsBoxAndGivesTrue) {
  transport.connectsAt = kNever;
  EXPECT_TRUE(XLLINK::excel_command("[BEEP]"));
  ExpectOneBox("Can't connect to Excel", "ERROR");
  EXPECT_EQ(transport.calls, TenTries("system"));
}

TEST_F(SpreadsheetLink, DataWithoutASpreadsheetShowTheirBoxAndGiveTrue) {
  transport.connectsAt = kNever;
  EXPECT_TRUE(XLLINK::excel_data("A %s sheet", "R1C1", "1"));
  ExpectOneBox("Can't connect to Excel sheet : A %s sheet", "ERROR");
  EXPECT_EQ(transport.calls, TenTries("A %s sheet"));
}

TEST_F(SpreadsheetLink, ASheetThatIsNotOpenShowsNoBox) {
  transport.connectsAt = kNever;
  EXPECT_FALSE(XLLINK::is_sheet_open("Sheet1"));
  EXPECT_TRUE(application.boxes.empty());
  EXPECT_EQ(transport.calls, TenTries("Sheet1"));
}

TEST_F(SpreadsheetLink, TheTenthTryStillCounts) {
  transport.connectsAt = 10;
  EXPECT_TRUE(XLLINK::is_sheet_open("Sheet1"));
  EXPECT_EQ(transport.tries, 10);
}

TEST_F(SpreadsheetLink, TheFirstConversationEndsTheTries) {
  transport.connectsAt = 4;
  EXPECT_TRUE(XLLINK::excel_data("Sheet1", "R1C1", "1"));
  EXPECT_EQ(transport.tries, 4);
  EXPECT_TRUE(application.boxes.empty());
}

// As with a failed connect, true covers a failed transaction.
TEST_F(SpreadsheetLink, AFailedTransactionShowsItsBoxDisconnectsAndGivesTrue) {
  transport.transacts = false;
  EXPECT_TRUE(XLLINK::excel_command("[BEEP]"));
  ExpectOneBox("DdeClientTransaction failure", "Link to Excel");
  EXPECT_EQ(transport.calls.at(3), "disconnect");
  EXPECT_EQ(transport.calls.at(4), "stop");
  application.boxes.clear();
  transport.calls.clear();
  EXPECT_TRUE(XLLINK::excel_data("Sheet1", "R1C1", "1"));
  ExpectOneBox("DdeClientTransaction failure", "Link to Excel");
  EXPECT_EQ(transport.calls.at(3), "disconnect");
  EXPECT_EQ(transport.calls.at(4), "stop");
}

// Keeps its boxes among the calls of the transport.
class ApplicationInOrder : public RecordingApplication {
 public:
  explicit ApplicationInOrder(Lines &calls) : m_calls(calls) {}
  int DoMessageBox(char const *text, char const * /*title*/, unsigned int /*type*/,
                   unsigned int /*helpId*/) override {
    m_calls.push_back(std::string("box ") + text);
    return 1;
  }

 private:
  Lines &m_calls;
};

TEST_F(SpreadsheetLink, AFailureIsToldBeforeTheLinkIsClosed) {
  ApplicationInOrder const inOrder(transport.calls);
  transport.transacts = false;
  EXPECT_TRUE(XLLINK::excel_command("[BEEP]"));
  Lines const behind{"box DdeClientTransaction failure", "disconnect", "stop"};
  EXPECT_EQ(Lines(transport.calls.end() - 3, transport.calls.end()), behind);
  EXPECT_TRUE(XLLINK::excel_data("Sheet1", "R1C1", "1"));
  EXPECT_EQ(Lines(transport.calls.end() - 3, transport.calls.end()), behind);

  transport.connectsAt = kNever;
  EXPECT_TRUE(XLLINK::excel_command("[BEEP]"));
  EXPECT_EQ(Lines(transport.calls.end() - 2, transport.calls.end()),
            (Lines{"box Can't connect to Excel", "stop"}));
  EXPECT_TRUE(XLLINK::excel_data("Sheet1", "R1C1", "1"));
  EXPECT_EQ(Lines(transport.calls.end() - 2, transport.calls.end()),
            (Lines{"box Can't connect to Excel sheet : Sheet1", "stop"}));
}

class ThrowingTransport : public RecordingTransport {
 public:
  bool Execute(void const * /*data*/, unsigned long /*bytes*/,
               unsigned int /*timeoutMs*/) override {
    throw std::string("no wire");
  }
  bool Poke(char const * /*item*/, void const * /*data*/, unsigned long /*bytes*/,
            unsigned int /*timeoutMs*/) override {
    throw std::string("no wire");
  }
};

TEST(SpreadsheetLinkThatThrows, IsClosedAllTheSame) {
  RecordingApplication application;
  ThrowingTransport transport;
  EXPECT_THROW(XLLINK::excel_command("[BEEP]"), std::string);
  EXPECT_EQ(transport.calls, (Lines{"start", "connect EXCEL|system", "disconnect", "stop"}));
  transport.calls.clear();
  EXPECT_THROW(XLLINK::excel_data("Sheet1", "R1C1", "1"), std::string);
  EXPECT_EQ(transport.calls, (Lines{"start", "connect EXCEL|Sheet1", "disconnect", "stop"}));
  EXPECT_TRUE(application.boxes.empty());
}

TEST_F(SpreadsheetLink, NamesOf255CharactersPass) {
  std::string const name(255, 'n');
  EXPECT_TRUE(XLLINK::is_sheet_open(name.c_str()));
  EXPECT_TRUE(XLLINK::excel_data(name.c_str(), name.c_str(), "1"));
  EXPECT_TRUE(application.boxes.empty());
  EXPECT_EQ(transport.tries, 2);
}

TEST_F(SpreadsheetLink, ASheetNameOf256CharactersStartsNothing) {
  std::string const name(256, 'n');
  EXPECT_FALSE(XLLINK::is_sheet_open(name.c_str()));
  ExpectOneBox("sheet-name buffer to big (>255)", "Link to Excel");
  application.boxes.clear();
  EXPECT_FALSE(XLLINK::excel_data(name.c_str(), "R1C1", "1"));
  ExpectOneBox("sheet-name buffer to big (>255)", "Link to Excel");
  EXPECT_TRUE(transport.calls.empty());
}

TEST_F(SpreadsheetLink, ACellNameOf256CharactersStartsNothing) {
  EXPECT_FALSE(XLLINK::excel_data("Sheet1", std::string(256, 'c').c_str(), "1"));
  ExpectOneBox("cell-name buffer to big (>255)", "Link to Excel");
  EXPECT_TRUE(transport.calls.empty());
}

TEST_F(SpreadsheetLink, OfTwoNamesTooLongOnlyTheSheetIsTold) {
  std::string const name(256, 'n');
  EXPECT_FALSE(XLLINK::excel_data(name.c_str(), name.c_str(), "1"));
  ExpectOneBox("sheet-name buffer to big (>255)", "Link to Excel");
}

TEST_F(SpreadsheetLink, AnEmptySheetNameGoesOnToTheConnect) {
  EXPECT_TRUE(XLLINK::is_sheet_open(""));
  EXPECT_EQ(transport.calls.at(1), "connect EXCEL|");
}

TEST_F(SpreadsheetLink, KeepsNothingOpenBetweenCalls) {
  EXPECT_TRUE(XLLINK::excel_data("Sheet1", "R1C1", "1"));
  Lines const once = transport.calls;
  EXPECT_TRUE(XLLINK::excel_data("Sheet1", "R1C1", "1"));
  Lines twice = once;
  twice.insert(twice.end(), once.begin(), once.end());
  EXPECT_EQ(transport.calls, twice);
}

// The built-in transport with no spreadsheet running.
TEST(SpreadsheetLinkOfThisMachine, TellsThatNoSpreadsheetRuns) {
  RecordingApplication application;
  EXPECT_FALSE(XLLINK::is_sheet_open("quillaven-no-such-sheet"));
  EXPECT_TRUE(application.boxes.empty());
  EXPECT_TRUE(XLLINK::excel_data("quillaven-no-such-sheet", "R1C1", "1"));
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(application.boxes[0].text, "Can't connect to Excel sheet : quillaven-no-such-sheet");
  EXPECT_TRUE(XLLINK::excel_command("[BEEP]"));
  ASSERT_EQ(application.boxes.size(), 2U);
  EXPECT_EQ(application.boxes[1].text, "Can't connect to Excel");
}

}  // namespace
