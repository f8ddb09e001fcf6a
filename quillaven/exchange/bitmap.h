// Pictures of rasters: uncompressed 8-bit Windows bitmaps, a square of pixels for each cell, with a
// line of text stamped in the top left corner.
//
//   CBitmapLegend legend(true, -9999.0F, 0xFFFFFF);
//   legend.ReadFile("Landuse.txt");
//   WriteBitmap("1990.bmp", raster, 0, 0, raster.NRows(), raster.NCols(), 2, 1990L, legend);
//
// The picture is composed in memory: a byte for each pixel, and one classification for each cell.
// Its palette holds the colours of the legend and, behind them, white and black for the stamp; of a
// legend with more than 254 colours the surplus is shown as the last. docs/formats/bitmap.md tells
// the bytes.
//
// On failure a box titled "Save bitmap" tells the reason, the result is false, and what was written
// of the file stays.

#pragma once

#include <quillaven/legends/bitmap_legend.h>
#include <quillaven/platform/api.h>
#include <quillaven/raster/multiscale_matrix.h>

/// Draws `rows` x `cols` cells from (row0, col0) on, `zoom` pixels along a cell. Cells that the
/// raster does not have are white; sizes below 1 give a picture without pixels.
QUILLAVEN_API bool WriteBitmap(char const *file, CMultiScaleFloatMatrix &raster, long row0,
                               long col0, long rows, long cols, long zoom, char const *stamp,
                               CBitmapLegend &legend);
/// The same, stamped with a number.
QUILLAVEN_API bool WriteBitmap(char const *file, CMultiScaleFloatMatrix &raster, long row0,
                               long col0, long rows, long cols, long zoom, long stamp,
                               CBitmapLegend &legend);
