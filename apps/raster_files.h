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
  int cellBytes = 0;  // 4, 2 or 1, from the size of the file; 0 for a map without cells
};

/// Reads the head of a map file; nothing if the file cannot be one. Throws a Failure if the file
/// cannot be read.
std::optional<MapHead> ReadMapHead(std::string const &file);

/// The two files of an Idrisi pair, by the name of either.
std::string IdrisiDocument(std::string const &file);
std::string IdrisiImage(std::string const &file);

/// Reads the documentation file of an Idrisi pair, or throws a Failure.
CIdrisiImageHeader ReadIdrisiDocument(std::string const &file, Console const &console);

/// Bytes of a cell of a binary image; 0 for an image or a cell of a type that is not read.
int IdrisiCellBytes(CIdrisiImageHeader const &header);

/// Throws a Failure unless the image of an Idrisi pair is there and, if it is of a type that is read,
/// holds all the cells that its documentation tells of.
void RequireIdrisiImage(std::string const &file, CIdrisiImageHeader &header);

/// Fills the raster of a map from a file of a kind, or throws a Failure.
template <class T>
void LoadRaster(CMatrixBaseMap<T> &map, std::string const &file, RasterKind kind,
                Console const &console);
/// Writes the raster of a map to a file of a kind, or throws a Failure.
template <class T>
void StoreRaster(CMatrixBaseMap<T> &map, std::string const &file, RasterKind kind,
                 Console const &console);
