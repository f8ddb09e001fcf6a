#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <quillaven/foundation/paths.h>
#include <quillaven/foundation/tempfiles.h>
#include <quillaven/platform/ftp.h>
#include <quillaven/platform/system_paths.h>

#include "tests/support/allocation_count.h"
#include "tests/support/ftp_ends.h"
#include "tests/support/open_handles.h"
#include "tests/support/recording_application.h"
#include "tests/support/system_text.h"
#include "tests/support/temporary_directory.h"

namespace {

using testing::ElementsAre;

TEST(TempFiles, AreDeletedWhenTheListDies) {
  TemporaryDirectory directory;
  {
    CTempFiles files;
    files.Add(directory.Write("a.tmp", "1"));
    files.Add(directory.Write("b.tmp", "2"));
    directory.Write("c.tmp", "3");
    EXPECT_TRUE(directory.Has("a.tmp"));
  }
  EXPECT_FALSE(directory.Has("a.tmp"));
  EXPECT_FALSE(directory.Has("b.tmp"));
  EXPECT_TRUE(directory.Has("c.tmp"));
}

TEST(TempFiles, NameAddedTwiceIsDeletedOnceAndTheSecondTimeFailsSilently) {
  RecordingApplication application;
  TemporaryDirectory directory;
  std::string const name = directory.Write("a.tmp", "1");
  {
    CTempFiles files;
    files.Add(name);
    files.Add(name);
    files.Add(directory.Path("never made.tmp"));
    files.Add(directory.Write("z.tmp", "2"));
  }
  EXPECT_FALSE(directory.Has("a.tmp"));
  EXPECT_FALSE(directory.Has("z.tmp"));
  EXPECT_TRUE(application.boxes.empty());
}

TEST(TempFiles, EmptyListDeletesNothing) {
  TemporaryDirectory directory;
  directory.Write("a.tmp", "1");
  { CTempFiles const files; }
  {
    CTempFiles files;
    files.Add("");
  }
  EXPECT_TRUE(directory.Has("a.tmp"));
}

TEST(TempFiles, CopyOfAListDeletesTheSameNamesAgain) {
  TemporaryDirectory directory;
  std::string const name = directory.Write("a.tmp", "1");
  CTempFiles *files = new CTempFiles;
  files->Add(name);
  { CTempFiles const copy(*files); }
  EXPECT_FALSE(directory.Has("a.tmp"));
  directory.Write("a.tmp", "made anew");
  delete files;
  EXPECT_FALSE(directory.Has("a.tmp"));
}

TEST(TempFiles, AssignmentReplacesTheNamesAndDeletesNothing) {
  TemporaryDirectory directory;
  {
    CTempFiles one;
    one.Add(directory.Write("one.tmp", "1"));
    {
      CTempFiles two;
      two.Add(directory.Write("two.tmp", "2"));
      two = one;
      EXPECT_TRUE(directory.Has("two.tmp"));
    }
    EXPECT_FALSE(directory.Has("one.tmp"));
  }
  EXPECT_TRUE(directory.Has("two.tmp"));
}

TEST(TempFiles, DirectoriesStay) {
  TemporaryDirectory directory;
  std::filesystem::create_directory(directory.Path("empty"));
  {
    CTempFiles files;
    files.Add(directory.Path("empty"));
  }
  EXPECT_TRUE(directory.Has("empty"));
}

TEST(TempFiles, NameWithBackslashesIsDeleted) {
  TemporaryDirectory directory;
  directory.Write("sub/a.tmp", "1");
  {
    CTempFiles files;
    files.Add(LibraryPath(directory.Path("sub")) + "\\a.tmp");
  }
  EXPECT_FALSE(directory.Has("sub/a.tmp"));
}

TEST(TempFiles, RelativeNameIsLookedForInTheWorkingDirectoryOfTheDeletion) {
  TemporaryDirectory directory;
  directory.Write("a.tmp", "1");
  CPreserveDir const preserve;
  {
    CTempFiles files;
    files.Add("a.tmp");
    std::filesystem::current_path(directory.Path());
  }
  EXPECT_FALSE(directory.Has("a.tmp"));
}

// Where case tells files apart, another file than the named one must not go.
TEST(TempFiles, FileWhoseNameDiffersInCaseStays) {
  TemporaryDirectory directory;
  std::string const name = directory.Write("a.tmp", "1");
  directory.Write("A.TMP", "2");
  bool const caseTellsApart = directory.Read("a.tmp") == "1";
  {
    CTempFiles files;
    files.Add(name);
    files.Add(name);
  }
  EXPECT_FALSE(directory.Has("a.tmp"));
  EXPECT_EQ(directory.Has("A.TMP"), caseTellsApart);
}

TEST(TempFiles, AreDeletedThoughMemoryRunsOutOnTheWay) {
  TemporaryDirectory directory;
  std::string const longName(100, 'n');  // more than a string holds without an allocation
  bool failed = true;
  for (long n = 1; failed; ++n) {
    ASSERT_LT(n, 1000);
    auto files = std::make_unique<CTempFiles>();
    for (char const *name : {"1", "2", "3"}) files->Add(directory.Write(longName + name, "x"));
    {
      FailingAllocation const failing(n);
      files.reset();
    }
    int left = 0;
    for (char const *name : {"1", "2", "3"}) left += directory.Has(longName + name) ? 1 : 0;
    EXPECT_LE(left, 1) << "the name that failed and no other";
    failed = left != 0;
  }
}

// Copies over the fake transport tell what is asked of a transport, and when.
class RemoteFile : public testing::Test {
 protected:
  RemoteFile() { SetFtpTransport(&transport); }
  ~RemoteFile() override {
    SetFtpTransport(nullptr);
    EXPECT_TRUE(application.boxes.empty()) << "nothing is ever shown";
  }

