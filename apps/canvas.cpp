#include "apps/canvas.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "apps/console.h"
#include "apps/pixel_files.h"

namespace {

constexpr double kDotRadius = 3.5;

std::string Number(double number) {
  return lftostr("%.2f", number);
}

std::string ColorText(unsigned int color) {
  char text[8];
  std::snprintf(text, sizeof text, "#%06x", color & 0xFFFFFFU);
  return text;
}

// Single-byte characters as XML takes them.
std::string Escaped(std::string const &text) {
  std::string escaped;
  for (char const c : text) {
    auto const code = static_cast<unsigned char>(c);
    if (code < 32) {
      escaped += ' ';
    } else if (code > 126 || std::strchr("<>&\"", c) != nullptr) {
      escaped += "&#" + itostr("%d", code) + ";";
    } else {
      escaped += c;
    }
  }
  return escaped;
}

class VectorCanvas : public Canvas {
 public:
  VectorCanvas(int width, int height) {
    std::string const size = itostr("width=\"%d\" ", width) + itostr("height=\"%d\"", height);
    m_Elements = "<svg xmlns=\"http://www.w3.org/2000/svg\" " + size +
                 " font-family=\"sans-serif\" font-size=\"12\">\n"
                 "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n";
  }

  void Line(Place from, Place to, unsigned int color) override {
    m_Elements += "<line x1=\"" + Number(from.x) + "\" y1=\"" + Number(from.y) + "\" x2=\"" +
                  Number(to.x) + "\" y2=\"" + Number(to.y) + "\" stroke=\"" + ColorText(color) +
                  "\"/>\n";
  }
  void Curve(std::vector<Place> const &places, unsigned int color) override {
    m_Elements +=
        "<polyline fill=\"none\" stroke-width=\"2\" stroke=\"" + ColorText(color) + "\" points=\"";
    for (Place const &place : places) m_Elements += Number(place.x) + "," + Number(place.y) + " ";
    m_Elements += "\"/>\n";
  }
  void Dot(Place centre, unsigned int color) override {
    m_Elements += "<circle cx=\"" + Number(centre.x) + "\" cy=\"" + Number(centre.y) + "\" r=\"" +
                  Number(kDotRadius) + "\" fill=\"" + ColorText(color) + "\"/>\n";
  }
  void Text(Place base, Anchor anchor, std::string const &text) override {
    char const *const anchors[] = {"start", "middle", "end"};
    m_Elements += "<text x=\"" + Number(base.x) + "\" y=\"" + Number(base.y) + "\" text-anchor=\"" +
                  anchors[static_cast<int>(anchor)] + "\">" + Escaped(text) + "</text>\n";
  }
  std::string Bytes() const override { return m_Elements + "</svg>\n"; }

 private:
  std::string m_Elements;
};

class PixelCanvas : public Canvas {
 public:
  using Encode = std::string (*)(PixelPicture const &);
  PixelCanvas(int width, int height, Encode encode) : m_Picture(width, height), m_Encode(encode) {}

  void Line(Place from, Place to, unsigned int color) override { Stroke(from, to, 1, color); }
  void Curve(std::vector<Place> const &places, unsigned int color) override {
    for (std::size_t i = 1; i < places.size(); ++i) Stroke(places[i - 1], places[i], 2, color);
  }
  void Dot(Place centre, unsigned int color) override {
    for (int y = -4; y <= 4; ++y)
      for (int x = -4; x <= 4; ++x)
        if (std::hypot(x, y) <= kDotRadius)
          Set(std::round(centre.x) + x, std::round(centre.y) + y, color);
  }
  void Text(Place base, Anchor anchor, std::string const &text) override {
    if (text.empty()) return;
    CStampImage const image = GetApplication().MakeStamp(text.c_str());
    double const left = base.x - image.width * 0.5 * static_cast<int>(anchor);
    double const top = base.y - image.height;
    for (int y = 0; y < image.height; ++y)
      for (int x = 0; x < image.width; ++x)
        if (image.letters[static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width) +
                          static_cast<std::size_t>(x)] != 0)
          Set(left + x, top + y, kBlack);
  }
  std::string Bytes() const override { return m_Encode(m_Picture); }

 private:
  void Set(double x, double y, unsigned int color) {
    if (x >= 0 && x < m_Picture.width && y >= 0 && y < m_Picture.height)
      m_Picture.At(static_cast<int>(x), static_cast<int>(y)) = color;
  }
  // One square of pixels for each step along the longer side.
  void Stroke(Place from, Place to, int width, unsigned int color) {
    double const length = std::max(std::fabs(to.x - from.x), std::fabs(to.y - from.y));
    if (!std::isfinite(length)) return;
    int const steps = std::max(1, static_cast<int>(std::ceil(length)));
    for (int i = 0; i <= steps; ++i) {
      double const part = static_cast<double>(i) / steps;
      double const x = std::round(from.x + part * (to.x - from.x));
      double const y = std::round(from.y + part * (to.y - from.y));
      for (int dy = 0; dy < width; ++dy)
        for (int dx = 0; dx < width; ++dx) Set(x + dx, y + dy, color);
    }
  }

  PixelPicture m_Picture;
  Encode m_Encode;
};

}  // namespace

void Canvas::Save(std::string const &file) const {
  errno = 0;
  std::ofstream stream(SystemPath(file), std::ios::binary);
  stream << Bytes();
  stream.close();
  if (!stream) throw Failure("cannot write '" + file + "': " + std::strerror(errno));
}

std::string EndingOf(std::string const &file) {
  std::string ending = std::filesystem::path(file).extension().string();
  for (char &c : ending)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
  return ending;
}

std::unique_ptr<Canvas> MakeCanvas(std::string const &file, int width, int height) {
  std::string const ending = EndingOf(file);
  if (ending == ".svg") return std::make_unique<VectorCanvas>(width, height);
  if (ending == ".bmp") return std::make_unique<PixelCanvas>(width, height, BmpBytes);
  if (ending == ".png") return std::make_unique<PixelCanvas>(width, height, PngBytes);
  throw BadArguments("'" + file + "' ends in none of .svg, .bmp and .png");
}
