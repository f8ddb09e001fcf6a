// The demo: one story over all subsystems, told chapter by chapter.

#include "apps/commands.h"
#include "apps/demo/story.h"
#include "apps/files.h"

void Demo(DemoOptions const &options) {
  constexpr int kSteps = 32;
  std::string const data = HelpDirectory("");
  RequireGrid(data + "/liechtenstein/landuse.asc");
  Console const console(data);
  Output output(options.out);
  Progress progress(kSteps);

  TellLandUse(data, output, progress);
  console.ThrowIfBoxShown();
  std::string const networkYears = TellRoads(data, output, progress);
  console.ThrowIfBoxShown();
  TellGrowth(data, networkYears, options.seed, output, progress);
  console.ThrowIfBoxShown();

  output.WritePage();
  progress.Clear();
  output.Print();
}
