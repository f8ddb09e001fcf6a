#include <quillaven/platform/command_line_internal.h>

namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t';
}

void SkipBlanks(char const *&at) {
  while (IsBlank(*at)) ++at;
}

std::string TakeProgram(char const *&at) {
  std::string word;
  bool quoted = false;
  for (; *at != '\0' && (quoted || !IsBlank(*at)); ++at) {
    if (*at == '"') {
      quoted = !quoted;
    } else {
      word += *at;
    }
  }
  return word;
}

// A run of backslashes, and the quote behind it where that is text.
void TakeBackslashes(char const *&at, std::string &word) {
  std::size_t count = 0;
  for (; *at == '\\'; ++at) ++count;
  if (*at != '"') {
    word.append(count, '\\');
    return;
  }
  word.append(count / 2, '\\');
  if (count % 2 == 1) word += *at++;
}

void TakeQuote(char const *&at, std::string &word, bool &quoted) {
  ++at;
  if (quoted && *at == '"') {
    word += *at++;
  } else {
    quoted = !quoted;
  }
}

std::string TakeArgument(char const *&at) {
  std::string word;
  bool quoted = false;
  while (*at != '\0' && (quoted || !IsBlank(*at))) {
    if (*at == '\\') {
      TakeBackslashes(at, word);
    } else if (*at == '"') {
      TakeQuote(at, word, quoted);
    } else {
      word += *at++;
    }
  }
  return word;
}

}  // namespace

std::vector<std::string> SplitCommandLine(char const *line) {
  std::vector<std::string> words;
  char const *at = line;
  for (SkipBlanks(at); *at != '\0'; SkipBlanks(at))
    words.push_back(words.empty() ? TakeProgram(at) : TakeArgument(at));
  return words;
}
