// Lines of the text files that other programs and older versions wrote.

#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>

/// Reads a line of at most `longest` characters; what is longer arrives as the next line. A
/// carriage return at its end and what stands behind a zero byte are dropped. False if there is no
/// line left.
bool ReadTextLine(std::istream &stream, std::string &line, std::size_t longest);
