// The demo: one story over all subsystems, told chapter by chapter.

#include <string>

#include "apps/commands.h"
#include "apps/console.h"
#include "apps/demo/story.h"
#include "apps/files.h"

namespace {

void TellOtherFiles(Output &output) {
  output.Chapter(
      "7. What else lies beside this page",
      "A bitmap (.bmp) of the name of a picture is what the library itself draws of it. "
      "edited.asc is the map of chapter 2, an ASCII grid, which most geographic software reads. "
      "growth-1994.qmp to growth-2003.qmp are the maps of the years as the library's own programs "
      "store them; \"quillaven convert --type byte\" makes grids of them. growth.doc and "
      "growth.img are the last of these years as an Idrisi pair, for Idrisi. network.bin is the "
      "network, for \"quillaven network\"; network-years.txt and network-years_1990.bin are its "
      "years, for \"quillaven network years\"; network-report.txt is the report above.");
}

}  // namespace

void Demo(DemoOptions const &options) {
  constexpr int kSteps = 32;
  std::string const data = HelpDirectory("");
  RequireGrid(data + "/liechtenstein/landuse.asc");
  Console const console(data);
  Output output(options.out);
  Progress progress(kSteps);

  try {
    TellLandUse(data, output, progress);
    console.ThrowIfBoxShown("");
    std::string const networkYears = TellRoads(data, output, progress);
    console.ThrowIfBoxShown("");
    TellGrowth(data, networkYears, options.seed, output, progress);
    console.ThrowIfBoxShown("");
  } catch (Failure const &failure) {
    // A chapter tells what it could not do, and a box why.
    std::string const what = failure.what();
    if (what.find(console.FirstBox()) != std::string::npos) throw;
    throw Failure(what + ": " + console.FirstBox());
  }

  TellOtherFiles(output);
  output.WritePage();
  progress.Clear();
  output.Print();
}
