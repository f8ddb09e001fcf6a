// A command line as the words that a program is given.
//
//   SplitCommandLine("\"C:\\My tools\\sim.exe\" -n 3 \"a b\"")   // C:\My tools\sim.exe, -n, 3, a b
//
// The rules are those by which Windows programs split the one text that they are started with, so
// that a command line means the same on every machine.

#pragma once

#include <string>
#include <vector>

/// The words of a command line; none for a text of blanks. Blanks and tabs part words, and double
/// quotes hold them together; one that is not closed holds to the end of the text.
///
/// The first word is the program: one with a blank in its path must be quoted, as nothing is tried
/// out on the file system. A backslash in it is only a backslash. In the others 2n backslashes
/// before a quote are n of them and the quote, 2n + 1 are n of them and a quote that is text;
/// elsewhere a backslash is only a backslash. Two quotes within quotes are one that is text.
std::vector<std::string> SplitCommandLine(char const *line);
