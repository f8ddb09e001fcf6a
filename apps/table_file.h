// Function tables in files, of either form.
//
//   TableInFile const found = ReadTable("tables.txt", 2);
//   WriteTextFile("copy.txt", [&](CStdioFile &out) { CSpline(found.table).OnWrite2(out); });

#pragma once

#include <functional>
#include <string>

#include "apps/console.h"

struct TableInFile {
  CSpline table;
  bool tagged = false;
  int number = 0;       // in the brackets of a table in tagged form
  long long begin = 0;  // the bytes of its lines
  long long end = 0;
};

/// The n-th table of a file, counted from 1. Throws a Failure if there is none.
TableInFile ReadTable(std::string const &file, int n);

/// Makes a file with what is written; throws a Failure that names it and the system's reason.
void WriteTextFile(std::string const &file, std::function<void(CStdioFile &)> const &write);
