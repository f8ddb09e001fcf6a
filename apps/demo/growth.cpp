// The third chapter: settlements that grow from year to year.
//
// The rule. A cell of open land may become residential. Its attraction is the sum over all settled
// cells within 8 cells of a weight by distance, which a function table gives, times what that class
// is worth to a neighbour. The attraction is shaken a little by chance. In the order of what comes
// out, cells within reach of a road or railway are built on, until the year's demand is met; the demand
// comes from a second function table. Where no settlement is near, attraction is 0 throughout, and one
// value for a coarse block says so.

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "apps/commands.h"
#include "apps/demo/story.h"

namespace {

constexpr int kFirstYear = 1995;
constexpr int kLastYear = 2003;
constexpr int kReach = 8;                // cells that a settlement is felt across
constexpr double kReachOfLinks = 250;    // metres from a road or railway
constexpr double kDwellingsOnACell = 6;  // 25 m by 25 m
constexpr unsigned char kResidential = 1;

// The lower left corner and the cell size of the grid, in metres.
constexpr int kWest = 535800;
constexpr int kSouth = 5210600;
constexpr int kCellSize = 25;

// What a neighbour of a class is worth to a dwelling.
float WorthOf(unsigned char value) {
  switch (value) {
    case 1:  // residential
      return 1.0F;
    case 2:  // industry and commerce
      return 0.3F;
    case 3:  // public facilities
      return 0.8F;
    case 4:  // recreation and urban green
      return 0.5F;
    default:
      return 0.0F;
  }
}

bool IsOpenLand(unsigned char value) {
  return value == 0 || (value >= 5 && value <= 7);  // unmapped, arable, vineyard, meadow
}

CSpline ReadTable(std::string const &file) {
  CStdioFile stream;
  CSpline table;
  if (!stream.Open(file.c_str(), CFile::modeRead | CFile::typeText) || !table.OnRead(stream, 1))
    throw Failure("cannot read '" + file + "'");
  return table;
}

// The cells within reach of one, each with its weight by distance.
struct Neighbour {
  int row;
  int col;
  float weight;
};

std::vector<Neighbour> NeighboursByDistance(CSpline &decay) {
  std::vector<Neighbour> neighbours;
  for (int index = 1; index < CSpline::NRoots(); ++index) {
    float const distance = CSpline::Root(index);
    float const weight = decay.Evaluate(distance);
    for (int row = -kReach; row <= kReach; ++row)
      for (int col = -kReach; col <= kReach; ++col)
        // The distances are rounded to four decimals.
        if (std::abs(static_cast<float>(row * row + col * col) - distance * distance) < 0.01F)
          neighbours.push_back({row, col, weight});
  }
  return neighbours;
}

// Attraction, asked once for a coarse block and for each cell of a fine one.
class Attraction : public CFloatMapFunc {
 public:
  Attraction(CMultiScaleByteMatrix const &land, std::vector<Neighbour> const &neighbours)
      : m_land(land), m_neighbours(neighbours) {}

  float Eval(int row, int col) override {
    ++evaluations;
    if (!IsOpenLand(m_land.At(row, col))) return 0;
    float sum = 0;
    for (Neighbour const &neighbour : m_neighbours) {
      unsigned char value = 0;
      if (m_land.GetSave(row + neighbour.row, col + neighbour.col, value))
        sum += WorthOf(value) * neighbour.weight;
    }
    return sum;
  }

  long long evaluations = 0;

