#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string_view>

#include <quillaven/foundation/errors.h>
#include <quillaven/foundation/textio.h>
#include <quillaven/platform/files.h>
#include <quillaven/platform/message_box_internal.h>
#include <quillaven/platform/number_locale_internal.h>
#include <quillaven/platform/strings.h>
#include <quillaven/platform/system_paths.h>

namespace {

constexpr int kLineSize = 4096;

// The letters behind the backslash, and what they stand for.
constexpr char kPlain[] = "\r\n\\\t ";
constexpr char kLetters[] = "rn\\tb";

bool ReadByte(CStdioFile &file, char &byte) {
  return file.Read(&byte, 1) == 1;
}

// Ends the text of `count` bytes, or marks one that did not fit by the digit in the last place;
// such a text stays without an end, as its readers have always had it.
void EndText(char *buffer, int size, int count) {
  if (count < size) {
    buffer[count] = '\0';
  } else if (size > 0) {
    buffer[size - 1] = '0';
  }
}

struct TakenText {
  int length;  // the bytes in the buffer without the zero byte: all of it for one that did not fit
  bool ended;  // the delimiter was there
};

TakenText TakeText(char *buffer, int size, CStdioFile &file, char delimiter) {
  int const room = std::max(size, 0);
  TakenText text{0, false};
  for (char byte = 0; ReadByte(file, byte);) {
    text.ended = byte == delimiter;
    if (text.ended) break;
    if (text.length < room - 1) buffer[text.length] = byte;
    if (text.length < room) ++text.length;  // an over-long text is read to its end, not counted
  }
  EndText(buffer, room, text.length);
  return text;
}

// The character that an escape stands for: itself if it is none of the letters.
char Unescaped(char letter) {
  char const *found = std::strchr(kLetters, letter);
  return found != nullptr ? kPlain[found - kLetters] : letter;
}

}  // namespace

bool ReadStr(char *buffer, int size, CStdioFile &file, char delimiter) {
  return TakeText(buffer, size, file, delimiter).ended;
}

bool GetLine(char *buffer, int size, CStdioFile &file) {
  return ReadStr(buffer, size, file, '\n');
}

bool PutLine(char const *text, CStdioFile &file) {
  file.Write(text, std::strlen(text));
  return true;
}

bool ReadInt(int &value, CStdioFile &file) {
  PointLocale const numbers;
  return file.m_pStream != nullptr && std::fscanf(file.m_pStream, " %d", &value) == 1;
}

bool ReadDbl(double &value, CStdioFile &file) {
  PointLocale const numbers;
  return file.m_pStream != nullptr && std::fscanf(file.m_pStream, " %lf", &value) == 1;
}

bool SkipRestOfLine(CStdioFile &file) {
  for (char byte = 0; ReadByte(file, byte);)
    if (byte == '\n') return true;
  return false;
}

bool CheckLabel(char const *label, CStdioFile &file) {
  char line[kLineSize + 1];
  line[kLineSize] = '\0';  // an over-long line has no end of its own
  std::string_view const whole(
      line, static_cast<std::size_t>(TakeText(line, kLineSize, file, '\n').length));
  if (whole == label) return true;  // a zero byte in the line is a byte like others
  CString text;
  text.Format("'%s' expected instead of '%s'", label, line);
  AfxMessageBox(text);
  return false;
}

bool FileToLine(char const *name, char *buffer, int size) {
  CStdioFile file;
  if (!file.Open(name, CFile::modeRead | CFile::typeText)) {
    NoSuchFile(name);
    return false;
  }
  if (size < 1) return true;
  int length = 0;
  for (int c = 0; length < size - 3 && (c = std::getc(file.m_pStream)) != EOF;) {
    char const plain = static_cast<char>(c);
    char const *escaped = plain != '\0' ? std::strchr(kPlain, plain) : nullptr;
    if (escaped != nullptr) buffer[length++] = '\\';
    buffer[length++] = escaped != nullptr ? kLetters[escaped - kPlain] : plain;
  }
  buffer[length] = '\0';
  return true;
}

bool LineToFile(char const *line, char const *name) {
  std::ofstream stream(SystemPath(name));
  if (!stream) {
    NoSuchFile(name);
    return false;
  }
  for (char const *at = line; *at != '\0'; ++at) {
    if (*at != '\\') {
      stream.put(*at);
    } else if (*++at != '\0') {
      stream.put(Unescaped(*at));
    } else {
      break;
    }
  }
  return true;
}
