// Function tables in files, of either form.
//
//   TableInFile found = ReadTable("tables.txt", 2);
//   found.table.Add(1, 2);
//   std::string const bytes = found.before + TextOfTable(found) + found.behind;

#pragma once

#include <functional>
#include <string>

#include "apps/console.h"

struct TableInFile {
  CSpline table;
  bool tagged = false;
  int promised = 0;     // the number of points that the file tells; more or less may be read
  bool cut = false;     // a line is longer than is read
  std::string header;   // the first line of a table in tagged form, as it stands
  std::string lineEnd;  // "\n" or "\r\n"
  std::string before;   // the bytes of the file around the table
  std::string behind;
};

/// The n-th table of a file, counted from 1. Throws a Failure if there is none.
TableInFile ReadTable(std::string const &file, int n);

/// The lines of a table as they belong between `before` and `behind`: in the form, under the header
/// line and with the line ends that it was read with.
std::string TextOfTable(TableInFile &found);

/// Whether a line is longer than a table in tagged form is read.
bool HasLongLine(std::string const &lines);

/// Tells in one line on standard error what a table loses in compact form: a spline, and limits of x that
/// are not those of its points. Nothing where it loses neither.
void WarnOfCompactForm(std::string const &file, CSpline &table);

std::string BytesOf(std::string const &file);

/// Makes a file with what is written; throws a Failure that names it and the system's reason.
void WriteTextFile(std::string const &file, std::function<void(CStdioFile &)> const &write);
