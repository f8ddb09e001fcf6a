// The commands of the program. Each ends normally or throws a Failure.

#pragma once

#include <string>
#include <vector>

struct DrawOptions {
  std::string grid;
  std::string legend;
  std::string helpDirectory;
  std::string picture;
  std::string stamp;
  int zoom = 1;
  int fine = 1;
};

struct DemoOptions {
  std::string out = "quillaven-demo";
  unsigned seed = 1995;  // of the growth
};

struct TableOptions {
  std::string file;
  int table = 1;
  std::vector<double> questions;
  std::string out;
  std::string form;
};

struct ConvertOptions {
  std::string in;
  std::string out;
  std::string type = "float";
  bool asByte = false;
};

struct ColorOptions {
  int count = 6;
  int saturation = 252;
  int lightness = 126;
  std::vector<int> channels;
  double factor = 0.6;
};

/// Draws a grid through a legend into a picture, a bitmap or a PNG by the ending of its name.
void Draw(DrawOptions const &options);
/// Writes the raster of a file as a file of another kind.
void Convert(ConvertOptions const &options);
/// Prints colours spread over the hues, and a colour made brighter or darker.
void SpreadColors(ColorOptions const &options);
void BrightenColor(ColorOptions const &options);
/// Prints what a file holds.
void Info(std::string const &file);
/// Tells the story of a country: land use at two scales, roads, settlements that grow.
void Demo(DemoOptions const &options);
/// Prints the values of a function table, one a line.
void TableEval(TableOptions const &options);
/// Draws a function table with its points and axes.
void TablePlot(TableOptions const &options);
/// Writes a function table in the other form.
void TableConvert(TableOptions const &options);
/// Shows a function table in a window, and writes it back if the user says so.
void TableEdit(TableOptions const &options);
