// The worked examples of the format pages, for the tests that read them.
//
//   EXPECT_TRUE(StandsInPage("network-report.md", "network-report.txt"));
//   network.ReadAsciiFile(ExampleFile("network.txt").c_str(), 2);

#pragma once

#include <fstream>
#include <iterator>
#include <string>

/// The path of an example.
inline std::string ExampleFile(std::string const &example) {
  return QUILLAVEN_SOURCE_DIR "/docs/formats/examples/" + example;
}

inline std::string BytesOfFile(std::string const &path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

/// Whether a page shows a text example as it is, fenced.
inline bool StandsInPage(std::string const &page, std::string const &example) {
  std::string const bytes = BytesOfFile(ExampleFile(example));
  std::string const text = BytesOfFile(QUILLAVEN_SOURCE_DIR "/docs/formats/" + page);
  return !bytes.empty() && text.find("```\n" + bytes + "```\n") != std::string::npos;
}
