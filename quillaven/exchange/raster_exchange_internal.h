// Rasters to and from files of other programs. The typed maps choose the format; these do the work.

#pragma once

#include <string>

#include <quillaven/raster/multiscale_matrix.h>

/// The position and cell size of a grid file, as text; each holds at most 63 characters.
struct GridTexts {
  std::string xCorner = "0";
  std::string yCorner = "0";
  std::string cellSize = "1";
};

/// Writes a raster as an ASCII grid. False, with no message, if the file cannot be opened; errors
/// of writing are not looked at.
template <class T>
bool ExportAsciiGrid(char const *file, GridTexts const &texts, CMultiScaleMatrix<T> const &raster);

/// Reads an ASCII grid, which shapes the raster and puts the no-data value of the file in force.
/// False, with a box, if the file cannot be opened; false, without one, if its end was met while a
/// number was read.
template <class T>
bool ImportAsciiGrid(char const *file, GridTexts &texts, CMultiScaleMatrix<T> &raster);

/// Writes a raster as an Idrisi pair, NAME.doc and NAME.img with NAME the file name without its
/// extension. The data type is "real", "integer" or "byte". False, with no message, on failure.
template <class T>
bool ExportIdrisi(char const *file, char const *dataType, CMultiScaleMatrix<T> const &raster);

/// Reads an Idrisi pair, which shapes the raster and sets its no-data value from the flag value.
/// False if a file cannot be opened (with a box) or is of no known type, or if the image is too
/// short.
template <class T>
bool ImportIdrisi(char const *file, CMultiScaleMatrix<T> &raster);
