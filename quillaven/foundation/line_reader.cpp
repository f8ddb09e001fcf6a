#include <cstring>
#include <istream>

#include <quillaven/foundation/line_reader_internal.h>

bool ReadTextLine(std::istream &stream, std::string &line, std::size_t longest) {
  constexpr int kEnd = std::char_traits<char>::eof();
  line.clear();
  int c = stream.get();
  bool const any = c != kEnd;
  while (c != kEnd && c != '\n') {
    line += static_cast<char>(c);
    if (line.size() == longest && stream.peek() != '\n') break;  // the rest is the next line
    c = stream.get();
  }
  bool const ended = line.size() < longest || c == '\n';
  if (ended && !line.empty() && line.back() == '\r') line.pop_back();
  line.resize(std::strlen(line.c_str()));
  return any;
}
