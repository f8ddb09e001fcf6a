// Numbers and lines from the bytes of a text file, read as one block.
//
//   TextReader reader(ReadWholeFile(stream));
//   std::string line = reader.Line(127);
//   double value = 0;
//   while (reader.Number(value)) Use(value);
//   bool complete = !reader.MetEnd();

#pragma once

#include <string>

/// Numbers are extracted as from a stream: white space in front is skipped, across lines; a word
/// stops the extraction for good; meeting the end of the text while skipping or reading counts as
/// its end.
class TextReader {
 public:
  /// The text must outlive the reader.
  explicit TextReader(std::string const &text)
      : m_at(text.data()), m_end(text.data() + text.size()) {}

  /// The next line, of at most `longest` characters; what is longer arrives as the next line. A
  /// carriage return at its end is dropped.
  std::string Line(std::size_t longest);

  /// The next number. False, and the value as it was, if there is none or an earlier one failed. A
  /// number too large is infinite, one too small 0.
  bool Number(double &value);

  /// Whether the end of the text was met, be it right behind a number.
  bool MetEnd() const { return m_metEnd; }

  /// Bytes that are not read yet.
  std::size_t Left() const { return static_cast<std::size_t>(m_end - m_at); }

 private:
  bool Stop(bool metEnd);
  bool SlowNumber(double &value);

  char const *m_at;
  char const *m_end;
  bool m_stopped = false;
  bool m_metEnd = false;
};

/// The number that a text begins with, behind blanks; false, and the value as it was, if there is
/// none. It is a decimal number: names such as "inf" and "nan" are none, and "0x10" begins with 0.
bool LeadingNumber(std::string const &text, double &value);
