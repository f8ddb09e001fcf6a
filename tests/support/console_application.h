// Boxes that nobody has to answer, on systems where the built-in application has real ones.
//
//   int main() { ShowBoxesOnTheConsole(); ... }

#pragma once

/// On Windows, puts an application in force that writes boxes to standard error as the built-in one
/// does elsewhere: title and text, a line each. Elsewhere nothing is to be done.
void ShowBoxesOnTheConsole();
