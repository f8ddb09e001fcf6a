// Operations over a whole raster, and the two defaults that every later Redim follows.
//
//   CMultiScaleByteMatrix pattern;               // its fine blocks are the pattern, values mean nothing
//   DefaultFineResolution(8);                    // what readers of rasters pass to Redim
//   DefaultResolutionMap(&pattern);              // kept by the caller; clear it before it goes
//   MultiScaleFloatMatrixEvalMapFunc(raster, function);
//   UpdateResolutionOfMap(raster, pattern, 8);   // after the pattern has changed
//
// The walks go block by block: a coarse block costs one step, a fine one W x W steps, so the time
// is that of the stored values. Nothing here tests that two rasters fit each other; cells that one
// of them does not have are passed over. Nothing is reported.

#pragma once

#include <quillaven/platform/api.h>
#include <quillaven/raster/multiscale_matrix.h>

/// A function of a cell's place, for the application to derive from. Eval may change the object.
template <class T>
class CMapFunc {
 public:
  CMapFunc() = default;
  CMapFunc(CMapFunc const &) = default;
  CMapFunc &operator=(CMapFunc const &) = default;
  virtual ~CMapFunc() = default;
  /// The new value of the cell at (row, col).
  virtual T Eval(int row, int col) = 0;
};

using CFloatMapFunc = CMapFunc<float>;
using CShortMapFunc = CMapFunc<short>;
using CByteMapFunc = CMapFunc<unsigned char>;

/// The resolution that readers of rasters pass to Redim: 1 until it is set. The value is not
/// tested.
QUILLAVEN_API int DefaultFineResolution();
QUILLAVEN_API void DefaultFineResolution(int resolution);

/// The raster whose fine blocks every later Redim with a resolution of 2 or more reproduces; null
/// for none. It must have that resolution, and live as long as it is set.
QUILLAVEN_API void DefaultResolutionMap(CMultiScaleByteMatrix *map);

/// Brings each block of `map` to the scale that it has in `resMap`, both of W = `resolution`. A
/// block that becomes coarse keeps the value of its middle cell, which in a ragged block is the
/// middle of what lies inside the raster. Nothing happens with a resolution below 2.
QUILLAVEN_API void UpdateResolutionOfMap(CMultiScaleFloatMatrix &map, CMultiScaleByteMatrix &resMap,
                                         int resolution);
QUILLAVEN_API void UpdateResolutionOfMap(CMultiScaleShortMatrix &map, CMultiScaleByteMatrix &resMap,
                                         int resolution);
QUILLAVEN_API void UpdateResolutionOfMap(CMultiScaleByteMatrix &map, CMultiScaleByteMatrix &resMap,
                                         int resolution);

/// Copies values; the scales of the destination stay, and its W may differ from the source's. A
/// coarse block takes one sample: the middle cell, or in a ragged block whose middle lies outside
/// the raster the middle of the remainder. (UpdateResolutionOfMap takes another cell in a ragged
/// block that is filled more than half. Both are meant.)
QUILLAVEN_API void CopyMultiScaleFloatMatrix(CMultiScaleFloatMatrix &destination,
                                             CMultiScaleFloatMatrix const &source);
QUILLAVEN_API void CopyMultiScaleByteMatrix(CMultiScaleByteMatrix &destination,
                                            CMultiScaleByteMatrix const &source);
/// The same from a plain matrix at the full resolution.
QUILLAVEN_API void CopyMultiScaleByteMatrix(CMultiScaleByteMatrix &destination,
                                            CSmartIOByteMatrix const &source);

/// Sets every addressable cell. What a fine block stores beyond the raster's edge stays.
QUILLAVEN_API void AssignMultiScaleFloatMatrix(CMultiScaleFloatMatrix &matrix, float value);
QUILLAVEN_API void AssignMultiScaleByteMatrix(CMultiScaleByteMatrix &matrix, unsigned char value);

/// Sets every cell to the function's value for it, block by block in row order, a fine block in
/// rows then columns. A coarse block is evaluated once, at its top left cell.
QUILLAVEN_API void MultiScaleFloatMatrixEvalMapFunc(CMultiScaleFloatMatrix &matrix,
                                                    CFloatMapFunc &function);
QUILLAVEN_API void MultiScaleShortMatrixEvalMapFunc(CMultiScaleShortMatrix &matrix,
                                                    CShortMapFunc &function);
QUILLAVEN_API void MultiScaleByteMatrixEvalMapFunc(CMultiScaleByteMatrix &matrix,
                                                   CByteMapFunc &function);
