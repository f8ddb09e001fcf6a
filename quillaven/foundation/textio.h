// Lines, fields, numbers and labels of an open text file, and a whole text file as one line.
//
//   char line[81];
//   bool more = GetLine(line, 80, file);              // a last line without LF: false, line filled
//   int count = 0;
//   if (CheckLabel("Points", file) && ReadInt(count, file)) SkipRestOfLine(file);
//   PutLine("Points\n12\n", file);                    // the line feeds are the caller's
//
// A line is a run of bytes ended by LF. CR is an ordinary byte: a file opened as text delivers
// CR LF as LF. Comments and blank lines have no meaning here. Errors of the device pass through as
// the file throws them; nothing else is thrown. Numbers have a point, whatever the locale is.

#pragma once

#include <quillaven/platform/api.h>

class CStdioFile;

/// Reads a line into a buffer of `size` bytes, without its LF. True if an LF ended it; false at the
/// end of the file, and the buffer holds what stood before it: look at it before stopping.
///
/// A line of up to size - 1 bytes comes back whole and terminated. Of a longer one the rest is
/// dropped, the last place of the buffer holds the digit 0 (code 48), and no zero byte is written:
/// the buffer is not terminated. With a size below 1 nothing is written.
QUILLAVEN_API bool GetLine(char *buffer, int size, CStdioFile &file);

/// GetLine with another byte than LF as the end: a field, which may span lines.
QUILLAVEN_API bool ReadStr(char *buffer, int size, CStdioFile &file, char delimiter);

/// Writes the text as it is, and no line end. Always true.
QUILLAVEN_API bool PutLine(char const *text, CStdioFile &file);

/// Reads a number behind any white space, line ends included, and stays right behind it. False,
/// with the value unchanged, at a text that is no number; the file stands at that text.
QUILLAVEN_API bool ReadInt(int &value, CStdioFile &file);
QUILLAVEN_API bool ReadDbl(double &value, CStdioFile &file);

/// Reads behind the next LF. False if the file ends before one.
QUILLAVEN_API bool SkipRestOfLine(CStdioFile &file);

/// Reads a line and compares it with the label, whole and with case. False, after a box that shows
/// both, if it differs; the line is read all the same. The box shows a line with a zero byte up to
/// that byte.
QUILLAVEN_API bool CheckLabel(char const *label, CStdioFile &file);

/// Packs a text file into one line: CR, LF, backslash, TAB and blank become a backslash and r, n, a
/// backslash, t and b. CR LF counts as LF. False, after a box, if the file cannot be opened. A file
/// too long for the buffer is cut off without a word; three bytes of the buffer may stay unused.
QUILLAVEN_API bool FileToLine(char const *name, char *buffer, int size);

/// Unpacks such a line into a file, which is made anew. A backslash and any other letter give that
/// letter; a backslash at the end gives nothing. False, after a box that says "open" even though it
/// is a write, if the file cannot be opened.
QUILLAVEN_API bool LineToFile(char const *line, char const *name);
