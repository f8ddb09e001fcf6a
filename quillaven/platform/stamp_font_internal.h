// The built-in stamp font: a fixed bitmap font of printable ASCII, for bitmaps stamped without a
// graphics system.

#pragma once

#include <quillaven/platform/application.h>

/// The text in one line of fixed cells, with one column and one row of background around it; an
/// empty text gives an image of width 0. Bytes that are not printable ASCII show as a box.
CStampImage DrawWithBuiltInFont(char const *text);
