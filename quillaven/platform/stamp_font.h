// Stamps in a font of the library's own: the same pixels on every machine, for pictures that are
// compared or told apart by their bytes.
//
//   class Batch : public CApplication {
//     CStampImage MakeStamp(char const *text) override { return DrawWithBuiltInFont(text); }
//   };

#pragma once

#include <quillaven/platform/api.h>
#include <quillaven/platform/application.h>

/// The text in one line of fixed cells, 6 pixels wide, with one pixel of background around it: 10
/// pixels high. Bytes that are not printable ASCII show as a box; a text is shown up to 4096 bytes. An
/// empty text, or a null one, gives an image of width 0.
QUILLAVEN_API CStampImage DrawWithBuiltInFont(char const *text);
