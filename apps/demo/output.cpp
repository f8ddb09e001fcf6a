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

std::string AsHtml(std::string const &text) {
  std::string html;
  for (char const c : text)
    html += c == '<' ? "&lt;" : c == '>' ? "&gt;" : c == '&' ? "&amp;" : std::string(1, c);
  return html;
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
figure { margin: 0; max-width: 23rem; }
figure img { max-width: 100%; max-height: 34rem; border: 1px solid #ddd; display: block; }
figure:has(img[src$=".svg"]) { max-width: 34rem; }
figcaption { font-size: .85rem; color: #555; margin-top: .3rem; max-width: 24rem; }
.key { display: flex; flex-wrap: wrap; gap: .3rem 1.2rem; padding: 0; max-width: 60rem; font-size: .85rem; }
.key li { list-style: none; }
.key i { display: inline-block; width: 1rem; height: .8rem; margin-right: .4rem; border: 1px solid #999; }
ol { max-width: 46rem; line-height: 1.45; }
table { border-collapse: collapse; margin: 1rem 0; font-size: .85rem; font-variant-numeric: tabular-nums; }
th, td { text-align: right; padding: .2rem .9rem; border-bottom: 1px solid #e2e2e2; }
th:first-child, td:first-child { text-align: left; padding-left: 0; }
pre { max-height: 11rem; overflow: auto; max-width: 46rem; background: #f6f6f6; padding: .6rem; font-size: .75rem; }
footer { margin: 3rem 0; font-size: .85rem; color: #555; }
</style>
</head>
<body>
<h1>A country through the years</h1>
<p>QuillavenLib is the common base of programs that simulate how a country changes: maps of cells that are
detailed only where it matters, a network of roads that differs from year to year, function tables for the
rules, and the files to exchange all of it. This page was written by its demo, over the public interface
alone.</p>
<p><strong>The map is real, the years are invented.</strong> Land use, roads and railways are those of
Liechtenstein in OpenStreetMap on 3 August 2013. The years that the pictures carry, the changes of the
network and the growth of settlements are an example, not history and not a forecast.</p>
)";

constexpr char kPageFoot[] =
    "<footer>Land use, roads and railways (c) OpenStreetMap contributors, ODbL 1.0 "
    "(openstreetmap.org/copyright), map of 2013-08-03. All years and changes on this page are "
    "invented.</footer>\n"
    "<script>\n"
    "addEventListener('load', () => {\n"
    "  const pictures = [...document.images];\n"
    "  const loaded = pictures.filter(picture => picture.naturalWidth > 0).length;\n"
    "  document.body.dataset.height = document.documentElement.scrollHeight;\n"
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

PixelPicture Output::Draw(CByteMatrixBaseMap &map, std::string const &name, int zoom, CRect part,
                          std::string const &stamp) {
  std::string const file = Add(name + ".bmp");
  if (map.WriteBitmap(file.c_str(), zoom, part, stamp.c_str()) == 0)
    throw Failure("cannot write '" + file + "'");
  return PictureOfBitmap(ReadBytes(file));
}

void Output::AddPicture(PixelPicture const &picture, std::string const &name,
                        std::string const &caption) {
  WriteBytes(Add(name + ".png"), PngBytes(picture));
  if (!caption.empty()) Show(name + ".png", caption);
}

void Output::Chapter(std::string const &title, std::string const &text) {
  m_sections.push_back({title, text, "", ""});
}

void Output::Key(CByteMatrixBaseMap &map) {
  std::string &html = m_sections.back().figures;
  html += "<ul class=\"key\">\n";
  for (int item = 0; item < map.GetLegendItemCount(); ++item) {
    unsigned long const color = map.GetLegendItemColor(item);  // 0x00BBGGRR
    html += "<li><i style=\"background: rgb(" + std::to_string(color & 0xFF) + ", " +
            std::to_string(color >> 8 & 0xFF) + ", " + std::to_string(color >> 16 & 0xFF) +
            ")\"></i>" + AsHtml(map.GetLegendItemName(item)) + "</li>\n";
  }
  html += "</ul>\n";
}

void Output::Lines(std::vector<std::string> const &lines) {
  std::string &html = m_sections.back().figures;
  html += "<ol>\n";
  for (std::string const &line : lines) html += "<li>" + AsHtml(line) + "</li>\n";
  html += "</ol>\n";
}

void Output::Table(std::vector<std::vector<std::string>> const &rows) {
  std::string &html = m_sections.back().figures;
  html += "<table>\n";
  for (std::size_t row = 0; row < rows.size(); ++row) {
    char const *const cell = row == 0 ? "th>" : "td>";
    html += "<tr>";
    for (std::string const &text : rows[row])
      html += std::string("<") + cell + AsHtml(text) + "</" + cell;
    html += "</tr>\n";
  }
  html += "</table>\n";
}

void Output::Text(std::string const &file) {
  std::string text = ReadBytes(file);
  text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
  m_sections.back().figures += "<pre>" + AsHtml(text) + "</pre>\n";
}

void Output::Show(std::string const &file, std::string const &caption) {
  m_sections.back().pictures += "<figure><img src=\"" + file + "\" alt=\"" + AsHtml(caption) +
                                "\"><figcaption>" + AsHtml(caption) + "</figcaption></figure>\n";
}

void Output::WritePage() {
  std::string page = kPageHead;
  for (Section const &section : m_sections)
    page += "<h2>" + section.title + "</h2>\n<p>" + section.text + "</p>\n" + section.figures +
            "<div class=\"row\">\n" + section.pictures + "</div>\n";
  WriteBytes(Add("index.html"), page + kPageFoot);
}

void Output::Print() const {
  std::printf("\nFiles written:\n");
  for (std::string const &file : m_files) std::printf("  %s\n", file.c_str());
  std::printf("\nOpen this page in a browser: %s\n",
              std::filesystem::absolute(m_files.back()).lexically_normal().string().c_str());
}
