// Scans a line field by field, as scanf does, with the same result on every machine.
//
//   LineScanner line("NClasses 12");
//   int classes = 0;
//   bool ok = line.Keyword("NClasses") && line.Integer(classes);
//
// Each field may have blanks in front of it, or none. Numbers have a point whatever the locale is;
// an integer that no int holds goes to the nearest end.

#pragma once

#include <string>

class LineScanner {
 public:
  explicit LineScanner(char const *line) : m_at(line) {}

  /// The text, at this very place.
  bool Keyword(char const *text);
  bool Integer(int &value);
  bool Float(float &value);
  bool Double(double &value);
  /// At least one character, up to the first backslash or the end of the line.
  bool Name(std::string &name);

  /// How many numbers and names have matched.
  int Fields() const { return m_fields; }
  void SkipBlanks();
  char const *Rest() const { return m_at; }

 private:
  bool Matched(char const *end);

  char const *m_at;
  int m_fields = 0;
};
