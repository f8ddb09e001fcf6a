// An application around the library: where boxes go, and a spreadsheet that is a table of this program.

#include <cstdio>
#include <map>
#include <string>

#include <quillaven/platform/application.h>
#include <quillaven/runtime/new_handler.h>
#include <quillaven/runtime/process.h>
#include <quillaven/spreadsheet/transport.h>
#include <quillaven/spreadsheet/xllink.h>

namespace {

// A program without a screen: each box is a line of its log.
class CLogApplication : public CApplication {
 public:
  int DoMessageBox(char const *text, char const *title, unsigned int /*type*/,
                   unsigned int /*helpId*/) override {
    std::printf("box \"%s\": %s\n", title, text);
    ++boxes;
    return 1;
  }
  int boxes = 0;
};

// A spreadsheet with one sheet, whose cells are kept by name.
class CTableTransport : public CSpreadsheetTransport {
 public:
  bool Start() override { return true; }
  bool Connect(char const * /*service*/, char const *topic) override {
    return std::string(topic) == "Results";
  }
  bool Poke(char const *item, void const *data, unsigned long bytes,
            unsigned int /*timeoutMs*/) override {
    cells[item].assign(static_cast<char const *>(data), bytes - 1);  // the zero byte is counted
    return true;
  }
  void Disconnect() override {}
  void Stop() override {}

  std::map<std::string, std::string> cells;
};

// A program that is not there is told in a box, and thrown.
bool TellsOfAMissingProgram() {
  try {
    WinExecAndWait("no-such-model -year 1990", 0);
  } catch (std::string const &text) {
    return text == "Cannot execute no-such-model -year 1990";
  }
  return false;
}

}  // namespace

int main() {
  CLogApplication application;
  CTableTransport spreadsheet;
  SetApplication(&application);
  SetSpreadsheetTransport(&spreadsheet);

  CheckMemoryAvailable(1000000, "Land use model");  // ends the program if that is not there
  bool const told = TellsOfAMissingProgram();
  XLLINK::excel_data("Results", "R1C1", "0.75");
  XLLINK::excel_data("Other", "R1C1", "0.5");  // not open: a box

  SetSpreadsheetTransport(nullptr);  // both objects end before the library
  SetApplication(nullptr);
  std::printf("R1C1 is %s after %d boxes\n", spreadsheet.cells["R1C1"].c_str(), application.boxes);
  return told && spreadsheet.cells["R1C1"] == "0.75" && application.boxes == 2 ? 0 : 1;
}
