#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>

#include "apps/demo/story.h"

namespace {

void WriteBytes(std::string const &file, std::string const &bytes) {
  errno = 0;
  std::ofstream stream(file, std::ios::binary);
  stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  stream.close();
  if (!stream) throw Failure("cannot write '" + file + "': " + std::strerror(errno));
}

std::string ReadBytes(std::string const &file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

// The look of the page. Everything that it shows lies beside it.
constexpr char kPageHead[] = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<title>A country through the years</title>
<style>
body { font-family: sans-serif; max-width: 72rem; margin: 2rem auto; padding: 0 1rem; color: #222; }
h1 { font-weight: 600; }
h2 { margin-top: 2.5rem; border-bottom: 1px solid #ccc; padding-bottom: .3rem; }
p { max-width: 46rem; line-height: 1.45; }
.row { display: flex; flex-wrap: wrap; gap: 1rem; align-items: flex-start; }
figure { margin: 0; }
figure img { max-width: 100%; max-height: 34rem; border: 1px solid #ddd; display: block; }
figcaption { font-size: .85rem; color: #555; margin-top: .3rem; max-width: 24rem; }
footer { margin: 3rem 0; font-size: .85rem; color: #555; }
</style>
</head>
<body>
<h1>A country through the years</h1>
<p>Land use, roads and growing settlements of Liechtenstein, as the demo of QuillavenLib has just worked
them out.</p>
)";

constexpr char kPageFoot[] =
    "<footer>Land use, roads and railways (c) OpenStreetMap contributors, ODbL 1.0 "
    "(openstreetmap.org/copyright). The growth is an example of a rule, not a forecast.</footer>\n"
    "<script>\n"
    "addEventListener('load', () => {\n"
    "  const pictures = [...document.images];\n"
    "  const loaded = pictures.filter(picture => picture.naturalWidth > 0).length;\n"
    "  document.body.dataset.pictures = `${loaded} of ${pictures.length}`;\n"
    "});\n"
    "</script>\n</body>\n</html>\n";

}  // namespace

Output::Output(std::string const &folder) : m_folder(folder) {
  std::error_code error;
  std::filesystem::create_directories(m_folder, error);
  if (error) throw Failure("cannot make folder '" + folder + "': " + error.message());
}

std::string Output::Add(std::string const &name) {
  m_files.push_back((m_folder / name).string());
  return m_files.back();
}

void Output::Draw(CByteMatrixBaseMap &map, std::string const &name, int zoom, CRect part,
                  std::string const &stamp, std::string const &caption) {
  std::string const file = Add(name + ".bmp");
  if (map.WriteBitmap(file.c_str(), zoom, part, stamp.c_str()) == 0)
    throw Failure("cannot write '" + file + "'");
  AddPicture(PictureOfBitmap(ReadBytes(file)), name, caption);
}

void Output::AddPicture(PixelPicture const &picture, std::string const &name,
                        std::string const &caption) {
  WriteBytes(Add(name + ".png"), PngBytes(picture));
  Show(name + ".png", caption);
}

void Output::Chapter(std::string const &title, std::string const &text) {
  m_sections.push_back({title, text, {}});
}

void Output::Show(std::string const &file, std::string const &caption) {
  m_sections.back().pictures.push_back({file, caption});
}

void Output::WritePage() {
  std::string page = kPageHead;
  for (Section const &section : m_sections) {
    page += "<h2>" + section.title + "</h2>\n<p>" + section.text + "</p>\n<div class=\"row\">\n";
    for (Picture const &picture : section.pictures)
      page += "<figure><img src=\"" + picture.name + "\" alt=\"" + picture.caption +
              "\"><figcaption>" + picture.caption + "</figcaption></figure>\n";
    page += "</div>\n";
  }
  WriteBytes(Add("index.html"), page + kPageFoot);
}

void Output::Print() const {
  std::printf("\nFiles written:\n");
  for (std::string const &file : m_files) std::printf("  %s\n", file.c_str());
}
