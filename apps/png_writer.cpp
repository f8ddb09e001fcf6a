#include "apps/png_writer.h"

#include "apps/console.h"

#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#define STBI_WRITE_NO_STDIO
#include <stb/stb_image_write.h>

std::string EncodePng(int width, int height, std::string const &pixels) {
  std::string bytes;
  auto const append = [](void *context, void *data, int size) {
    static_cast<std::string *>(context)->append(static_cast<char const *>(data),
                                                static_cast<std::size_t>(size));
  };
  if (stbi_write_png_to_func(append, &bytes, width, height, 3, pixels.data(), width * 3) == 0)
    throw Failure("a picture could not be encoded");
  return bytes;
}
