#include "apps/files.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <system_error>

#include "apps/console.h"
#include "apps/program_path.h"

namespace {

constexpr int kHeaderLines = 6;

std::string FirstWordInCapitals(std::string const &line) {
  std::string word = line.substr(0, line.find_first_of(" \t\r"));
  for (char &c : word) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return word;
}

}  // namespace

void RequireReadable(std::string const &file) {
  std::string const path = SystemPath(file);
  if (std::filesystem::is_directory(path)) throw Failure("'" + file + "' is a folder");
  errno = 0;
  std::ifstream const stream(path, std::ios::binary);
  if (!stream) throw Failure("cannot open '" + file + "': " + std::strerror(errno));
}

void RequirePlainFile(std::string const &file) {
  std::string const path = SystemPath(file);
  if (std::filesystem::is_directory(path)) throw Failure("'" + file + "' is a folder");
  if (std::filesystem::exists(path) && !std::filesystem::is_regular_file(path))
    throw Failure("'" + file + "' is no plain file");
  RequireReadable(file);
}

// A terminal may well be both.
void RequireOtherFile(std::string const &in, std::string const &out) {
  std::error_code none;
  std::string const path = SystemPath(out);
  if (std::filesystem::is_regular_file(path, none) &&
      std::filesystem::equivalent(SystemPath(in), path, none))
    throw BadArguments("'" + out + "' is the file that is read: choose another one to write");
}

bool IsGrid(std::string const &file) {
  std::ifstream stream(SystemPath(file));
  std::string start(64, '\0');
  stream.read(start.data(), static_cast<std::streamsize>(start.size()));
  start.resize(static_cast<std::size_t>(stream.gcount()));
  return FirstWordInCapitals(start) == "NCOLS";
}

void RequireGrid(std::string const &file) {
  RequirePlainFile(file);
  if (!IsGrid(file)) throw Failure("'" + file + "' is no ASCII grid");
}

bool GridIsComplete(std::string const &file, long long cells) {
  std::ifstream stream(SystemPath(file), std::ios::binary);
  std::string line;
  for (int i = 0; i < kHeaderLines; ++i) std::getline(stream, line);

  std::array<char, 1 << 16> block{};
  long long words = 0;
  bool inWord = false;
  while (stream.read(block.data(), block.size()) || stream.gcount() > 0) {
    std::for_each_n(block.begin(), stream.gcount(), [&](char c) {
      bool const blank = c == ' ' || c == '\n' || c == '\r' || c == '\t';
      if (!blank && !inWord) ++words;
      inWord = !blank;
    });
  }
  return words >= cells;
}

void RequireCheckableTarget(std::string const &file) {
  std::string const path = SystemPath(file);
  if (std::filesystem::exists(path) && !std::filesystem::is_regular_file(path))
    throw Failure("cannot write '" + file + "': it is no plain file");
}

void RequireWrittenGrid(std::string const &file, long long cells) {
  std::ifstream stream(SystemPath(file), std::ios::binary);
  stream.seekg(-1, std::ios::end);
  if (stream.get() != '\n' || !GridIsComplete(file, cells))
    throw Failure("'" + file + "' could not be written whole");
}

ScratchFile::ScratchFile() {
  std::random_device random;
  do {
    m_folder = std::filesystem::temp_directory_path() /
               ("quillaven-" + std::to_string(random()) + std::to_string(random()));
  } while (!std::filesystem::create_directory(m_folder));
  std::filesystem::permissions(m_folder, std::filesystem::perms::owner_all);
}

ScratchFile::~ScratchFile() {
  std::error_code ignored;
  std::filesystem::remove_all(m_folder, ignored);
}

// The library does not notice a disk that fills up. One that had no room for all of a file has none
// for a byte more.
void ScratchFile::RequireRoom() const {
  auto const size = std::filesystem::file_size(Path());
  errno = 0;
  std::ofstream stream(Path(), std::ios::binary | std::ios::app);
  stream.put('\0');
  stream.close();
  if (!stream) throw Failure("cannot write '" + Path() + "': " + std::strerror(errno));
  std::filesystem::resize_file(Path(), size);
}

void ScratchFile::WriteTo(std::string const &file) const {
  RequireRoom();
  std::ifstream from(Path(), std::ios::binary);
  errno = 0;
  std::ofstream to(SystemPath(file), std::ios::binary);
  to << from.rdbuf();
  to.close();
  if (!to) throw Failure("cannot write '" + file + "': " + std::strerror(errno));
}

void PrintColors(std::vector<unsigned long> const &colors) {
  for (std::size_t i = 0; i < colors.size(); ++i)
    std::printf("%5zu  %3lu %3lu %3lu\n", i, colors[i] & 255, colors[i] >> 8 & 255,
                colors[i] >> 16 & 255);
}

// An installed tree may have been moved, or made under another prefix than the one built for: what lies
// beside the program goes first.
std::string HelpDirectory(std::string const &told) {
  if (!told.empty()) return told;
  std::filesystem::path const folder = std::filesystem::path(ProgramPath()).parent_path();
  std::filesystem::path const beside = folder.parent_path() / QUILLAVEN_DATA_BESIDE;
  for (std::filesystem::path const &own : {beside, std::filesystem::path(QUILLAVEN_INSTALLED_DATA)})
    if (std::filesystem::is_directory(own / "Legends")) return own.string();
  return ".";
}
