#include <cerrno>
#include <limits>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <sys/types.h>

#include <quillaven/platform/file_stream_internal.h>

namespace {

// A file as a reader of text sees it: CR LF is LF. Positions count the bytes that are delivered.
struct TextSource {
  explicit TextSource(std::FILE *rawFile) : raw(rawFile) {}
  ~TextSource() { std::fclose(raw); }
  TextSource(TextSource const &) = delete;
  TextSource &operator=(TextSource const &) = delete;

  int Next() {
    int byte = std::getc(raw);
    if (byte != '\r') return byte;
    byte = std::getc(raw);
    if (byte == '\n') return byte;
    if (byte != EOF) std::ungetc(byte, raw);
    return '\r';
  }

  std::FILE *raw;
  off64_t position = 0;
};

ssize_t ReadText(void *cookie, char *buffer, std::size_t size) {
  auto *source = static_cast<TextSource *>(cookie);
  std::size_t count = 0;
  for (int byte = 0; count < size && (byte = source->Next()) != EOF; ++count)
    buffer[count] = static_cast<char>(byte);
  source->position += static_cast<off64_t>(count);
  if (count == 0 && std::ferror(source->raw) != 0) return -1;
  return static_cast<ssize_t>(count);
}

// Goes to a place of the text, or to its end if that comes first. The begin is the only place that
// is known without reading, so a seek reads its way from there.
bool GoTo(TextSource &source, off64_t target) {
  if (target < source.position) {
    if (::fseeko(source.raw, 0, SEEK_SET) != 0) return false;
    source.position = 0;
  }
  while (source.position < target && source.Next() != EOF) ++source.position;
  return true;
}

// What cannot come back must not go to the end to learn where that is: such a seek fails at once.
bool GoToEnd(TextSource &source) {
  return ::ftello(source.raw) >= 0 && GoTo(source, std::numeric_limits<off64_t>::max());
}

// A seek that fails leaves the source where it was.
int SeekText(void *cookie, off64_t *offset, int whence) {
  auto *source = static_cast<TextSource *>(cookie);
  off64_t const before = source->position;
  if (whence == SEEK_END && !GoToEnd(*source)) return -1;
  off64_t target = whence != SEEK_SET ? source->position : 0;
  if (__builtin_add_overflow(target, *offset, &target) || target < 0) {
    GoTo(*source, before);
    errno = EINVAL;
    return -1;
  }
  if (!GoTo(*source, target)) return -1;
  *offset = source->position;
  return 0;
}

int CloseText(void *cookie) {
  delete static_cast<TextSource *>(cookie);
  return 0;
}

bool IsDirectory(std::FILE *file) {
  struct stat status = {};
  return ::fstat(::fileno(file), &status) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace

std::FILE *OpenFileStream(char const *path, char const *mode, bool text) {
  std::FILE *file = std::fopen(path, (std::string(mode) + "e").c_str());
  if (file != nullptr && IsDirectory(file)) {
    std::fclose(file);
    file = nullptr;
    errno = EACCES;
  }
  // What is written needs no change here, and a stream for both keeps its bytes.
  if (file == nullptr || !text || std::string(mode) != "rb") return file;
  auto source = std::make_unique<TextSource>(file);
  std::FILE *stream = ::fopencookie(source.get(), "r", {ReadText, nullptr, SeekText, CloseText});
  if (stream != nullptr) (void)source.release();
  return stream;
}

int SeekStream(std::FILE *stream, long long offset, int whence) {
  return ::fseeko(stream, offset, whence);
}

long long TellStream(std::FILE *stream) {
  return ::ftello(stream);
}
