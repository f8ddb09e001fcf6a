#include <string>

#include <gtest/gtest.h>

#include <quillaven/platform/ftp.h>

#include "tests/support/ftp_ends.h"

namespace {

class FtpTransportHere : public FtpEndTest {};

INSTANTIATE_TEST_SUITE_P(Ends, FtpTransportHere, testing::Values(FtpEnd::builtIn), FtpEndName);

// The first read of a text takes a piece of 4096 bytes from the connection.
TEST_P(FtpTransportHere, TextThatIsGivenUpGivesWhatHadArrivedAndThenThrows) {
  Serve("one", std::string(3000000, '1'));
  Serve("two", "2");
  auto const connection = Transport().Connect("127.0.0.1");
  auto const one = connection->OpenFile("/one", false);
  ASSERT_NE(one, nullptr);
  std::string text(8192, '\0');
  EXPECT_EQ(one->Read(text.data(), 1), 1U);
  auto const two = connection->OpenFile("/two", true);
  ASSERT_NE(two, nullptr);
  EXPECT_EQ(one->Read(text.data(), text.size()), 4095U);
  EXPECT_EQ(text.substr(0, 4095), std::string(4095, '1'));
  EXPECT_THROW(one->Read(text.data(), text.size()), CInternetException);
}

}  // namespace
