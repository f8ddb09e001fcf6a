#include <vector>

#include <quillaven/platform/copy_file_internal.h>
#include <quillaven/platform/existing_file_internal.h>
#include <quillaven/platform/new_file_internal.h>

bool CopyOneFile(char const *from, char const *to) {
  ExistingFile source(from);
  if (!source.IsOpen()) return false;
  NewFile target(to);
  if (!target.IsOpen()) return false;
  std::vector<char> piece(1U << 16);
  for (;;) {
    std::size_t const arrived = source.Read(piece.data(), piece.size());
    if (source.Failed()) return false;
    if (!target.Write(piece.data(), arrived)) return false;
    if (arrived < piece.size()) return target.Close();
  }
}
