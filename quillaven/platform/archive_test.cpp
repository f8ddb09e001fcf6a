#include <random>
#include <string>
#include <tests/support/memory_file.h>

#include <gtest/gtest.h>

#include <quillaven/platform/archive.h>

namespace {

template <class Store>
std::string Stored(Store store) {
  MemoryFile file;
  CArchive archive(&file, CArchive::store);
  store(archive);
  archive.Close();
  return file.content;
}

template <class Call>
int ArchiveCauseOf(Call call) {
  try {
    call();
  } catch (CArchiveException const &reason) {
    return reason.m_cause;
  }
  return CArchiveException::none;
}

std::string StoredCount(unsigned long count) {
  return Stored([count](CArchive &archive) { archive.WriteCount(count); });
}

std::string LengthOfStored(std::size_t length) {
  std::string const stored =
      Stored([length](CArchive &archive) { archive << CString(std::string(length, 'x')); });
  EXPECT_EQ(stored.substr(stored.size() - length), std::string(length, 'x'));
  return stored.substr(0, stored.size() - length);
}

TEST(Archive, KnowsItsDirection) {
  MemoryFile file;
  CArchive const storing(&file, CArchive::store);
  CArchive const loading(&file, CArchive::load);
  EXPECT_TRUE(storing.IsStoring());
  EXPECT_FALSE(storing.IsLoading());
  EXPECT_TRUE(loading.IsLoading());
  EXPECT_EQ(loading.GetFile(), &file);
}

TEST(Archive, StoresNumbersLittleEndianWithFixedWidths) {
  EXPECT_EQ(Stored([](CArchive &archive) {
              archive << 0x01020304 << -2L << 0x0A0B0C0DUL << 7U << static_cast<short>(-3)
                      << static_cast<unsigned short>(0x1234) << static_cast<unsigned char>(9)
                      << 1.0F << 2.0;
            }),
            Bytes(4, 3, 2, 1, 0xFE, 0xFF, 0xFF, 0xFF, 0x0D, 0x0C, 0x0B, 0x0A, 7, 0, 0, 0, 0xFD,
                  0xFF, 0x34, 0x12, 9, 0, 0, 0x80, 0x3F, 0, 0, 0, 0, 0, 0, 0, 0x40));
}

TEST(Archive, LoadsTheNumbersThatItStored) {
  MemoryFile file;
  {
    CArchive archive(&file, CArchive::store, 16);
    archive << -5 << 6U << -7L << 8UL << static_cast<short>(-9) << static_cast<unsigned short>(10)
            << static_cast<unsigned char>(11) << 12.5F << -13.25;
  }
  file.position = 0;
  CArchive archive(&file, CArchive::load, 16);
  int a = 0;
  unsigned int b = 0;
  long c = 0;
  unsigned long d = 0;
  short e = 0;
  unsigned short f = 0;
  unsigned char g = 0;
  float h = 0;
  double i = 0;
  archive >> a >> b >> c >> d >> e >> f >> g >> h >> i;
  EXPECT_EQ(a, -5);
  EXPECT_EQ(b, 6U);
  EXPECT_EQ(c, -7);
  EXPECT_EQ(d, 8U);
  EXPECT_EQ(e, -9);
  EXPECT_EQ(f, 10);
  EXPECT_EQ(g, 11);
  EXPECT_EQ(h, 12.5F);
  EXPECT_EQ(i, -13.25);
}

TEST(Archive, CountBelow65535HasTwoBytesAndSixFromThere) {
  EXPECT_EQ(StoredCount(0), Bytes(0, 0));
  EXPECT_EQ(StoredCount(65534), Bytes(0xFE, 0xFF));
  EXPECT_EQ(StoredCount(65535), Bytes(0xFF, 0xFF, 0xFF, 0xFF, 0, 0));
  EXPECT_EQ(StoredCount(0x01020304), Bytes(0xFF, 0xFF, 4, 3, 2, 1));
}

TEST(Archive, LengthOfATextHasOneThreeOrSevenBytes) {
  EXPECT_EQ(LengthOfStored(0), Bytes(0));
  EXPECT_EQ(LengthOfStored(254), Bytes(0xFE));
  EXPECT_EQ(LengthOfStored(255), Bytes(0xFF, 0xFF, 0));
  EXPECT_EQ(LengthOfStored(65533), Bytes(0xFF, 0xFD, 0xFF));
  EXPECT_EQ(LengthOfStored(65534), Bytes(0xFF, 0xFF, 0xFF, 0xFE, 0xFF, 0, 0));
  EXPECT_EQ(LengthOfStored(70000), Bytes(0xFF, 0xFF, 0xFF, 0x70, 0x11, 1, 0));
}

TEST(Archive, CountsAndTextsOfEveryFormComeBack) {
  for (unsigned long const size :
       {0UL, 1UL, 254UL, 255UL, 256UL, 65533UL, 65534UL, 65535UL, 200000UL}) {
    SCOPED_TRACE(size);
    MemoryFile file(Stored([size](CArchive &archive) {
      archive.WriteCount(size);
      archive << CString(std::string(size, 'y'));
    }));
    CArchive archive(&file, CArchive::load);
    EXPECT_EQ(archive.ReadCount(), size);
    CString text("old");
    archive >> text;
    EXPECT_EQ(text, std::string(size, 'y'));
    EXPECT_EQ(archive.BytesLeft(), 0U);
  }
}

TEST(Archive, LoadBehindTheEndThrowsEndOfFile) {
  MemoryFile file(Bytes(1, 2, 3));
  CArchive archive(&file, CArchive::load);
  int value = 0;
  EXPECT_EQ(ArchiveCauseOf([&] { archive >> value; }), CArchiveException::endOfFile);
}

TEST(Archive, TextThatPromisesMoreThanTheFileHoldsThrowsEndOfFile) {
  MemoryFile file(Bytes(0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 'a', 'b'));
  CArchive archive(&file, CArchive::load);
  CString text;
  EXPECT_EQ(ArchiveCauseOf([&] { archive >> text; }), CArchiveException::endOfFile);
  EXPECT_LE(text.capacity(), 1U << 20);
}

TEST(Archive, InTheWrongDirectionThrowsReadOnlyOrWriteOnly) {
  MemoryFile file(Bytes(1, 2, 3, 4));
  CArchive loading(&file, CArchive::load);
  EXPECT_EQ(ArchiveCauseOf([&] { loading << 1; }), CArchiveException::readOnly);
  CArchive storing(&file, CArchive::store);
  int value = 0;
  EXPECT_EQ(ArchiveCauseOf([&] { storing >> value; }), CArchiveException::writeOnly);
}

TEST(Archive, ReadReturnsWhatIsThere) {
  MemoryFile file("abcde");
  CArchive archive(&file, CArchive::load);
  char buffer[8] = {};
  EXPECT_EQ(archive.Read(buffer, 2), 2U);
  EXPECT_EQ(archive.BytesLeft(), 3U);
  EXPECT_EQ(archive.Read(buffer, 8), 3U);
  EXPECT_EQ(std::string(buffer, 3), "cde");
  EXPECT_EQ(archive.Read(buffer, 8), 0U);
}

TEST(Archive, PiecesOfEverySizeArriveInOrder) {
  std::mt19937 random(7);
  for (int round = 0; round < 50; ++round) {
    SCOPED_TRACE(round);
    MemoryFile file;
    std::string expected;
    {
      CArchive archive(&file, CArchive::store, 32);
      for (int piece = 0; piece < 40; ++piece) {
        std::string const bytes(random() % 70, static_cast<char>('a' + piece % 26));
        archive.Write(bytes.data(), bytes.size());
        expected += bytes;
      }
    }
    EXPECT_EQ(file.content, expected);
    file.position = 0;
    CArchive archive(&file, CArchive::load, 32);
    std::string got;
    for (std::size_t size = 1; size != 0;) {
      char buffer[70];
      size = archive.Read(buffer, random() % 69 + 1);
      got.append(buffer, size);
    }
    EXPECT_EQ(got, expected);
  }
}

TEST(Archive, FlushOfALoadGivesBackWhatWasReadAhead) {
  MemoryFile file("abcdef");
  CArchive archive(&file, CArchive::load);
  char byte = 0;
  archive.Read(&byte, 1);
  archive.Flush();
  EXPECT_EQ(file.position, 1U);
  archive.Read(&byte, 1);
  EXPECT_EQ(byte, 'b');
}

TEST(Archive, ThatRunsFullThrowsWhenItIsClosedAndDoesNotWriteAgain) {
  MemoryFile file;
  file.room = 3;
  CArchive archive(&file, CArchive::store);
  archive << 0x01020304;
  EXPECT_THROW(archive.Close(), CFileException);
  EXPECT_EQ(file.content, Bytes(4, 3, 2));
  archive.Close();
  EXPECT_EQ(file.content, Bytes(4, 3, 2));
}

TEST(Archive, ThatIsDestroyedWhileFullStaysSilent) {
  MemoryFile file;
  file.room = 1;
  { CArchive(&file, CArchive::store) << 5; }
  EXPECT_EQ(file.content.size(), 1U);
}

TEST(Archive, TakesTextsAndNumbersOfDocuments) {
  std::string const stored = Stored([](CArchive &archive) {
    CStringArray texts;
    texts.Add("a");
    texts.Add("");
    texts.Serialize(archive);
    CDWordArray numbers;
    numbers.Add(255);
    numbers.Serialize(archive);
  });
  EXPECT_EQ(stored, Bytes(2, 0, 1, 'a', 0, 1, 0, 0xFF, 0, 0, 0));
  MemoryFile file(stored);
  CArchive archive(&file, CArchive::load);
  CStringArray texts;
  texts.Add("goes");
  texts.Serialize(archive);
  ASSERT_EQ(texts.GetSize(), 2);
  EXPECT_EQ(texts[0], "a");
  EXPECT_EQ(texts[1], "");
  CDWordArray numbers;
  numbers.Serialize(archive);
  ASSERT_EQ(numbers.GetSize(), 1);
  EXPECT_EQ(numbers[0], 255U);
}

TEST(Archive, CountThatTheFileCannotHoldEndsInEndOfFile) {
  std::string const stored = Bytes(0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 1, 'a');
  MemoryFile first(stored);
  CArchive texts(&first, CArchive::load);
  EXPECT_EQ(ArchiveCauseOf([&] { CStringArray().Serialize(texts); }), CArchiveException::endOfFile);
  MemoryFile second(stored);
  CArchive numbers(&second, CArchive::load);
  EXPECT_EQ(ArchiveCauseOf([&] { CDWordArray().Serialize(numbers); }),
            CArchiveException::endOfFile);
}

TEST(GrowingArray, HasThePlacesThatItHas) {
  CArray<int> array;
  EXPECT_TRUE(array.IsEmpty());
  EXPECT_EQ(array.Add(5), 0);
  array.SetSize(3);
  EXPECT_EQ(array.GetSize(), 3);
  EXPECT_EQ(array[2], 0);
  array.SetAt(2, 7);
  array[1] = 6;
  EXPECT_EQ(array.GetAt(1) + array.GetAt(2), 13);
  EXPECT_THROW(array.GetAt(3), std::out_of_range);
  EXPECT_THROW(array.SetAt(-1, 0), std::out_of_range);
  array.SetSize(-1);
  EXPECT_EQ(array.GetSize(), 0);
}

TEST(Archive, TakesOnAFileThatGivesLessThanWasAskedFor) {
  std::string bytes(1000, '\0');
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i % 251);
  for (std::size_t const bufferSize : {std::size_t{16}, std::size_t{64}, std::size_t{65536}}) {
    SCOPED_TRACE(bufferSize);
    MemoryFile file(bytes);
    file.most = 7;
    CArchive archive(&file, CArchive::load, bufferSize);
    std::string read(2000, '\0');
    std::size_t const got = archive.Read(read.data(), read.size());
    EXPECT_TRUE(read.substr(0, got) == bytes);
  }
}

TEST(Archive, FaultOfItsFileIsNoEndOfTheFile) {
  for (std::size_t const bufferSize : {std::size_t{16}, std::size_t{65536}}) {
    SCOPED_TRACE(bufferSize);
    MemoryFile file(std::string(1000, 'x'));
    file.failsAt = 500;
    CArchive archive(&file, CArchive::load, bufferSize);
    std::string read(1000, '\0');
    EXPECT_THROW(archive.Read(read.data(), read.size()), CFileException);
  }
}

}  // namespace
