// A dialog's template in the system's own form (DLGTEMPLATEEX), as a resource has it.
//
//   std::vector<unsigned char> const form = BuildForm(dialog);
//   DialogBoxIndirectParamA(module, reinterpret_cast<DLGTEMPLATE const *>(form.data()), ...);

#pragma once

#include <vector>

#include <quillaven/editor/dialog.h>

/// Places that a form cannot hold are held to 16 bits. A dialog with an icon can be minimised.
std::vector<unsigned char> BuildForm(CDialog const &dialog);
