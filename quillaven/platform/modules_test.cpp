#include <gtest/gtest.h>

#include <quillaven/platform/modules.h>

namespace {

TEST(VersionSource, PutInForceGivesTheOneBefore) {
  CVersionSource one;
  CVersionSource two;
  CVersionSource *const builtIn = SetVersionSource(&one);
  EXPECT_EQ(&GetVersionSource(), &one);
  EXPECT_EQ(SetVersionSource(&two), &one);
  EXPECT_EQ(SetVersionSource(nullptr), &two);
  EXPECT_EQ(&GetVersionSource(), builtIn);
}

TEST(VersionSource, BuiltInKnowsNoBlockOfAFileThatIsNotThere) {
  EXPECT_EQ(GetVersionSource().BlockSize("no-such-module"), 0U);
  char block[4] = {1, 2, 3, 4};
  EXPECT_FALSE(GetVersionSource().ReadBlock("no-such-module", sizeof block, block));
}

}  // namespace
