#include <cstdio>
#include <string>
#include <vector>

#include "apps/commands.h"
#include "apps/console.h"
#include "apps/files.h"
#include "apps/raster_files.h"

namespace {

RasterKind RequireKind(std::string const &file) {
  std::optional<RasterKind> const kind = KindOfRaster(file);
  if (!kind) throw BadArguments("'" + file + "' ends in none of .asc, .doc, .img and .qmp");
  return *kind;
}

std::vector<std::string> FilesOf(std::string const &file, RasterKind kind) {
  if (kind != RasterKind::kIdrisi) return {file};
  return {IdrisiDocument(file), IdrisiImage(file)};
}

template <class T>
void ConvertThrough(CMatrixBaseMap<T> &map, CMultiScaleMatrix<T> const &raster,
                    ConvertOptions const &options, Console const &console) {
  Progress progress(2);
  RasterKind const from = RequireKind(options.in);
  RasterKind const to = RequireKind(options.out);
  for (std::string const &in : FilesOf(options.in, from))
    for (std::string const &out : FilesOf(options.out, to)) RequireOtherFile(in, out);
  progress.Step("reading " + options.in);
  LoadRaster(map, options.in, from, console);
  progress.Step("writing " + options.out);
  StoreRaster(map, options.out, to, console);
  progress.Clear();
  std::printf("%d rows, %d columns\n", raster.NRows(), raster.NCols());
}

}  // namespace

void Convert(ConvertOptions const &options) {
  if (options.asByte &&
      (options.type != "float" || KindOfRaster(options.out) != RasterKind::kIdrisi))
    throw BadArguments("--as-byte is for float cells that become an Idrisi pair");
  Console const console(HelpDirectory(""));
  if (options.type == "float") {
    CMultiScaleFloatMatrix raster;
    CFloatMatrixBaseMap map;
    map.Attach("", "", &raster, nullptr, options.asByte);
    ConvertThrough(map, raster, options, console);
  } else if (options.type == "short") {
    CMultiScaleShortMatrix raster;
    CShortMatrixBaseMap map;
    map.Attach("", "", &raster, nullptr);
    ConvertThrough(map, raster, options, console);
  } else {
    CMultiScaleByteMatrix raster;
    CByteMatrixBaseMap map;
    map.Attach("", "", &raster, nullptr);
    ConvertThrough(map, raster, options, console);
  }
}
