#include <quillaven/editor/spline_icon_internal.h>

namespace {

constexpr int kSize = 32;

// A curve with three handles, of which one is selected, over two axes.
constexpr char kPicture[] =
    "                                "
    "                                "
    "  ############################  "
    "  #....r.....................#  "
    "  #....r.....................#  "
    "  #....r.....................#  "
    "  #....r.....................#  "
    "  #....r.....................#  "
    "  #....r.....###.............#  "
    "  #....r....#RRR#bbbb........#  "
    "  #....r....#RRR#bbbbbb......#  "
    "  #....r....#RRR#...bbbb.....#  "
    "  #....r...bb###......bbb....#  "
    "  #....r..bbb..........bb###.#  "
    "  #....r..bb............#...##  "
    "  #....r.bb.............#...##  "
    "  #....rbbb.............#...##  "
    "  #....rbb...............###.#  "
    "  #....bb....................#  "
    "  #rrrrbbrrrrrrrrrrrrrrrrrrrr#  "
    "  #...bb.....................#  "
    "  #.###b.....................#  "
    "  ##...#.....................#  "
    "  ##...#.....................#  "
    "  ##...#.....................#  "
    "  #.###r.....................#  "
    "  #....r.....................#  "
    "  #....r.....................#  "
    "  #....r.....................#  "
    "  ############################  "
    "                                "
    "                                ";
static_assert(sizeof kPicture == kSize * kSize + 1);

unsigned long ColourOf(char letter) {
  switch (letter) {
    case '#':
      return 0x404040;
    case '.':
      return 0xFFFFFF;
    case 'r':
      return 0x8080FF;
    case 'R':
      return 0x0000FF;
    case 'b':
      return 0xFF0000;
    default:
      return CIcon::kTransparent;
  }
}

CIcon Draw() {
  CIcon icon{kSize, kSize, {}};
  for (int i = 0; i < kSize * kSize; ++i) icon.pixels.push_back(ColourOf(kPicture[i]));
  return icon;
}

}  // namespace

CIcon const &SplineIcon() {
  static CIcon const icon = Draw();
  return icon;
}
