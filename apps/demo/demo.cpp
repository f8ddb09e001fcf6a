// The demo: one story over all subsystems, told chapter by chapter.

#include <string>

#include "apps/commands.h"
#include "apps/console.h"
#include "apps/demo/story.h"
#include "apps/files.h"

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

  output.WritePage();
  progress.Clear();
  output.Print();
}
