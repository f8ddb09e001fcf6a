// The resolution map in force for every Redim.

#pragma once

#include <quillaven/raster/multiscale_matrix.h>

/// Null when none is set.
CMultiScaleByteMatrix const *DefaultResolutionMapInForce();