 private:
  CMultiScaleByteMatrix const &m_land;
  std::vector<Neighbour> const &m_neighbours;
};

struct Candidate {
  float score;
  int row;
  int col;
};

// Fine blocks where a settled cell stands or is felt: in its block and the ones around.
CMultiScaleByteMatrix PatternOf(CMultiScaleByteMatrix const &land) {
  CMultiScaleByteMatrix pattern;
  pattern.Redim(land.NRows(), land.NCols(), kBlockWidth);
  for (int row = 0; row < land.NRows(); ++row) {
    for (int col = 0; col < land.NCols(); ++col) {
      unsigned char const value = land.At(row, col);
      if (value == kNoDataClass || WorthOf(value) == 0) continue;
      for (int r = row - kBlockWidth; r <= row + kBlockWidth; r += kBlockWidth)
        for (int c = col - kBlockWidth; c <= col + kBlockWidth; c += kBlockWidth)
          pattern.FineCell(r, c, true);  // nothing happens off the raster
    }
  }
  return pattern;
}

// One run of the rule over all years, at one scale or at two.
class Growth {
 public:
  Growth(std::string const &data, std::string const &networkYears, unsigned int seed, int width)
      : m_width(width), m_demand(ReadTable(data + "/tables/demand.txt")), m_random(seed) {
    CSpline decay = ReadTable(data + "/tables/distance-decay.txt");
    m_neighbours = NeighboursByDistance(decay);
    m_network.LoadTemporalDataDefinition(networkYears.c_str(), networkYears.c_str());

    std::string const grid = data + "/liechtenstein/landuse.asc";
    DefaultFineResolution(1);
    CMultiScaleByteMatrix const whole = ReadClasses(grid);
    m_pattern = PatternOf(whole);
    DefaultFineResolution(width);
    DefaultResolutionMap(width > 1 ? &m_pattern : nullptr);
    m_land = ReadClasses(grid);
    m_attraction.Redim(m_land.NRows(), m_land.NCols(), width);
    DefaultResolutionMap(nullptr);
    DefaultFineResolution(1);
  }

  // Lets settlements grow by one year, and returns how many cells were built on.
  int GrowTo(int year) {
    auto const start = std::chrono::steady_clock::now();
    if (!m_network.IsYearLoaded(year) && !m_network.LoadTemporalData(year))
      throw Failure("a file of the network's years ends early");
    if (m_width > 1) RefineWhereSettled();
    Attraction attraction(m_land, m_neighbours);
    MultiScaleFloatMatrixEvalMapFunc(m_attraction, attraction);
    int const built = Build(Candidates(), Demand(year));
    evaluations += attraction.evaluations;
    lastSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    seconds += lastSeconds;
    return built;
  }

  CMultiScaleByteMatrix &Land() { return m_land; }
  CNetwork &Network() { return m_network; }

  long long evaluations = 0;
  double seconds = 0;
  double lastSeconds = 0;  // of the year grown last

  // What the rasters take: the land use, the attraction, and at two scales the pattern of blocks.
  long long CellBytes() {
    long long const pattern = m_width > 1 ? StoredCells(m_pattern) : 0;
    return StoredCells(m_land) + 4 * StoredCells(m_attraction) + pattern;
  }
  long long IndexBytesOfAll() const {
    long long const pattern = m_width > 1 ? IndexBytes(m_pattern) : 0;
    return IndexBytes(m_land) + IndexBytes(m_attraction) + pattern;
  }

 private:
  // Blocks follow the settlements; the cells of a block that is refined begin with its value.
  void RefineWhereSettled() {
    m_pattern = PatternOf(m_land);
    UpdateResolutionOfMap(m_land, m_pattern, m_width);
    UpdateResolutionOfMap(m_attraction, m_pattern, m_width);
  }

  int Demand(int year) {
    auto const x = static_cast<float>(year);
    float const thousands = m_demand.Evaluate(x) - m_demand.Evaluate(x - 1);
    return static_cast<int>(thousands * 1000 / kDwellingsOnACell);
  }

