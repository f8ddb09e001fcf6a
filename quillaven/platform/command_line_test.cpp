#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <quillaven/platform/command_line_internal.h>

namespace {

using Words = std::vector<std::string>;

TEST(CommandLine, IsPartedAtBlanksAndTabs) {
  EXPECT_EQ(SplitCommandLine("sim.exe -n  3\t-v "), (Words{"sim.exe", "-n", "3", "-v"}));
  EXPECT_EQ(SplitCommandLine("  sim"), (Words{"sim"}));
}

TEST(CommandLine, OfBlanksHasNoWords) {
  EXPECT_EQ(SplitCommandLine(""), Words{});
  EXPECT_EQ(SplitCommandLine(" \t "), Words{});
}

TEST(CommandLine, HoldsQuotedWordsTogether) {
  EXPECT_EQ(SplitCommandLine("\"C:\\My tools\\sim.exe\" \"a b\" c\" \"d"),
            (Words{"C:\\My tools\\sim.exe", "a b", "c d"}));
}

// Where the program ends is a matter of the text alone.
TEST(CommandLine, EndsAnUnquotedProgramAtItsFirstBlank) {
  EXPECT_EQ(SplitCommandLine("C:\\My tools\\sim.exe -n"),
            (Words{"C:\\My", "tools\\sim.exe", "-n"}));
}

TEST(CommandLine, TakesLineEndsForOrdinaryBytes) {
  EXPECT_EQ(SplitCommandLine("sim\n x\ny \r\n"), (Words{"sim\n", "x\ny", "\r\n"}));
}

TEST(CommandLine, KeepsEmptyQuotedWords) {
  EXPECT_EQ(SplitCommandLine("sim \"\" x"), (Words{"sim", "", "x"}));
  EXPECT_EQ(SplitCommandLine("\"\" x"), (Words{"", "x"}));
}

TEST(CommandLine, TakesBackslashesInTheProgramAsTheyStand) {
  EXPECT_EQ(SplitCommandLine("\"C:\\tools\\\" x"), (Words{"C:\\tools\\", "x"}));
  EXPECT_EQ(SplitCommandLine("a\\\\b\\\\\"c d\""), (Words{"a\\\\b\\\\c d"}));
}

// The table that is published with these rules, and its variations.
TEST(CommandLine, HalvesBackslashesBeforeAQuoteOnly) {
  EXPECT_EQ(SplitCommandLine(R"(p a\\\b d"e f"g h)"), (Words{"p", R"(a\\\b)", "de fg", "h"}));
  EXPECT_EQ(SplitCommandLine(R"(p a\\\"b c d)"), (Words{"p", R"(a\"b)", "c", "d"}));
  EXPECT_EQ(SplitCommandLine(R"(p a\\\\"b c" d e)"), (Words{"p", R"(a\\b c)", "d", "e"}));
  EXPECT_EQ(SplitCommandLine(R"(p "a\"b" c\)"), (Words{"p", "a\"b", "c\\"}));
  EXPECT_EQ(SplitCommandLine(R"(p \" x)"), (Words{"p", "\"", "x"}));
}

TEST(CommandLine, TakesTwoQuotesWithinQuotesForOne) {
  EXPECT_EQ(SplitCommandLine(R"(p a"b"" c d)"), (Words{"p", "ab\" c d"}));
  EXPECT_EQ(SplitCommandLine(R"(p "a""b" c)"), (Words{"p", "a\"b", "c"}));
}

TEST(CommandLine, AnUnclosedQuoteHoldsToTheEnd) {
  EXPECT_EQ(SplitCommandLine("p \"a b  c"), (Words{"p", "a b  c"}));
  EXPECT_EQ(SplitCommandLine("\"p a"), (Words{"p a"}));
}

// The published way to write a word so that it comes out as it was.
std::string Quoted(std::string const &word) {
  std::string text = "\"";
  std::size_t backslashes = 0;
  for (char const c : word) {
    if (c == '"') text.append(backslashes + 1, '\\');
    backslashes = c == '\\' ? backslashes + 1 : 0;
    text += c;
  }
  return text.append(backslashes, '\\') + "\"";
}

TEST(CommandLine, GivesBackWordsThatWereQuoted) {
  constexpr char kAlphabet[] = {'a', ' ', '\t', '"', '\\', '$', '\''};
  for (unsigned int seed = 1; seed <= 2000; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    Words words{"program"};
    std::string line = "program";
    for (auto count = random() % 5; count > 0; --count) {
      std::string word;
      for (auto length = random() % 9; length > 0; --length)
        word += kAlphabet[random() % sizeof kAlphabet];
      line += " " + Quoted(word);
      words.push_back(word);
    }
    ASSERT_EQ(SplitCommandLine(line.c_str()), words) << line;
  }
}

}  // namespace
