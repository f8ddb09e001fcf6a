// What a virtual display shows, as a picture file that one can open.
//
//   Screenshot const shot = TakeScreenshot("tool.png", 0, 0, 640, 480);
//   EXPECT_GT(shot.CountOf(0xFF0000), 100);          // 0x00BBGGRR, as everywhere

#pragma once

#include <string>
#include <vector>

struct Screenshot {
  std::vector<unsigned long> pixels;  // 0x00BBGGRR, row by row from the top
  long CountOf(unsigned long colour) const;
};

/// Asks the display itself, not the toolkit, which may remember what was there before. Writes a PNG
/// file.
Screenshot TakeScreenshot(std::string const &file, int x, int y, int width, int height);
