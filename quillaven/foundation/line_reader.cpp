#include <cstring>
#include <istream>

#include <quillaven/foundation/line_reader_internal.h>

namespace {

constexpr int kEnd = std::char_traits<char>::eof();

// Behind a full line: passes over the line's end, if it stands there.
bool PassLineEnd(std::istream &stream) {
  if (stream.peek() == '\r') {
    stream.get();
    if (stream.peek() != '\n') {
      stream.unget();
      return false;
    }
  }
  if (stream.peek() != '\n') return stream.peek() == kEnd;
  stream.get();
  return true;
}

}  // namespace

bool ReadTextLine(std::istream &stream, std::string &line, std::size_t longest) {
  line.clear();
  if (stream.peek() == kEnd) return false;
  bool ended = false;
  while (!ended && line.size() < longest) {
    int const c = stream.get();
    ended = c == '\n' || c == kEnd;
    if (!ended) line += static_cast<char>(c);
  }
  if (!ended) ended = PassLineEnd(stream);
  if (ended && !line.empty() && line.back() == '\r') line.pop_back();
  line.resize(std::strlen(line.c_str()));
  return true;
}
