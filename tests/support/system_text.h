// What differs between systems in the files that tests look at.

#pragma once

#include <string>

#ifdef _WIN32
constexpr char kLineEnd[] = "\r\n";
constexpr bool kNamesMayHoldColons = false;
constexpr char kBatchExtension[] = ".bat";
constexpr char kUnechoed[] = "@";  // before a command in a batch file
#else
constexpr char kLineEnd[] = "\n";
constexpr bool kNamesMayHoldColons = true;
constexpr char kBatchExtension[] = "";
constexpr char kUnechoed[] = "";
#endif

/// A text with LF as a stream in text mode writes it.
inline std::string AsTextFile(std::string const &text) {
  std::string written;
  for (char const c : text) c == '\n' ? written += kLineEnd : written += c;
  return written;
}
