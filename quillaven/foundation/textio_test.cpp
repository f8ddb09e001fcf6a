#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <quillaven/foundation/textio.h>
#include <quillaven/platform/files.h>

#include "tests/support/recording_application.h"
#include "tests/support/temporary_directory.h"

namespace {

class TextIo : public testing::Test {
 protected:
  /// Opens a text file of these bytes.
  void Open(std::string const &bytes) {
    ASSERT_TRUE(
        file.Open(directory.Write("a.txt", bytes).c_str(), CFile::modeRead | CFile::typeText));
  }
  /// What is left to read.
  std::string Rest() {
    std::string rest;
    for (char byte = 0; file.Read(&byte, 1) == 1;) rest += byte;
    return rest;
  }
  TemporaryDirectory directory;
  RecordingApplication application;
  CStdioFile file;
};

// A buffer of `size` bytes of 'z', with one more on each side that must stay.
struct Guarded {
  explicit Guarded(int size) : bytes(static_cast<std::size_t>(size) + 2, 'z') {}
  char *Begin() { return bytes.data() + 1; }
  bool GuardsStand() const { return bytes.front() == 'z' && bytes.back() == 'z'; }
  std::string Inside() const { return bytes.substr(1, bytes.size() - 2); }
  std::string bytes;
};

TEST_F(TextIo, LineThatFillsTheBufferButForTheEndComesBackWhole) {
  Open("123456789\nnext\n");
  Guarded buffer(10);
  EXPECT_TRUE(GetLine(buffer.Begin(), 10, file));
  EXPECT_EQ(buffer.Inside(), std::string("123456789\0", 10));
  EXPECT_TRUE(buffer.GuardsStand());
  EXPECT_EQ(Rest(), "next\n");
}

TEST_F(TextIo, LongerLineEndsInTheDigitZeroAndIsNotTerminated) {
  for (std::string const &line : {std::string("123456789A"), std::string("123456789ABCDEF")}) {
    Open(line + "\nnext\n");
    Guarded buffer(10);
    EXPECT_TRUE(GetLine(buffer.Begin(), 10, file));
    EXPECT_EQ(buffer.Inside(), "1234567890");  // the last one is the mark, whatever stood there
    EXPECT_TRUE(buffer.GuardsStand());
    EXPECT_EQ(Rest(), "next\n");
  }
}

TEST_F(TextIo, EndOfFileGivesFalseAndAnEmptyText) {
  Open("");
  Guarded buffer(4);
  EXPECT_FALSE(GetLine(buffer.Begin(), 4, file));
  EXPECT_EQ(buffer.Inside(), std::string("\0zzz", 4));
}

TEST_F(TextIo, LastLineWithoutALineFeedComesBackCompleteWithFalse) {
  Open("one\nlast");
  char buffer[10];
  EXPECT_TRUE(GetLine(buffer, 10, file));
  EXPECT_FALSE(GetLine(buffer, 10, file));
  EXPECT_STREQ(buffer, "last");
}

TEST_F(TextIo, BlankLineGivesTrueAndAnEmptyText) {
  Open("\n\nx\n");
  char buffer[10] = "full";
  EXPECT_TRUE(GetLine(buffer, 10, file));
  EXPECT_STREQ(buffer, "");
  EXPECT_TRUE(GetLine(buffer, 10, file));
  EXPECT_STREQ(buffer, "");
  EXPECT_EQ(Rest(), "x\n");
}

TEST_F(TextIo, CarriageReturnsBeforeLineFeedsGoAndOthersStay) {
  Open("a\r\nb\rc\n");
  char buffer[10];
  EXPECT_TRUE(GetLine(buffer, 10, file));
  EXPECT_STREQ(buffer, "a");
  EXPECT_TRUE(GetLine(buffer, 10, file));
  EXPECT_STREQ(buffer, "b\rc");
}

TEST_F(TextIo, SmallestBuffersHoldAnEmptyTextOrTheMark) {
  Open("\nx\nxy\n");
  Guarded one(1);
  EXPECT_TRUE(GetLine(one.Begin(), 1, file));
  EXPECT_EQ(one.Inside(), std::string(1, '\0'));
  EXPECT_TRUE(GetLine(one.Begin(), 1, file));
  EXPECT_EQ(one.Inside(), "0");
  for (int size : {0, -1, std::numeric_limits<int>::min()}) {
    Open("xy\nnext\n");
    Guarded none(0);
    EXPECT_TRUE(GetLine(none.Begin(), size, file));
    EXPECT_TRUE(none.GuardsStand());
    EXPECT_EQ(Rest(), "next\n");
  }
}

TEST_F(TextIo, LinesAgreeWithTheRuleOverSeededTexts) {
  for (unsigned int seed = 1; seed <= 100; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::string text;
    for (std::size_t n = random() % 200; text.size() < n;)
      text += random() % 5 == 0 ? '\n' : static_cast<char>('a' + random() % 26);
    Open(text);
    std::size_t at = 0;
    for (bool more = true; more;) {
      int const size = 1 + static_cast<int>(random() % 12);
      std::size_t const end = std::min(text.find('\n', at), text.size());
      std::string expected = text.substr(at, end - at);
      if (expected.size() < static_cast<std::size_t>(size)) {
        expected += '\0';
      } else {
        expected = expected.substr(0, static_cast<std::size_t>(size) - 1) + '0';
      }
      Guarded buffer(size);
      more = GetLine(buffer.Begin(), size, file);
      ASSERT_EQ(more, end < text.size());
      ASSERT_EQ(buffer.Inside().substr(0, expected.size()), expected);
      ASSERT_TRUE(buffer.GuardsStand());
      at = end + 1;
    }
  }
}

TEST_F(TextIo, FieldMaySpanLinesAndEndsAtItsDelimiter) {
  Open("one\ntwo\tthree");
  char buffer[20];
  EXPECT_TRUE(ReadStr(buffer, 20, file, '\t'));
  EXPECT_STREQ(buffer, "one\ntwo");
  EXPECT_FALSE(ReadStr(buffer, 20, file, '\t'));
  EXPECT_STREQ(buffer, "three");
}

TEST_F(TextIo, LongerFieldEndsInTheDigitZeroAsALineDoes) {
  Open("abcdef;g");
  Guarded buffer(4);
  EXPECT_TRUE(ReadStr(buffer.Begin(), 4, file, ';'));
  EXPECT_EQ(buffer.Inside(), "abc0");
  EXPECT_EQ(Rest(), "g");
}

TEST_F(TextIo, FieldMayEndAtAnyByte) {
  Open(std::string("ab\n\0cd\xFF", 7) + "e");
  Guarded buffer(5);
  EXPECT_TRUE(ReadStr(buffer.Begin(), 5, file, '\0'));
  EXPECT_EQ(buffer.Inside(), std::string("ab\n\0z", 5));
  EXPECT_TRUE(ReadStr(buffer.Begin(), 5, file, '\xFF'));
  EXPECT_STREQ(buffer.Begin(), "cd");
  EXPECT_EQ(Rest(), "e");
}

TEST_F(TextIo, ZeroByteOfALineIsAByteLikeOthers) {
  Open(std::string("a\0b\ncd", 6));
  Guarded buffer(6);
  EXPECT_TRUE(GetLine(buffer.Begin(), 6, file));
  EXPECT_EQ(buffer.Inside(), std::string("a\0b\0zz", 6));
}

TEST_F(TextIo, LargestBufferHoldsALine) {
  Open("ab\n");
  char buffer[10] = {};
  EXPECT_TRUE(GetLine(buffer, std::numeric_limits<int>::max(), file));
  EXPECT_STREQ(buffer, "ab");
}

// A file whose device fails behind its first bytes.
class FailingFile : public CStdioFile {
 public:
  std::size_t Read(void *buffer, std::size_t count) override {
    if (count == 0 || bytes.empty()) throw CFileException(CFileException::hardIO);
    *static_cast<char *>(buffer) = bytes.front();
    bytes.erase(0, 1);
    return 1;
  }
  std::string bytes = "ab";
};

template <class Work>
int CauseThrownBy(Work work) {
  FailingFile file;
  try {
    work(file);
  } catch (CFileException const &reason) {
    return reason.m_cause;
  }
  return CFileException::none;
}

TEST_F(TextIo, ErrorsOfTheDevicePassThrough) {
  char buffer[10] = {};
  EXPECT_EQ(CauseThrownBy([&](CStdioFile &failing) { GetLine(buffer, 10, failing); }),
            CFileException::hardIO);
  EXPECT_EQ(CauseThrownBy([&](CStdioFile &failing) { ReadStr(buffer, 10, failing, '\t'); }),
            CFileException::hardIO);
  EXPECT_EQ(CauseThrownBy([](CStdioFile &failing) { SkipRestOfLine(failing); }),
            CFileException::hardIO);
  EXPECT_EQ(CauseThrownBy([](CStdioFile &failing) { CheckLabel("ab", failing); }),
            CFileException::hardIO);
  EXPECT_TRUE(application.boxes.empty());
}

TEST_F(TextIo, PutLineWritesTheTextAndNoLineEnd) {
  std::string const name = directory.Path("out.txt");
  {
    CStdioFile out(name.c_str(), CFile::modeCreate | CFile::modeWrite | CFile::typeBinary);
    EXPECT_TRUE(PutLine("one", out));
    EXPECT_TRUE(PutLine("", out));
    EXPECT_TRUE(PutLine(" two\n", out));
  }
  EXPECT_EQ(directory.ReadText("out.txt"), "one two\n");
}

TEST_F(TextIo, PutLineLeavesAFailureToTheFile) {
  CStdioFile closed;
  EXPECT_THROW(PutLine("x", closed), CFileException);
}

TEST_F(TextIo, ReadIntStopsBehindTheDigits) {
  Open(" \n\t 42abc");
  int value = 7;
  EXPECT_TRUE(ReadInt(value, file));
  EXPECT_EQ(value, 42);
  EXPECT_FALSE(ReadInt(value, file));
  EXPECT_EQ(value, 42);
  EXPECT_EQ(Rest(), "abc");
}

TEST_F(TextIo, ReadDblTakesAPointWhateverTheLocale) {
  Open("\n1.5,2 -3e2\nword");
  double value = 7;
  EXPECT_TRUE(ReadDbl(value, file));
  EXPECT_EQ(value, 1.5);
  EXPECT_FALSE(ReadDbl(value, file));
  EXPECT_EQ(value, 1.5);
  char comma = 0;
  file.Read(&comma, 1);
  EXPECT_EQ(comma, ',');
  EXPECT_TRUE(ReadDbl(value, file));
  EXPECT_EQ(value, 2);
  EXPECT_TRUE(ReadDbl(value, file));
  EXPECT_EQ(value, -300);
  EXPECT_FALSE(ReadDbl(value, file));
  EXPECT_EQ(Rest(), "word");
}

TEST_F(TextIo, NumbersAtTheEndOfTheFileGiveFalse) {
  Open("  \n");
  int whole = 7;
  double number = 8;
  EXPECT_FALSE(ReadInt(whole, file));
  EXPECT_FALSE(ReadDbl(number, file));
  EXPECT_EQ(whole, 7);
  EXPECT_EQ(number, 8);
  CStdioFile closed;
  EXPECT_FALSE(ReadInt(whole, closed));
  EXPECT_FALSE(ReadDbl(number, closed));
}

TEST_F(TextIo, NumbersAndLinesShareOnePosition) {
  Open("3 rest\n4.5 more\nlast");
  int whole = 0;
  double number = 0;
  char buffer[10];
  EXPECT_TRUE(ReadInt(whole, file));
  EXPECT_TRUE(GetLine(buffer, 10, file));
  EXPECT_STREQ(buffer, " rest");
  EXPECT_TRUE(ReadDbl(number, file));
  EXPECT_EQ(number, 4.5);
  EXPECT_TRUE(SkipRestOfLine(file));
  EXPECT_FALSE(GetLine(buffer, 10, file));
  EXPECT_STREQ(buffer, "last");
}

TEST_F(TextIo, SkipRestOfLineEndsBehindALineFeedOrAtTheEnd) {
  Open("abc\n\nde");
  EXPECT_TRUE(SkipRestOfLine(file));
  EXPECT_TRUE(SkipRestOfLine(file));
  EXPECT_FALSE(SkipRestOfLine(file));
  EXPECT_FALSE(SkipRestOfLine(file));
}

TEST_F(TextIo, LabelMustBeTheWholeLine) {
  Open("Points\nPoints \nPoints");
  EXPECT_TRUE(CheckLabel("Points", file));
  EXPECT_FALSE(CheckLabel("Points", file));
  EXPECT_TRUE(CheckLabel("Points", file));  // a last line without a line feed counts
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(application.boxes[0].text, "'Points' expected instead of 'Points '");
}

TEST_F(TextIo, LabelInAnotherCaseGivesABoxAndIsReadAllTheSame) {
  Open("points\nnext\n");
  EXPECT_FALSE(CheckLabel("Points", file));
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(application.boxes[0].text, "'Points' expected instead of 'points'");
  EXPECT_EQ(application.boxes[0].title, "Quillaven");
  EXPECT_EQ(application.boxes[0].type, 0U);
  EXPECT_EQ(application.boxes[0].helpId, 0U);
  EXPECT_EQ(Rest(), "next\n");
}

TEST_F(TextIo, LabelAtTheEndOfTheFileIsComparedWithAnEmptyText) {
  Open("");
  EXPECT_TRUE(CheckLabel("", file));
  EXPECT_FALSE(CheckLabel("x", file));
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(application.boxes[0].text, "'x' expected instead of ''");
}

TEST_F(TextIo, LabelIsComparedWithEveryByteOfTheLine) {
  Open(std::string("ab\0cd\nab\0\nnext\n", 15));
  EXPECT_FALSE(CheckLabel("ab", file));
  EXPECT_FALSE(CheckLabel("ab", file));
  ASSERT_EQ(application.boxes.size(), 2U);
  EXPECT_EQ(application.boxes[0].text, "'ab' expected instead of 'ab'");
  EXPECT_EQ(Rest(), "next\n");
}

TEST_F(TextIo, LabelOfAnOverLongLineIsShownWithItsMark) {
  Open(std::string(5000, 'a') + "\nnext\n");
  EXPECT_FALSE(CheckLabel("x", file));
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(application.boxes[0].text, "'x' expected instead of '" + std::string(4095, 'a') + "0'");
  EXPECT_EQ(Rest(), "next\n");
}

class EscapedLine : public TextIo {
 protected:
  std::string Packed(std::string const &bytes, int size = 1000) {
    std::vector<char> buffer(static_cast<std::size_t>(size), 'z');
    EXPECT_TRUE(FileToLine(directory.Write("in.txt", bytes).c_str(), buffer.data(), size));
    return buffer.data();
  }
  std::string Unpacked(std::string const &line) {
    EXPECT_TRUE(LineToFile(line.c_str(), directory.Path("out.txt").c_str()));
    return directory.ReadText("out.txt");
  }
};

TEST_F(EscapedLine, EscapesFiveCharacters) {
  EXPECT_EQ(Packed("a b\tc\\d\ne\rf"), "a\\bb\\tc\\\\d\\ne\\rf");
  EXPECT_EQ(Packed(""), "");
  EXPECT_EQ(Packed("\xE9\x01\"'"), "\xE9\x01\"'");
}

TEST_F(EscapedLine, CarriageReturnAndLineFeedCountAsALineFeed) {
  EXPECT_EQ(Packed("a\r\nb\r\n"), "a\\nb\\n");
  EXPECT_EQ(Packed("a\r"), "a\\r");
  EXPECT_EQ(Packed("a\r\r\nb"), "a\\r\\nb");
}

TEST_F(EscapedLine, RestoresAFileThatFits) {
  for (unsigned int seed = 1; seed <= 100; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    static constexpr char kAlphabet[] = "ab\\ \t\nrntbq";
    std::string text;
    for (std::size_t n = random() % 300; text.size() < n;)
      text += kAlphabet[random() % (sizeof kAlphabet - 1)];
    ASSERT_EQ(Unpacked(Packed(text)), text);
  }
  EXPECT_EQ(Unpacked(Packed("a\rb")), "a\rb");
}

TEST_F(EscapedLine, TooLongAFileIsCutOffWithoutAWord) {
  // The last character is written while three places are left behind it.
  EXPECT_EQ(Packed("abcdefghij", 10), "abcdefg");
  EXPECT_EQ(Packed("abcdef j", 10), "abcdef\\b");
  EXPECT_EQ(Packed("abcdefgh", 10), "abcdefg");
  EXPECT_EQ(Packed("abcdefg", 10), "abcdefg");
  EXPECT_EQ(Packed("abc", 4), "a");
  EXPECT_EQ(Packed("abc", 3), "");
  EXPECT_EQ(Packed("abc", 1), "");
  EXPECT_TRUE(application.boxes.empty());
}

TEST_F(EscapedLine, NeverWritesOutsideTheBuffer) {
  std::string const name = directory.Write("in.txt", std::string(100, ' '));
  for (int size = 0; size < 40; ++size) {
    Guarded buffer(size);
    EXPECT_TRUE(FileToLine(name.c_str(), buffer.Begin(), size));
    EXPECT_TRUE(buffer.GuardsStand()) << size;
  }
  Guarded none(0);
  EXPECT_TRUE(FileToLine(name.c_str(), none.Begin(), std::numeric_limits<int>::min()));
  EXPECT_TRUE(none.GuardsStand());
}

TEST_F(EscapedLine, FileThatIsNotThereGivesTheOpenBox) {
  char buffer[10] = "as it was";
  EXPECT_FALSE(FileToLine(directory.Path("none.txt").c_str(), buffer, 10));
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(application.boxes[0].title, "Error: Cannot open file");
  EXPECT_NE(application.boxes[0].text.find("none.txt"), std::string::npos);
  EXPECT_STREQ(buffer, "as it was");
  EXPECT_FALSE(directory.Has("none.txt"));
  EXPECT_FALSE(FileToLine(directory.Path().c_str(), buffer, 10));  // a folder is no file
}

TEST_F(EscapedLine, DoubledBackslashGivesOneAndUnknownLettersThemselves) {
  EXPECT_EQ(Unpacked("a\\\\b"), "a\\b");
  EXPECT_EQ(Unpacked("\\q"), "q");
  EXPECT_EQ(Unpacked("\\n\\t\\b\\r"), "\n\t \r");
}

TEST_F(EscapedLine, LoneBackslashAtTheEndIsDropped) {
  EXPECT_EQ(Unpacked("ab\\"), "ab");
  EXPECT_EQ(Unpacked("\\"), "");
}

TEST_F(EscapedLine, EmptyLineLeavesAnEmptyFile) {
  directory.Write("out.txt", "earlier");
  EXPECT_EQ(Unpacked(""), "");
  EXPECT_TRUE(directory.Has("out.txt"));
}

TEST_F(EscapedLine, FileThatCannotBeWrittenGivesTheOpenBoxEvenSo) {
  EXPECT_FALSE(LineToFile("x", directory.Path("none/out.txt").c_str()));
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(application.boxes[0].title, "Error: Cannot open file");
}

// Only whether the file opens is told.
TEST_F(EscapedLine, FileOnAFullDeviceStillGivesTrue) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "this system has no such device";
  EXPECT_TRUE(LineToFile("x", "/dev/full"));
  EXPECT_TRUE(application.boxes.empty());
}

TEST_F(EscapedLine, ExampleStandsInItsPageAndIsThatFile) {
  std::string const folder = QUILLAVEN_SOURCE_DIR "/docs/formats/";
  auto bytes = [](std::string const &name) {
    std::ifstream stream(name, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
  };
  std::string const page = bytes(folder + "escaped-line.md");
  std::string const note = bytes(folder + "examples/note.txt");
  std::string line = bytes(folder + "examples/note.line.txt");
  EXPECT_NE(page.find("```\n" + note + "```\n"), std::string::npos);
  EXPECT_NE(page.find("```\n" + line + "```\n"), std::string::npos);

  ASSERT_EQ(line.back(), '\n');
  line.pop_back();
  char buffer[200];
  EXPECT_TRUE(FileToLine((folder + "examples/note.txt").c_str(), buffer, 200));
  EXPECT_EQ(buffer, line);
  EXPECT_EQ(Unpacked(line), note);
}

}  // namespace
