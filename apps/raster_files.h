// Rasters in files of each kind that the program knows.
//
//   std::optional<RasterKind> const kind = KindOfRaster("relief.doc");   // an Idrisi pair
//   LoadRaster(map, "relief.doc", *kind, console);

#pragma once

#include <optional>
#include <string>

#include "apps/console.h"

enum class RasterKind { kGrid, kIdrisi, kMap };

/// The kind that a file name stands for: .asc a grid, .doc or .img an Idrisi pair, .qmp a map file;
/// nothing for other names.
std::optional<RasterKind> KindOfRaster(std::string const &file);

/// What a map file holds besides its cells.
struct MapHead {
  int rows = 0;
  int cols = 0;
  int items = 0;
  int cellBytes = 0;  // 4, 2 or 1, from the size of the file
};

/// Reads the head of a map file; nothing if the file cannot be one.
std::optional<MapHead> ReadMapHead(std::string const &file);

/// Fills the raster of a map from a file of a kind, or throws a Failure.
template <class T>
void LoadRaster(CMatrixBaseMap<T> &map, std::string const &file, RasterKind kind,
                Console const &console);
/// Writes the raster of a map to a file of a kind, or throws a Failure.
template <class T>
void StoreRaster(CMatrixBaseMap<T> &map, std::string const &file, RasterKind kind,
                 Console const &console);