  // Cells with any attraction, the most attractive first. A number of chance is drawn for each cell
  // of the map, so that it does not depend on the scale.
  std::vector<Candidate> Candidates() {
    std::vector<Candidate> candidates;
    for (int row = 0; row < m_land.NRows(); ++row) {
      for (int col = 0; col < m_land.NCols(); ++col) {
        auto const chance = static_cast<float>(m_random() >> 8) / static_cast<float>(1 << 24);
        float const attraction = m_attraction.At(row, col);
        if (attraction > 0 && m_attraction.FineCell(row, col))
          candidates.push_back({attraction * (0.8F + 0.4F * chance), row, col});
      }
    }
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](Candidate const &a, Candidate const &b) { return a.score > b.score; });
    return candidates;
  }

  // In the years that are grown every link is one or the other: what was planned is a road by then.
  bool IsInReachOfALink(int row, int col) {
    int const x = kWest + col * kCellSize + kCellSize / 2;
    int const y = kSouth + (m_land.NRows() - 1 - row) * kCellSize + kCellSize / 2;
    CNetwork::CLink const *link =
        m_network.FindClosestLink(static_cast<unsigned long>(x), static_cast<unsigned long>(y), 0);
    if (link == nullptr) return false;
    CNetwork::CNode const *a = m_network.GetNode(link->from);
    CNetwork::CNode const *b = m_network.GetNode(link->to);
    auto const place = [](CNetwork::CNode const *node) {
      return CPoint{static_cast<int>(node->x), static_cast<int>(node->y)};
    };
    return dPointToLineSegment({x, y}, place(a), place(b)) <= kReachOfLinks;
  }

  int Build(std::vector<Candidate> const &candidates, int demand) {
    int built = 0;
    for (Candidate const &candidate : candidates) {
      if (built == demand) break;
      if (!IsInReachOfALink(candidate.row, candidate.col)) continue;
      m_land.At(candidate.row, candidate.col) = kResidential;
      ++built;
    }
    return built;
  }

  int m_width;
  CSpline m_demand;
  std::mt19937 m_random;
  std::vector<Neighbour> m_neighbours;
  CNetwork m_network;
  CMultiScaleByteMatrix m_pattern;
  CMultiScaleByteMatrix m_land;
  CMultiScaleFloatMatrix m_attraction;
};

void StoreMap(CByteMatrixBaseMap &map, std::string const &file) {
  map.m_nRows = map.NRows();
  map.m_nCols = map.NCols();
  try {
    CFile stream(file.c_str(), CFile::modeWrite | CFile::modeCreate);
    CArchive archive(&stream, CArchive::store);
    map.Serialize(archive);
    archive.Close();
    stream.Close();
  } catch (CFileException const &) {
    throw Failure("'" + file + "' could not be written whole");
  }
}

long long CountClass(CMultiScaleByteMatrix const &raster, unsigned char value) {
  long long count = 0;
  for (int row = 0; row < raster.NRows(); ++row)
    for (int col = 0; col < raster.NCols(); ++col) count += raster.At(row, col) == value;
  return count;
}

// The land use in pale colours, to draw on.
PixelPicture PaleLandUse(CByteMatrixBaseMap &map) {
  PixelPicture picture(map.NCols(), map.NRows());
  for (int row = 0; row < map.NRows(); ++row) {
    for (int col = 0; col < map.NCols(); ++col) {
      unsigned long const color = map.GetCellColor(row, col);  // 0x00BBGGRR
      auto const pale = [color](int shift) {
        return static_cast<unsigned int>(color >> shift & 0xFF) / 2 + 127;
      };
      picture.At(col, row) = pale(0) << 16 | pale(8) << 8 | pale(16);
    }
  }
  return picture;
}

// What was built, from yellow in the first year to dark red in the last.
PixelPicture DrawWhenBuilt(CByteMatrixBaseMap &map,
                           std::vector<CMultiScaleByteMatrix> const &years) {
  PixelPicture picture = PaleLandUse(map);
  auto const last = static_cast<unsigned int>(years.size() - 1);
  for (int row = 0; row < map.NRows(); ++row) {
    for (int col = 0; col < map.NCols(); ++col) {
      unsigned int year = last;
      while (year > 0 && years[year - 1].At(row, col) == kResidential) --year;
      if (year == 0 || years[year].At(row, col) != kResidential) continue;
      unsigned int const age = 220 - 220 * (year - 1) / last;
      picture.At(col, row) = (130 + age / 2) << 16 | age << 8;
    }
  }
  return picture;
}

