#include <cstddef>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <quillaven/exchange/idrisi_palette.h>

#include "tests/support/recording_application.h"
#include "tests/support/temporary_directory.h"

namespace {

using Colors = std::vector<unsigned long>;

// A palette file of 256 entries, entry i being i, i + 1, i + 2 by their low bytes.
std::string FileWithIndices(int first, int last, int entries = 256) {
  std::string file("[IDRISI]??????", 14);
  file += static_cast<char>(first);
  file += 'x';
  file += static_cast<char>(last);
  file += 'y';
  for (int i = 0; i < entries; ++i)
    for (int channel = 0; channel < 3; ++channel) file += static_cast<char>(i + channel);
  return file;
}

class Palette : public testing::Test {
 protected:
  bool Read(std::string const &content) {
    return ReadIdrisiPalette(directory.Write("a.smp", content).c_str(), palette);
  }
  TemporaryDirectory directory;
  RecordingApplication application;
  Colors palette{1, 2, 3};
};

TEST_F(Palette, IsWrittenByteForByteAndReadBack) {
  Colors two{0x030201, 0xFFFEFD};
  EXPECT_TRUE(WriteIdrisiPalette(directory.Path("b.smp").c_str(), two));
  std::string const file = directory.Read("b.smp");
  ASSERT_EQ(file.size(), 18U + 768U);
  EXPECT_EQ(file.substr(0, 24), std::string("[IDRISI]\x01\x0A\x08\x12\xFF\x00\x00\x00\x01\x00"
                                            "\x01\x02\x03\xFD\xFE\xFF",
                                            24));
  EXPECT_EQ(file.substr(24), std::string(762, '\0'));
  EXPECT_TRUE(ReadIdrisiPalette(directory.Path("b.smp").c_str(), palette));
  EXPECT_EQ(palette, two);
}

TEST_F(Palette, EmptyOneIsReadBackAs256BlackEntries) {
  Colors none;
  EXPECT_TRUE(WriteIdrisiPalette(directory.Path("b.smp").c_str(), none));
  EXPECT_EQ(static_cast<unsigned char>(directory.Read("b.smp")[16]), 255);
  EXPECT_TRUE(ReadIdrisiPalette(directory.Path("b.smp").c_str(), palette));
  EXPECT_EQ(palette, Colors(256, 0));
}

TEST_F(Palette, LongerThan256EntriesIsWrittenAsItIs) {
  Colors many(300, 0x010101);
  EXPECT_TRUE(WriteIdrisiPalette(directory.Path("b.smp").c_str(), many));
  EXPECT_EQ(directory.Read("b.smp").size(), 18U + 900U);
}

TEST_F(Palette, HasTheEntriesBetweenItsIndices) {
  EXPECT_TRUE(Read(FileWithIndices(10, 12)));
  EXPECT_EQ(palette, (Colors{0x0C0B0A, 0x0D0C0B, 0x0E0D0C}));
}

TEST_F(Palette, WithFewerEntriesThanItsIndicesPromiseIsShorter) {
  EXPECT_TRUE(Read(FileWithIndices(0, 255, 2) + "zz"));
  EXPECT_EQ(palette.size(), 2U);
  EXPECT_TRUE(Read(FileWithIndices(0, 5, 0)));
  EXPECT_TRUE(palette.empty());
  EXPECT_TRUE(application.boxes.empty());
}

TEST_F(Palette, WithIndicesOutOfOrderIsEmptyAndFalse) {
  EXPECT_FALSE(Read(FileWithIndices(12, 10)));
  EXPECT_TRUE(palette.empty());
  EXPECT_TRUE(Read(FileWithIndices(11, 10)));  // an empty range is in order
}

TEST_F(Palette, OfAnotherSignatureIsToldInABoxAndLeavesWhatWasThere) {
  for (std::string const content :
       {"[idrisi] and more bytes", "[IDRIS", "", "{IDRISI]xxxxxxxxxxxxx"}) {
    application.boxes.clear();
    EXPECT_FALSE(Read(content));
    ASSERT_EQ(application.boxes.size(), 1U);
    EXPECT_EQ(application.boxes[0].text,
              "file '" + directory.Path("a.smp") + "' is not an idrisi file");
    EXPECT_EQ(palette, (Colors{1, 2, 3}));
  }
}

TEST_F(Palette, ThatIsMissingIsToldInABoxAndLeavesWhatWasThere) {
  EXPECT_FALSE(ReadIdrisiPalette(directory.Path("none").c_str(), palette));
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(application.boxes[0].title, "Error: Cannot open file");
  EXPECT_EQ(palette, (Colors{1, 2, 3}));
}

TEST_F(Palette, ThatCannotBeCreatedIsToldInABox) {
  EXPECT_FALSE(WriteIdrisiPalette(directory.Path("no/such/b.smp").c_str(), palette));
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(application.boxes[0].title, "Error: Cannot create file");
}

TEST_F(Palette, CutAtAnyByteIsReadWithoutHarm) {
  std::string const whole = FileWithIndices(0, 3, 4);
  for (std::size_t length = 0; length <= whole.size(); ++length) {
    palette = {9};
    bool const read = Read(whole.substr(0, length));
    EXPECT_EQ(read, length >= 8) << length;
    EXPECT_EQ(palette.size(), length < 8 ? 1 : length < 18 ? 0 : (length - 18) / 3) << length;
  }
}

}  // namespace