  bool Copy(std::string const &source, bool binary = true) {
    return CopyRemoteFileToLocalFile(source.c_str(), directory.Path("target").c_str(), binary);
  }

  RecordingApplication application;
  FakeFtpTransport transport;
  TemporaryDirectory directory;
};

TEST_F(RemoteFile, IsReadInStepsOf4096BytesAndClosedBeforeItsConnection) {
  transport.files["/maps/a.img"] = std::string(5000, 'x');
  EXPECT_TRUE(Copy("ftp://ftp.example.org/maps/a.img"));
  EXPECT_EQ(directory.Read("target"), std::string(5000, 'x'));
  EXPECT_THAT(transport.calls,
              ElementsAre("connect ftp.example.org", "open /maps/a.img binary", "read 4096",
                          "read 4096", "read 4096", "close", "file gone", "connection gone"));
}

TEST_F(RemoteFile, IsOpenedAsTextUnlessBinaryIsAsked) {
  transport.files["/a"] = "1\r\n2\r\n";
  EXPECT_TRUE(Copy("ftp://h/a", false));
  EXPECT_EQ(transport.calls.at(1), "open /a text");
  EXPECT_EQ(directory.Read("target"), AsTextFile("1\n2\n"));
}

TEST_F(RemoteFile, UserPasswordAndPortOfAUrlAreNotLookedAt) {
  transport.files["/a"] = "1";
  for (char const *url : {"ftp://h/a", "FTP://h/a", "ftp://user@h/a", "ftp://user:p@ss@h/a",
                          "ftp://h:2121/a", "ftp://user:pass@h:2121/a"}) {
    SCOPED_TRACE(url);
    transport.calls.clear();
    EXPECT_TRUE(Copy(url));
    EXPECT_EQ(transport.calls.at(0), "connect h");
  }
  EXPECT_TRUE(Copy("ftp://[::1]:2121/a"));
  EXPECT_THAT(transport.calls, testing::Contains("connect [::1]"));
}

TEST_F(RemoteFile, NothingOfTheObjectIsDecoded) {
  transport.files["/a%20b?c#d@e:f"] = "1";
  EXPECT_TRUE(Copy("ftp://h/a%20b?c#d@e:f"));
}

TEST_F(RemoteFile, SourceThatIsNoUrlGivesFalseAndDoesNotCreateTheTarget) {
  directory.Write("plain", "1");
  for (std::string const &source :
       {std::string(), directory.Path("plain"), std::string("C:\\maps\\a.asc"), std::string("ftp"),
        std::string("ftp:"), std::string("ftp:h/a"), std::string("ftp:/h/a"), std::string("ftp://"),
        std::string("ftp:///a"), std::string("ftp://:21/a"), std::string("ftp://user@/a"),
        std::string(" ftp://h/a"), std::string("file"), std::string("http://h/a"),
        std::string("https://h/a"), std::string("gopher://h/a"), std::string("mailto:a@h")}) {
    SCOPED_TRACE(source);
    EXPECT_FALSE(Copy(source));
  }
  EXPECT_TRUE(transport.calls.empty());
  EXPECT_FALSE(directory.Has("target"));
}

TEST_F(RemoteFile, NullInPlaceOfANameGivesFalse) {
  transport.files["/a"] = "1";
  EXPECT_FALSE(CopyRemoteFileToLocalFile(nullptr, directory.Path("target").c_str(), true));
  EXPECT_FALSE(CopyRemoteFileToLocalFile("ftp://h/a", nullptr, true));
  EXPECT_FALSE(CopyRemoteFileToLocalFile(nullptr, nullptr, false));
  EXPECT_TRUE(transport.calls.empty());
  EXPECT_FALSE(directory.Has("target"));
}

// Names find files of another case where there is no such file, so the copy goes to the file that is
// there; the list takes its names exactly and leaves that file, which is not the copy's own.
TEST_F(RemoteFile, CopyOverAFileOfAnotherCaseIsNotDeletedByTheNameOfTheCopy) {
  transport.files["/a"] = "new";
  directory.Write("a.tmp", "old");
  bool const caseTellsApart = !directory.Has("A.TMP");
  {
    CTempFiles garbage;
    garbage.Add(directory.Path("A.TMP"));
    EXPECT_TRUE(CopyRemoteFileToLocalFile("ftp://h/a", directory.Path("A.TMP").c_str(), true));
    EXPECT_EQ(directory.Read("a.tmp"), "new");
  }
  EXPECT_EQ(directory.Has("a.tmp"), caseTellsApart);
}

TEST_F(RemoteFile, WithoutAnFtpClientGivesFalse) {
  transport.hasClient = false;
  EXPECT_FALSE(Copy("ftp://h/a"));
  EXPECT_FALSE(directory.Has("target"));
}

TEST_F(RemoteFile, SourceIsClosedWhenTheTargetCannotBeWritten) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "this system has no such device";
  for (std::size_t const size : {std::size_t{1}, std::size_t{4096}, std::size_t{100000}}) {
    SCOPED_TRACE(size);
    transport.files["/a"] = std::string(size, 'x');
    transport.calls.clear();
    int cause = 0;
    try {
      CopyRemoteFileToLocalFile("ftp://h/a", "/dev/full", true);
    } catch (CFileException const &e) {
      cause = e.m_cause;
    }
    EXPECT_EQ(cause, CFileException::diskFull);
    EXPECT_EQ(transport.calls.back(), "connection gone");
  }
}