// A link as a line of dots, SIDE pixels wide.
void DrawLink(PixelPicture &picture, CPoint a, CPoint b, unsigned int color, int side) {
  int const steps = std::max(std::abs(b.x - a.x), std::abs(b.y - a.y)) / kCellSize + 1;
  for (int step = 0; step <= steps; ++step) {
    int const x = a.x + (b.x - a.x) * step / steps - kWest;
    int const y = a.y + (b.y - a.y) * step / steps - kSouth;
    if (x < 0 || y < 0) continue;
    int const left = x / kCellSize;
    int const top = picture.height - 1 - y / kCellSize;
    for (int row = std::max(top, 0); row < std::min(top + side, picture.height); ++row)
      for (int col = left; col < std::min(left + side, picture.width); ++col)
        picture.At(col, row) = color;
  }
}

// Roads in red over paled land use; above them railways in black and what is planned in blue.
PixelPicture DrawNetwork(CByteMatrixBaseMap &map, CNetwork &network) {
  struct Look {
    unsigned int type;
    unsigned int color;
    int side;
  };
  PixelPicture picture = PaleLandUse(map);
  for (Look const look : {Look{2, 0xC0392B, 1}, Look{3, 0x000000, 4}, Look{0, 0x1F5FFF, 6}}) {
    for (unsigned long i = 1; i < network.LinkCount(); ++i) {
      CNetwork::CLink const *link = network.GetLink(i);
      if (CNetwork::IsUnused(link) || link->type != look.type) continue;
      CNetwork::CNode const *a = network.GetNode(link->from);
      CNetwork::CNode const *b = network.GetNode(link->to);
      DrawLink(picture, {static_cast<int>(a->x), static_cast<int>(a->y)},
               {static_cast<int>(b->x), static_cast<int>(b->y)}, look.color, look.side);
    }
  }
  return picture;
}

void TellNetworkYears(CByteMatrixBaseMap &map, CNetwork &network, Output &output) {
  output.Chapter(
      "5. A network that changes from year to year",
      "Roads (red) and railways (black, bold) are one network of nodes and links, joined from "
      "four files and asked for the nearest road or railway of each cell above. A year is stored "
      "as what changes in it, and any year can be loaded, forward and back. The real network "
      "stands for 1990; two changes are invented: in 1995 the planned links (blue) are roads, and "
      "in 2000 the railways are gone. Below is what the report on the network found.");
  std::vector<std::vector<std::string>> rows{{"links in", "planned", "roads", "railways"}};
  for (int const year : {1990, 1995, 2000}) {
    std::string const text = std::to_string(year);
    if (!network.LoadTemporalData(year)) throw Failure("a file of the network's years ends early");
    std::array<int, 256> links{};
    for (unsigned long i = 1; i < network.LinkCount(); ++i)
      if (!CNetwork::IsUnused(network.GetLink(i))) ++links.at(network.GetLink(i)->type);
    rows.push_back(
        {text, std::to_string(links[0]), std::to_string(links[2]), std::to_string(links[3])});
    output.AddPicture(DrawNetwork(map, network), "network-" + text,
                      text + ": " + std::to_string(links[0]) + " planned links, " +
                          std::to_string(links[3]) + " links of railways");
  }
  output.Table(rows);
}

// Cells that differ where the second raster is fine.
long long CountInFineBlocks(CMultiScaleByteMatrix const &one, CMultiScaleByteMatrix &two) {
  long long count = 0;
  for (int row = 0; row < two.NRows(); ++row)
    for (int col = 0; col < two.NCols(); ++col)
      count += one.At(row, col) != two.At(row, col) && two.FineCell(row, col);
  return count;
}

