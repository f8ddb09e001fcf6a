#include <filesystem>

#include "apps/commands.h"
#include "apps/console.h"
#include "apps/files.h"

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

}  // namespace

void Draw(DrawOptions const &options) {
  std::string const helpDirectory = HelpDirectory(options.helpDirectory);
  RequireGrid(options.grid);
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
  console.ThrowIfBoxShown();
  long long const cells = static_cast<long long>(raster.NRows()) * raster.NCols();
  if (!HasCells(raster.NRows(), raster.NCols()) ||
      (read == 0 && !GridIsComplete(options.grid, cells)))
    throw Failure("'" + options.grid + "' ends before its last cell");

  progress.Step("drawing " + options.picture);
  map.GetCellColor(0, 0);  // the map takes its size from the raster when a draw begins
  int const drawn = map.WriteBitmap(options.picture.c_str(), options.zoom, WholeOf(raster),
                                    options.stamp.c_str());
  console.ThrowIfBoxShown();
  if (drawn == 0) throw Failure("cannot write '" + options.picture + "'");
}
