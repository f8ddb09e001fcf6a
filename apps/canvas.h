// A picture that is drawn by lines, dots and texts, as vectors or as pixels.
//
//   auto canvas = MakeCanvas("decay.svg", 800, 500);
//   canvas->Line({60, 20}, {60, 440}, kBlack);
//   canvas->Text({60, 460}, Anchor::middle, "0");
//   canvas->Save("decay.svg");
//
// Places are in pixels from the top left corner.

#pragma once

#include <memory>
#include <string>
#include <vector>

struct Place {
  double x = 0;
  double y = 0;
};

/// A colour as 0xRRGGBB.
constexpr unsigned int kBlack = 0x000000;
constexpr unsigned int kGrey = 0xD8D8D8;
constexpr unsigned int kBlue = 0x1F5FBF;
constexpr unsigned int kRed = 0xC0392B;

/// Which part of a text stands at its place.
enum class Anchor { start, middle, end };

class Canvas {
 public:
  Canvas() = default;
  Canvas(Canvas const &) = delete;
  Canvas &operator=(Canvas const &) = delete;
  virtual ~Canvas() = default;

  virtual void Line(Place from, Place to, unsigned int color) = 0;
  /// A chain of lines, two pixels wide.
  virtual void Curve(std::vector<Place> const &places, unsigned int color) = 0;
  virtual void Dot(Place centre, unsigned int color) = 0;
  /// The text stands on its place, in black.
  virtual void Text(Place base, Anchor anchor, std::string const &text) = 0;
  /// The bytes of the picture's file.
  virtual std::string Bytes() const = 0;

  /// Throws a Failure if the file cannot be written.
  void Save(std::string const &file) const;
};

/// The ending of a file's name in small letters, with its dot.
std::string EndingOf(std::string const &file);

/// A canvas for the kind of picture that the ending of a file tells: .svg, .bmp or .png. Throws
/// BadArguments for any other.
std::unique_ptr<Canvas> MakeCanvas(std::string const &file, int width, int height);
