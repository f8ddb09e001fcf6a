#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "apps/canvas.h"
#include "apps/commands.h"
#include "apps/console.h"
#include "apps/files.h"
#include "apps/pixel_files.h"
#include "apps/table_file.h"

namespace {

constexpr int kAsciiGrid = 1;

// A legend that does not exist would be made on first use; a program that only draws asks for one
// that is there.
void RequireLegend(std::string const &helpDirectory, std::string const &name) {
  std::filesystem::path const folder = std::filesystem::path(helpDirectory) / "Legends";
  if (!std::filesystem::exists(SystemPath((folder / (name + ".txt")).string())))
    throw Failure("there is no legend '" + name + "' in '" + folder.string() + "'");
}

CRect WholeOf(CMultiScaleFloatMatrix const &raster) {
  CRect whole;
  whole.right = raster.NCols() - 1;
  whole.bottom = raster.NRows() - 1;
  return whole;
}

bool IsPng(std::string const &picture) {
  std::string const ending = EndingOf(picture);
  if (ending != ".bmp" && ending != ".png")
    throw BadArguments("'" + picture + "' ends in neither .bmp nor .png");
  return ending == ".png";
}

// The library draws bitmaps only: a PNG is made of one.
void WritePng(std::string const &bitmap, std::string const &picture) {
  std::string const bytes = PngBytes(PictureOfBitmap(BytesOf(bitmap)));
  errno = 0;
  std::ofstream stream(SystemPath(picture), std::ios::binary);
  stream << bytes;
  stream.close();
  if (!stream) throw Failure("cannot write '" + picture + "': " + std::strerror(errno));
}

}  // namespace

void Draw(DrawOptions const &options) {
  bool const isPng = IsPng(options.picture);
  std::string const helpDirectory = HelpDirectory(options.helpDirectory);
  RequireGrid(options.grid);
  RequireOtherFile(options.grid, options.picture);
  RequireLegend(helpDirectory, options.legend);

  Console const console(helpDirectory);
  Progress progress(2);
  DefaultFineResolution(options.fine);
  CMultiScaleFloatMatrix raster;
  CFloatMatrixBaseMap map;
  // The legend of a bitmap is found by the map's base name, so both legends are the same file.
  map.Attach(options.legend.c_str(), options.grid.c_str(), &raster,
             (options.legend + ".txt").c_str(), false);

  progress.Step("reading " + options.grid);
  int const read = map.OnFileImport(options.grid.c_str(), kAsciiGrid);
  console.ThrowIfBoxShown(options.grid);
  long long const cells = static_cast<long long>(raster.NRows()) * raster.NCols();
  if (!HasCells(raster.NRows(), raster.NCols()) ||
      (read == 0 && !GridIsComplete(options.grid, cells)))
    throw Failure("'" + options.grid + "' ends before its last cell");

  progress.Step("drawing " + options.picture);
  map.GetCellColor(0, 0);  // the map takes its size from the raster when a draw begins
  auto const drawTo = [&](std::string const &bitmap) {
    int const drawn =
        map.WriteBitmap(bitmap.c_str(), options.zoom, WholeOf(raster), options.stamp.c_str());
    console.ThrowIfBoxShown(bitmap);
    if (drawn == 0) throw Failure("cannot write '" + bitmap + "'");
  };
  if (!isPng) return drawTo(options.picture);
  ScratchFile const scratch;
  drawTo(scratch.Path());
  scratch.RequireRoom();
  WritePng(scratch.Path(), options.picture);
}
