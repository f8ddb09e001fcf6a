// The one way to a message box: every box of the library is shown through these two.
//
//   ShowMessageBox(report.c_str(), "Error: Cannot open file");
//   AfxMessageBox("file 'x' is not an idrisi file");
//
// A box blocks until it is dismissed and changes nothing in the flow.

#pragma once

/// A box with a title of its own, plain OK style unless told otherwise.
void ShowMessageBox(char const *text, char const *title, unsigned int type = 0);

/// A box titled with the application's name.
void AfxMessageBox(char const *text, unsigned int type = 0, unsigned int helpId = 0);
