#include <cstddef>
#include <string>

#include <gtest/gtest.h>

#include <quillaven/platform/existing_file_internal.h>
#include <quillaven/platform/system_errors_internal.h>

#include "tests/support/pipe.h"
#include "tests/support/temporary_directory.h"

namespace {

std::string Piece(ExistingFile &file, std::size_t count) {
  std::string bytes(count, '\0');
  bytes.resize(file.Read(bytes.data(), count));
  return bytes;
}

TEST(ExistingFile, IsReadInPiecesAndTellsWhatIsLeft) {
  TemporaryDirectory directory;
  ExistingFile file(directory.Write("a.bin", "abcdefg").c_str());
  ASSERT_TRUE(file.IsOpen());
  EXPECT_EQ(file.Left(), 7U);
  EXPECT_EQ(Piece(file, 3), "abc");
  EXPECT_EQ(file.Left(), 4U);
  EXPECT_EQ(Piece(file, 100), "defg");
  EXPECT_EQ(file.Left(), 0U);
  EXPECT_EQ(Piece(file, 1), "");
  EXPECT_FALSE(file.Failed());  // the end is no failure
}

TEST(ExistingFile, DoesNotOpenWhereThereIsNoneNorADirectory) {
  TemporaryDirectory directory;
  ExistingFile const missing(directory.Path("none").c_str());
  EXPECT_FALSE(missing.IsOpen());
  EXPECT_NE(LastSystemError(), 0U);
  ExistingFile const folder(directory.Path().c_str());
  EXPECT_FALSE(folder.IsOpen());
  EXPECT_NE(LastSystemError(), 0U);
}

TEST(ExistingFile, DoesNotKnowWhatIsLeftOfAPipe) {
  std::string const bytes(200000, 'x');  // more than a pipe holds
  Pipe const pipe(bytes);
  ExistingFile file(pipe.Name().c_str());
  ASSERT_TRUE(file.IsOpen());
  EXPECT_FALSE(file.Left().has_value());
  EXPECT_EQ(Piece(file, 150000).size(), 150000U);
  EXPECT_FALSE(file.Left().has_value());
  EXPECT_EQ(Piece(file, 150000).size(), 50000U);
  EXPECT_FALSE(file.Failed());
}

}  // namespace
