// Pushes data and commands into a spreadsheet that is running, Microsoft Excel.
//
//   if (XLLINK::is_sheet_open("Results.xls")) {
//     XLLINK::excel_data("Results.xls", "R2C3", "0.75");
//     XLLINK::excel_command("[SAVE()]");
//   }
//
// Each function is complete in itself: it starts the link, tries ten times in immediate succession
// to connect, does its one transaction with a time-out of 10 seconds, and closes it all again. There
// is no state between calls and no reading of data back. The spreadsheet has to be running, with the
// sheet open, before a call. Each call costs a whole link with connect and disconnect.
//
// Texts are sent as they stand, with the zero byte at their end: command, cell name and data have
// the form that the spreadsheet expects, in its code page. Failures are boxes of the error style.
// Origin: dynamic data exchange (DDE), through the transport of quillaven/spreadsheet/transport.h.

#pragma once

#include <quillaven/platform/api.h>

namespace XLLINK {

/// Has the spreadsheet execute a command of any length. False only if the link could not be
/// started: a failed connect ("Can't connect to Excel") and a failed transaction show their box and
/// still give true.
QUILLAVEN_API bool excel_command(char const *command);

/// Puts a text of any length into a cell of a sheet. False if the link could not be started or if
/// the name of the sheet or the cell has more than 255 characters, which is tested in that order,
/// before anything is started. A failed connect ("Can't connect to Excel sheet : ...") and a failed
/// transaction show their box and still give true.
QUILLAVEN_API bool excel_data(char const *sheet, char const *cell, char const *data);

/// Whether the spreadsheet runs and has this sheet open. A failed connect shows no box here; a sheet
/// name of more than 255 characters and a link that cannot be started show theirs and give false.
QUILLAVEN_API bool is_sheet_open(char const *sheet);

}  // namespace XLLINK
