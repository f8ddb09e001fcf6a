// The stamp of a bitmap as this machine draws it: by its graphics system, or in the built-in font.

#pragma once

#include <quillaven/platform/application.h>

/// The text in one line, black on white, the image just as large as the text. An empty text gives an
/// image of width 0.
CStampImage DrawSystemStamp(char const *text);
