// The machine's own message box, for a program that has put no application in force.

#pragma once

/// Shows the box and returns what was pressed (1: OK). Without a screen: title and text on standard
/// error.
int ShowSystemBox(char const *text, char const *title, unsigned int type);
