#include <algorithm>
#include <array>
#include <cstring>
#include <fstream>
#include <string>

#include <quillaven/exchange/idrisi_palette.h>
#include <quillaven/foundation/errors.h>
#include <quillaven/foundation/input_file_internal.h>
#include <quillaven/platform/message_box_internal.h>
#include <quillaven/platform/system_paths.h>

namespace {

constexpr char kSignature[] = "[IDRISI]";
constexpr std::size_t kSignatureSize = 8;
constexpr std::size_t kHeaderSize = 18;
constexpr std::size_t kFirstIndexAt = 14;
constexpr std::size_t kLastIndexAt = 16;
constexpr std::size_t kFullPalette = 256;

}  // namespace

bool ReadIdrisiPalette(char const *file, std::vector<unsigned long> &palette) {
  std::ifstream stream = OpenInputFile(file, std::ios::binary);
  if (!stream) {
    NoSuchFile(file);
    return false;
  }
  std::array<char, kHeaderSize> header{};
  stream.read(header.data(), kSignatureSize);
  if (!stream || std::memcmp(header.data(), kSignature, kSignatureSize) != 0) {
    AfxMessageBox(("file '" + std::string(file) + "' is not an idrisi file").c_str());
    return false;
  }
  stream.read(header.data() + kSignatureSize, kHeaderSize - kSignatureSize);
  int const first = static_cast<unsigned char>(header[kFirstIndexAt]);
  int const last = static_cast<unsigned char>(header[kLastIndexAt]);

  palette.clear();
  // No index is above 255, so what lies behind that many entries is passed over unread.
  for (int i = 0; stream && i <= last; ++i) {
    std::array<char, 3> entry{};
    if (!stream.read(entry.data(), entry.size()) || i < first) continue;
    auto const channel = [&entry](std::size_t at) {
      return static_cast<unsigned long>(static_cast<unsigned char>(entry[at]));
    };
    palette.push_back(channel(2) << 16 | channel(1) << 8 | channel(0));
  }
  return static_cast<int>(palette.size()) <= last - first + 1;
}

bool WriteIdrisiPalette(char const *file, std::vector<unsigned long> &palette) {
  std::ofstream stream(SystemPath(file), std::ios::binary);
  if (!stream) {
    CannotCreateFile(file);
    return false;
  }
  std::string bytes(kSignature);
  bytes.append({'\x01', '\x0A', '\x08', '\x12', '\xFF', '\x00'});
  bytes.append({'\0', '\0', static_cast<char>(palette.size() - 1), '\0'});
  for (unsigned long const color : palette)
    for (int shift : {0, 8, 16}) bytes += static_cast<char>(color >> shift & 0xFF);
  bytes.resize(std::max(bytes.size(), kHeaderSize + 3 * kFullPalette));
  stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return true;
}