void TellComparison(Growth &two, std::string const &data, std::string const &networkYears,
                    unsigned int seed, Output &output, Progress &progress) {
  progress.Step("preparing one scale");
  Growth one(data, networkYears, seed, 1);
  for (int year = kFirstYear; year <= kLastYear; ++year) {
    progress.Step("growing to " + std::to_string(year) + " at one scale");
    one.GrowTo(year);
  }
  progress.Clear();
  std::printf("\nThe same years at one scale and at two\n");
  output.Chapter(
      "6. Was it worth two scales?",
      "The same years, worked out for every cell and for blocks. Times depend on the machine; "
      "the demo prints them on the terminal. The bytes are those of all rasters of a run: land "
      "use, attraction, and the pattern of fine blocks.");
  std::vector<std::vector<std::string>> rows{
      {"", "evaluations of the rule", "bytes of cells", "bytes of index", "residential cells"}};
  for (Growth *run : {&one, &two}) {
    std::printf(
        "  blocks of %d x %d: %7lld stored cells, %7lld bytes of cells, %6lld of index, "
        "%7lld evaluations, %.2f s\n",
        run->Land().W(), run->Land().W(), StoredCells(run->Land()), run->CellBytes(),
        run->IndexBytesOfAll(), run->evaluations, run->seconds);
    rows.push_back({run == &one ? "at one scale" : "at two scales",
                    std::to_string(run->evaluations), std::to_string(run->CellBytes()),
                    std::to_string(run->IndexBytesOfAll()),
                    std::to_string(CountClass(run->Land(), kResidential))});
  }
  long long const different = CountDifferences(one.Land(), two.Land());
  long long const inFine = CountInFineBlocks(one.Land(), two.Land());
  std::printf(
      "  %lld cells differ, %lld of them in fine blocks; residential cells: %lld and %lld\n",
      different, inFine, CountClass(one.Land(), kResidential),
      CountClass(two.Land(), kResidential));
  output.Table(rows);
  output.Lines({std::to_string(different) +
                    " cells differ in the end, nearly all because a coarse block "
                    "holds one class from the start.",
                "Only " + std::to_string(inFine) +
                    " of them lie in fine blocks, where settlements grow: "
                    "the result that is looked for is nearly the same."});
}

// The part of the country with its largest settlements, for the pictures of the years.
CRect Valley() {
  CRect part;
  part.left = 40;
  part.top = 390;
  part.right = 219;
  part.bottom = 569;
  return part;
}

// What is residential now and was not before, in dark red.
void MarkNew(PixelPicture &picture, CRect part, int zoom, CMultiScaleByteMatrix const &before,
             CMultiScaleByteMatrix const &now) {
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      int const row = part.top + y / zoom;
      int const col = part.left + x / zoom;
      bool const isNew = now.At(row, col) == kResidential && before.At(row, col) != kResidential;
      if (isNew) picture.At(x, y) = 0x8B0000;
    }
  }
}

void TellRule(unsigned int seed, Output &output) {
  output.Chapter("3. Settlements that grow",
                 "Where will people build? The rule is simple, and stands in a file of the demo. "
                 "Seed of the chance: " +
                     std::to_string(seed) + ".");
  output.Lines({
      "Only open land can become residential: fields, meadows, vineyards, and land not mapped. "
      "No other class changes, nor is told of below.",
      "Each cell is drawn to the settled cells within 8 cells (200 m) of it: their worth "
      "(dwellings 1, public facilities 0.8, green 0.5, industry 0.3), weighted by distance through "
      "a function table.",
      "Chance shakes the attraction of a cell by up to a fifth, from a seed, so that a run can be "
      "repeated.",
      "The most attractive cells within 250 m of a road or railway are built on first, six "
      "dwellings to a cell, until the demand of the year is met, which a second function table "
      "tells.",
  });
}

