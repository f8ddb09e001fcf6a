// The icon of the spline tool: 32 by 32 pixels of 16 colours at most.

#pragma once

#include <quillaven/editor/dialog.h>

CIcon const &SplineIcon();
