#include <gtest/gtest.h>

#include <quillaven/spreadsheet/transport.h>

namespace {

TEST(SpreadsheetTransport, PutInForceGivesTheOneBefore) {
  CSpreadsheetTransport one;
  CSpreadsheetTransport two;
  CSpreadsheetTransport *const builtIn = SetSpreadsheetTransport(&one);
  EXPECT_EQ(&GetSpreadsheetTransport(), &one);
  EXPECT_EQ(SetSpreadsheetTransport(&two), &one);
  EXPECT_EQ(SetSpreadsheetTransport(nullptr), &two);
  EXPECT_EQ(&GetSpreadsheetTransport(), builtIn);
}

TEST(SpreadsheetTransport, BuiltInStartsAndReachesNoServiceThatDoesNotRun) {
  CSpreadsheetTransport &builtIn = GetSpreadsheetTransport();
  for (int round = 0; round < 2; ++round) {
    ASSERT_TRUE(builtIn.Start());
    EXPECT_FALSE(builtIn.Connect("QUILLAVEN-NO-SUCH-SERVICE", "system"));
    EXPECT_FALSE(builtIn.Execute("x", 2, 10));
    EXPECT_FALSE(builtIn.Poke("R1C1", "x", 2, 10));
    builtIn.Disconnect();
    builtIn.Stop();
  }
}

}  // namespace
