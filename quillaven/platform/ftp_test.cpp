#include <functional>
#include <random>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <quillaven/platform/ftp.h>
#include <quillaven/platform/ftp_client_internal.h>

#include "tests/support/ftp_ends.h"
#include "tests/support/open_handles.h"
#include "tests/support/system_text.h"

namespace {

using testing::HasSubstr;
using testing::Not;

char const *const kHost = "127.0.0.1";

std::string ReadAll(CFile &file, std::size_t step = 4096) {
  std::string bytes;
  std::string buffer(step, '\0');
  while (std::size_t const count = file.Read(buffer.data(), step)) bytes.append(buffer, 0, count);
  return bytes;
}

std::string RandomBytes(unsigned int seed, std::size_t count) {
  std::mt19937 random(seed);
  std::string bytes(count, '\0');
  for (char &byte : bytes) byte = static_cast<char>(random());
  return bytes;
}

/// The number of the CInternetException that the work throws; 0 if it throws none.
unsigned int ErrorOf(std::function<void()> const &work) {
  try {
    work();
  } catch (CInternetException const &e) {
    return e.m_dwError;
  }
  return 0;
}

TEST(FtpTransport, PutInForceGivesTheOneBefore) {
  CFtpTransport one;
  FakeFtpTransport two;
  CFtpTransport *const builtIn = SetFtpTransport(&one);
  EXPECT_EQ(&GetFtpTransport(), &one);
  EXPECT_EQ(SetFtpTransport(&two), &one);
  EXPECT_EQ(SetFtpTransport(nullptr), &two);
  EXPECT_EQ(&GetFtpTransport(), builtIn);
}

TEST(FtpTransport, BuiltWithoutAClientGivesNoConnection) {
  if (HasFtpClient()) {
    EXPECT_NE(ErrorOf([] { CFtpTransport().Connect("no such name"); }), 0U);
  } else {
    EXPECT_EQ(CFtpTransport().Connect(kHost), nullptr);
  }
}

class FtpContract : public FtpEndTest {
 protected:
  std::string Fetch(std::string const &object, bool binary) {
    auto const connection = Transport().Connect(kHost);
    auto const file = connection->OpenFile(object.c_str(), binary);
    return file == nullptr ? "no file" : ReadAll(*file);
  }
  bool Gives(std::string const &object) {
    return Transport().Connect(kHost)->OpenFile(object.c_str(), true) != nullptr;
  }
};

INSTANTIATE_TEST_SUITE_P(Ends, FtpContract, FtpEnds(), FtpEndName);

TEST_P(FtpContract, BinaryFileArrivesByteForByte) {
  for (unsigned int seed = 1; seed <= 4; ++seed) {
    SCOPED_TRACE(seed);
    std::string const bytes = RandomBytes(seed, std::size_t{1} << (5 * seed));
    Serve("cells.img", bytes);
    EXPECT_TRUE(Fetch("/cells.img", true) == bytes);
  }
}

TEST_P(FtpContract, BinaryFileKeepsItsLineEnds) {
  Serve("a.txt", "x\r\ny\nz\r");
  EXPECT_EQ(Fetch("/a.txt", true), "x\r\ny\nz\r");
}

TEST_P(FtpContract, TextArrivesWithLineFeeds) {
  Serve("lf.txt", "x\ny\n");
  Serve("crlf.txt", "x\r\ny\r\n");
  Serve("cr.txt", "x\ry\r\r\nz\r");
  EXPECT_EQ(Fetch("/cr.txt", false), "x\ry\r\nz\r") << "a CR alone is no line end";
  EXPECT_EQ(Fetch("/lf.txt", false), "x\ny\n");
  EXPECT_EQ(Fetch("/crlf.txt", false), "x\ny\n");
}

TEST_P(FtpContract, TextAndBinaryFilesTakeTurnsOverOneConnection) {
  Serve("a", "x\r\ny\n");
  auto const connection = Transport().Connect(kHost);
  for (int turn = 0; turn < 2; ++turn) {
    EXPECT_EQ(ReadAll(*connection->OpenFile("/a", false)), "x\ny\n");
    EXPECT_EQ(ReadAll(*connection->OpenFile("/a", true)), "x\r\ny\n");
  }
}

TEST_P(FtpContract, LongTextOfBothLineEndsArrivesWithLineFeeds) {
  std::mt19937 random(7);
  std::string served;
  std::string expected;
  for (int line = 0; line < 20000; ++line) {
    std::string const text(random() % 30, 'a');
    std::string const inside = random() % 5 == 0 ? "\ra" : "";
    served += text + inside + (random() % 2 == 0 ? "\r\n" : "\n");
    expected += text + inside + "\n";
  }
  Serve("long.txt", served);
  EXPECT_TRUE(Fetch("/long.txt", false) == expected);
}

TEST_P(FtpContract, EmptyFileIsAFileWithNothingInIt) {
  Serve("empty", "");
  EXPECT_EQ(Fetch("/empty", true), "");
  EXPECT_EQ(Fetch("/empty", false), "");
}

TEST_P(FtpContract, MissingFileIsNoFile) {
  EXPECT_FALSE(Gives("/missing"));
  EXPECT_FALSE(Gives("/no/such/directory/file"));
  EXPECT_FALSE(Gives(""));
}

TEST_P(FtpContract, DirectoryIsNoFile) {
  Serve("maps/a.asc", "1");
  EXPECT_FALSE(Gives("/maps"));
  EXPECT_FALSE(Gives("/maps/"));
  EXPECT_FALSE(Gives("/"));
  EXPECT_TRUE(Gives("/maps/a.asc"));
}

TEST_P(FtpContract, NameGoesToTheServerAsItIs) {
  std::string const name = kNamesMayHoldColons ? "a b;type=a%20#1?.txt" : "a b;type=a%20#1.txt";
  Serve(name, "odd");
  EXPECT_EQ(Fetch("/" + name, true), "odd");
  EXPECT_FALSE(Gives("/a b"));
}

TEST_P(FtpContract, NameWithALineEndReachesNoServer) {
  Serve("a", "1");
  EXPECT_FALSE(Gives("/a\r\nDELE /a"));
  EXPECT_TRUE(Gives("/a"));
}

// 425, 450 and 451 say that it does not work now, 550 and 553 that it never will: neither is a fault
// of the connection, which goes on.
TEST_P(FtpContract, FileThatTheServerRefusesIsNoFile) {
  Serve("a", "1");
  auto const connection = Transport().Connect(kHost);
  for (char const *number : {"425", "450", "451", "550", "553"}) {
    SCOPED_TRACE(number);
    Serve(std::string("answers-") + number, "1");
    EXPECT_EQ(connection->OpenFile((std::string("/answers-") + number).c_str(), true), nullptr);
    EXPECT_EQ(ReadAll(*connection->OpenFile("/a", true)), "1");
  }
}

TEST_P(FtpContract, ReadGivesAsManyBytesAsWereAskedForUpToTheEnd) {
  std::string const bytes = RandomBytes(6, 3000000);
  Serve("large", bytes);
  auto const connection = Transport().Connect(kHost);
  auto const file = connection->OpenFile("/large", true);
  std::string read(bytes.size() + 1, '\0');
  EXPECT_EQ(file->Read(read.data(), 1000000), 1000000U);
  EXPECT_EQ(file->Read(read.data() + 1000000, 0), 0U);
  EXPECT_EQ(file->Read(read.data() + 1000000, 2000001), 2000000U);
  EXPECT_TRUE(read.substr(0, bytes.size()) == bytes);
  EXPECT_EQ(file->Read(read.data(), 1), 0U);
}

// The new file is open before the old one dies, as an assignment has it.
TEST_P(FtpContract, FileThatDiesBehindItsSuccessorLeavesItWhole) {
  std::string const one = RandomBytes(7, 3000000);
  std::string const two = RandomBytes(8, 3000000);
  Serve("one", one);
  Serve("two", two);
  auto const connection = Transport().Connect(kHost);
  auto file = connection->OpenFile("/one", true);
  char byte = 0;
  EXPECT_EQ(file->Read(&byte, 1), 1U);
  file = connection->OpenFile("/two", true);
  EXPECT_TRUE(ReadAll(*file) == two);

  auto other = connection->OpenFile("/one", true);
  file->Close();
  EXPECT_TRUE(ReadAll(*other) == one);
}

TEST_P(FtpContract, FileThatWasGivenUpForAnotherThrowsAndIsNotTakenForWhole) {
  Serve("one", std::string(3000000, '1'));
  Serve("two", "2");
  auto const connection = Transport().Connect(kHost);
  auto const one = connection->OpenFile("/one", true);
  char byte = 0;
  EXPECT_EQ(one->Read(&byte, 1), 1U);
  auto const two = connection->OpenFile("/two", true);
  EXPECT_EQ(ErrorOf([&] { one->Read(&byte, 1); }), CInternetException::connectionAborted);
  EXPECT_EQ(ReadAll(*two), "2");
}

TEST_P(FtpContract, ServerThatGoesDownIsToldWhenTheNextFileIsOpened) {
  Serve("a", "1");
  auto const connection = Transport().Connect(kHost);
  EXPECT_EQ(ReadAll(*connection->OpenFile("/a", true)), "1");
  GoDown();
  EXPECT_NE(ErrorOf([&] { connection->OpenFile("/a", true); }), 0U);
}

TEST_P(FtpContract, ServerThatIsNotThereCannotBeConnected) {
  GoDown();
  EXPECT_EQ(ErrorOf([this] { Transport().Connect(kHost); }), CInternetException::cannotConnect);
}

TEST_P(FtpContract, ServerWithoutAnonymousUsersRefusesTheLogin) {
  LockOut();
  EXPECT_EQ(ErrorOf([this] { Transport().Connect(kHost); }), CInternetException::loginFailure);
}

TEST_P(FtpContract, TransferThatBreaksOffThrowsBehindWhatHadArrived) {
  std::string const bytes(100000, 'b');
  Serve("breaks-off", bytes);
  for (bool const binary : {true, false}) {
    SCOPED_TRACE(binary);
    auto const connection = Transport().Connect(kHost);
    auto const file = connection->OpenFile("/breaks-off", binary);
    ASSERT_NE(file, nullptr);
    std::string arrived;
    EXPECT_EQ(ErrorOf([&] {
                char buffer[4096];
                while (std::size_t const count = file->Read(buffer, sizeof buffer))
                  arrived.append(buffer, count);
              }),
              CInternetException::connectionAborted);
    EXPECT_TRUE(bytes.starts_with(arrived));
    EXPECT_GT(arrived.size(), 0U);
    EXPECT_LE(arrived.size(), 5000U);
  }
}

TEST_P(FtpContract, FilesFollowEachOtherOverOneConnection) {
  std::string const bytes = RandomBytes(5, 3000000);
  Serve("one", bytes);
  Serve("two", "2\r\n");
  auto const connection = Transport().Connect(kHost);
  EXPECT_TRUE(ReadAll(*connection->OpenFile("/one", true)) == bytes);
  EXPECT_EQ(ReadAll(*connection->OpenFile("/two", false)), "2\n");
  EXPECT_EQ(connection->OpenFile("/missing", true), nullptr);

  auto file = connection->OpenFile("/one", true);
  char byte = 0;
  EXPECT_EQ(file->Read(&byte, 1), 1U);
  file.reset();
  EXPECT_EQ(ReadAll(*connection->OpenFile("/two", true), 1), "2\r\n");
}

TEST_P(FtpContract, FileIsForReadingUntilItIsClosed) {
  Serve("a", "abc");
  auto const connection = Transport().Connect(kHost);
  auto const file = connection->OpenFile("/a", true);
  char bytes[3] = {};
  EXPECT_EQ(file->Read(bytes, 2), 2U);
  EXPECT_THROW(file->Write("x", 1), CFileException);
  file->Close();
  EXPECT_EQ(file->Read(bytes, 3), 0U);
}

TEST_P(FtpContract, LeavesNothingOpen) {
  Serve("a", std::string(500000, 'a'));
  Fetch("/a", true);  // what is made once is made now
  long const before = OpenHandles();
  for (int round = 0; round < 20; ++round) {
    auto const connection = Transport().Connect(kHost);
    auto const file = connection->OpenFile("/a", true);
    char byte = 0;
    if (round % 2 == 0) file->Read(&byte, 1);
  }
  EXPECT_EQ(OpenHandles(), before);
}

TEST(FtpClient, IsAnonymousAndActive) {
  if (!HasFtpClient()) GTEST_SKIP() << "the library was built without libcurl";
  if (!FtpServer::IsInstalled()) GTEST_SKIP() << "python3-pyftpdlib is not installed";
  FtpServer server(FtpServer::anonymous);
  server.directory.Write("a", "abc");
  {
    CFtpTransport transport(server.Port());
    auto const connection = transport.Connect(kHost);
    EXPECT_EQ(ReadAll(*connection->OpenFile("/a", true)), "abc");
    EXPECT_EQ(ReadAll(*connection->OpenFile("/a", false)), "abc");
  }
  std::string const log = server.Log();
  EXPECT_THAT(log, HasSubstr("USER anonymous\n"));
  EXPECT_THAT(log, HasSubstr("TYPE I\n"));
  EXPECT_THAT(log, HasSubstr("TYPE A\n"));
  EXPECT_THAT(log, HasSubstr("RETR /a\n"));
  EXPECT_THAT(log, testing::AnyOf(HasSubstr("EPRT"), HasSubstr("PORT")));
  EXPECT_THAT(log, Not(testing::AnyOf(HasSubstr("EPSV"), HasSubstr("PASV"))));
  EXPECT_EQ(log.find("USER"), log.rfind("USER")) << "one login serves the whole connection";
}

TEST(FtpClient, GivesUpOnAServerThatIsSilent) {
  if (!HasFtpClient()) GTEST_SKIP() << "the library was built without libcurl";
  if (!FtpServer::IsInstalled()) GTEST_SKIP() << "python3-pyftpdlib is not installed";
  FtpServer const server(FtpServer::silent);
  EXPECT_EQ(ErrorOf([&server] { ConnectToFtpServer(kHost, server.Port(), 1); }),
            CInternetException::timeout);
}

TEST(FtpClient, GivesUpOnATransferThatStandsStillBehindWhatHadArrived) {
  if (!HasFtpClient()) GTEST_SKIP() << "the library was built without libcurl";
  if (!FtpServer::IsInstalled()) GTEST_SKIP() << "python3-pyftpdlib is not installed";
  FtpServer server(FtpServer::anonymous);
  server.directory.Write("silent", std::string(100000, 's'));
  auto const connection = ConnectToFtpServer(kHost, server.Port(), 2);
  auto const file = connection->OpenFile("/silent", true);
  ASSERT_NE(file, nullptr);
  std::string bytes(100000, '\0');
  EXPECT_EQ(file->Read(bytes.data(), bytes.size()), 5000U);
  EXPECT_EQ(ErrorOf([&] { file->Read(bytes.data(), 1); }), CInternetException::timeout);
}

}  // namespace