// That the prefix stays in the name is meant, so such a file opens only where names may have it.
TEST_F(RemoteFile, FileUrlIsTheNameOfAFileWithItsPrefix) {
  CPreserveDir const preserve;
  std::filesystem::current_path(directory.Path());
  directory.Write("data.txt", "without prefix");
  bool const systemTakesSuchNames = bool(std::ofstream("file:data.txt") << "with prefix");
  EXPECT_EQ(Copy("file:data.txt"), systemTakesSuchNames);
  EXPECT_EQ(directory.Read("target"), systemTakesSuchNames ? "with prefix" : "");
  EXPECT_TRUE(transport.calls.empty());
}

TEST_F(RemoteFile, FileUrlOfAnExistingPathIsNotThatPath) {
  std::string const path = directory.Write("data.txt", "1");
  EXPECT_FALSE(Copy("file:" + path));
  EXPECT_FALSE(Copy("file://" + path));
  EXPECT_FALSE(Copy("file:"));
  EXPECT_FALSE(directory.Has("target"));
}

TEST_F(RemoteFile, FileUrlIsReadAsTextOrBinary) {
  CPreserveDir const preserve;
  std::filesystem::current_path(directory.Path());
  if (!(std::ofstream("FILE:a", std::ios::binary) << "1\r\n2\n")) return;  // no name here
  EXPECT_TRUE(Copy("FILE:a", true));
  EXPECT_EQ(directory.Read("target"), "1\r\n2\n");
  if (!kNamesMayHoldColons) return;
  EXPECT_TRUE(Copy("FILE:a", false));
  EXPECT_EQ(directory.Read("target"), AsTextFile("1\n2\n"));
}

// The copies themselves, over both transports.
class RemoteCopy : public FtpEndTest {
 protected:
  void SetUp() override {
    FtpEndTest::SetUp();
    SetFtpTransport(&Transport());
  }
  ~RemoteCopy() override { SetFtpTransport(nullptr); }