void TellYears(Growth &growth, CByteMatrixBaseMap &map, Output &output, Progress &progress) {
  constexpr int kZoom = 2;
  std::printf("\nSettlements that grow from %d to %d (all other classes stay as they are)\n",
              kFirstYear - 1, kLastYear);
  std::printf(
      "  year   built   residential   not mapped   arable   vineyard   meadow   stored, time\n");
  std::vector<std::vector<std::string>> rows{{"year", "built", "residential", "not mapped",
                                              "arable", "vineyard", "meadow", "stored cells"}};
  std::string const name = "growth-";
  std::vector<CMultiScaleByteMatrix> years;
  for (int year = kFirstYear - 1; year <= kLastYear; ++year) {
    progress.Step("growing to " + std::to_string(year));
    int const built = year < kFirstYear ? 0 : growth.GrowTo(year);
    std::string const text = std::to_string(year);
    std::vector<std::string> row{text, std::to_string(built)};
    for (int const value : {1, 0, 5, 6, 7})
      row.push_back(std::to_string(CountClass(growth.Land(), static_cast<unsigned char>(value))));
    row.push_back(std::to_string(StoredCells(growth.Land())));
    progress.Clear();
    std::printf("  %s   %5s   %11s   %10s   %6s   %8s   %6s   %6s, %.2f s\n", row[0].c_str(),
                row[1].c_str(), row[2].c_str(), row[3].c_str(), row[4].c_str(), row[5].c_str(),
                row[6].c_str(), row[7].c_str(), growth.lastSeconds);
    rows.push_back(row);
    StoreMap(map, output.Add(name + text + ".qmp"));
    PixelPicture picture = output.Draw(map, name + text, kZoom, Valley(), text);
    years.push_back(growth.Land());
    MarkNew(picture, Valley(), kZoom, years.front(), years.back());
    bool const shown = (kLastYear - year) % 3 == 0;
    std::string const since = "; built since " + std::to_string(kFirstYear - 1) + ": dark red";
    output.AddPicture(picture, name + text, shown ? text + (years.size() > 1 ? since : "") : "");
  }
  output.Table(rows);
  output.AddPicture(
      DrawWhenBuilt(map, years), "growth",
      "The whole country: built from yellow in the first year to dark red in the last");
}

void TellTables(std::string const &data, Output &output) {
  struct Plot {
    char const *table;
    char const *caption;
  };
  output.Chapter(
      "4. The function tables of the rule",
      "What a modeller knows as a curve stays a curve: points in a text file, joined by straight "
      "lines or a spline, evaluated by the simulation and edited with the spline tool.");
  for (Plot const plot :
       {Plot{"distance-decay", "What a neighbour weighs, by its distance in cells"},
        Plot{"demand", "The demand for dwellings, in thousands, by year"}}) {
    std::string const file = std::string(plot.table) + ".svg";
    TableOptions options;
    options.file = data + "/tables/" + plot.table + ".txt";
    options.out = output.Add(file);
    TablePlot(options);
    output.Show(file, plot.caption);
  }
}

}  // namespace

void TellGrowth(std::string const &data, std::string const &networkYears, unsigned int seed,
                Output &output, Progress &progress) {
  progress.Step("preparing the years");
  Growth growth(data, networkYears, seed, kBlockWidth);
  CByteMatrixBaseMap map;
  AttachLandUse(map, growth.Land());
  progress.Clear();
  std::printf("\nThe rule of growth, with seed %u\n", seed);
  TellRule(seed, output);
  TellYears(growth, map, output, progress);

  progress.Step("drawing tables and network");
  TellTables(data, output);
  TellNetworkYears(map, growth.Network(), output);
  output.Text((std::filesystem::path(networkYears).parent_path() / "network-report.txt").string());

  std::string const pair = output.Add("growth.doc");
  output.Add("growth.img");
  if (map.OnFileExport(pair.c_str(), 0) == 0) throw Failure("cannot write '" + pair + "'");
  TellComparison(growth, data, networkYears, seed, output, progress);
}