  bool Copy(std::string const &object, bool binary) {
    return CopyRemoteFileToLocalFile(("ftp://127.0.0.1/" + object).c_str(),
                                     directory.Path("target").c_str(), binary);
  }

  TemporaryDirectory directory;
};

INSTANTIATE_TEST_SUITE_P(Ends, RemoteCopy, FtpEnds(), FtpEndName);

TEST_P(RemoteCopy, HasTheBytesOfTheSource) {
  for (std::size_t const size : {1U, 4095U, 4096U, 4097U, 1000003U}) {
    SCOPED_TRACE(size);
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * i % 251);
    Serve("cells.img", bytes);
    EXPECT_TRUE(Copy("cells.img", true));
    EXPECT_TRUE(directory.Read("target") == bytes);
  }
}

TEST_P(RemoteCopy, OfATextHasTheLineEndsOfThisMachine) {
  Serve("lf.txt", "1 2\n3 4\n");
  Serve("crlf.txt", "1 2\r\n3 4\r\n");
  std::string const expected = AsTextFile("1 2\n3 4\n");
  for (char const *name : {"lf.txt", "crlf.txt"}) {
    SCOPED_TRACE(name);
    EXPECT_TRUE(Copy(name, false));
    EXPECT_EQ(directory.Read("target"), expected);
  }
}

TEST_P(RemoteCopy, OfAnEmptyFileIsAnEmptyTarget) {
  Serve("empty", "");
  for (bool const binary : {true, false}) {
    directory.Write("target", "earlier content");
    EXPECT_TRUE(Copy("empty", binary));
    EXPECT_TRUE(directory.Has("target"));
    EXPECT_EQ(directory.Read("target"), "");
  }
}

TEST_P(RemoteCopy, OfAMissingFileGivesFalseAndLeavesTheTargetAlone) {
  EXPECT_FALSE(Copy("missing", true));
  EXPECT_FALSE(directory.Has("target"));
  directory.Write("target", "earlier content");
  EXPECT_FALSE(Copy("missing", false));
  EXPECT_EQ(directory.Read("target"), "earlier content");
}

TEST_P(RemoteCopy, ToATargetThatCannotBeCreatedGivesFalseAndLeavesNothingOpen) {
  Serve("a", std::string(200000, 'a'));
  std::string const target = directory.Path("no such directory/target");
  auto copy = [&] { return CopyRemoteFileToLocalFile("ftp://127.0.0.1/a", target.c_str(), true); };
  EXPECT_FALSE(copy());
  long const before = OpenHandles();
  for (int round = 0; round < 10; ++round) EXPECT_FALSE(copy());
  EXPECT_EQ(OpenHandles(), before);
}

TEST_P(RemoteCopy, FromAServerThatIsNotTherePassesTheExceptionOn) {
  GoDown();
  EXPECT_THROW(Copy("a", true), CInternetException);
  EXPECT_FALSE(directory.Has("target"));
}

TEST_P(RemoteCopy, FromAServerWithoutAnonymousUsersPassesTheExceptionOn) {
  LockOut();
  SetFtpTransport(&Transport());
  Serve("a", "1");
  EXPECT_THROW(Copy("a", true), CInternetException);
  EXPECT_FALSE(directory.Has("target"));
}

TEST_P(RemoteCopy, ThatBreaksOffPassesTheExceptionOnAndKeepsWhatWasWritten) {
  std::string const bytes(100000, 'b');
  Serve("breaks-off", bytes);
  EXPECT_THROW(Copy("breaks-off", true), CInternetException);  // the first opens what stays
  long const before = OpenHandles();
  EXPECT_THROW(Copy("breaks-off", true), CInternetException);
  EXPECT_EQ(OpenHandles(), before);
  std::string const partial = directory.Read("target");
  EXPECT_TRUE(bytes.starts_with(partial));
  EXPECT_GT(partial.size(), 0U);
  EXPECT_LE(partial.size(), 5000U);
}

TEST_P(RemoteCopy, ATemporaryCopyIsGoneInTheEnd) {
  Serve("a", "1");
  {
    CTempFiles garbage;
    garbage.Add(directory.Path("target"));
    EXPECT_TRUE(Copy("a", true));
    EXPECT_TRUE(directory.Has("target"));
  }
  EXPECT_FALSE(directory.Has("target"));
}

}  // namespace
