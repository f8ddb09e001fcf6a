// The third chapter: settlements that grow from year to year.
//
// The rule. A cell of open land may become residential. Its attraction is the sum over all settled
// cells within 8 cells of a weight by distance, which a function table gives, times what that class
// is worth to a neighbour. The attraction is shaken a little by chance. In the order of what comes
// out, cells within reach of a road are built on, until the year's demand is met; the demand comes
// from a second function table. Where no settlement is near, attraction is 0 throughout, and one
// value for a coarse block says so.

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <random>
#include <vector>

#include "apps/commands.h"
#include "apps/demo/story.h"

namespace {

constexpr int kFirstYear = 1995;
constexpr int kLastYear = 2003;
constexpr unsigned kSeed = 1995;
constexpr int kReach = 8;                // cells that a settlement is felt across
constexpr double kReachOfRoads = 250;    // metres from a road
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
  Growth(std::string const &data, std::string const &networkYears, int width)
      : m_width(width), m_demand(ReadTable(data + "/tables/demand.txt")), m_random(kSeed) {
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
    seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return built;
  }

  CMultiScaleByteMatrix &Land() { return m_land; }
  CNetwork &Network() { return m_network; }

  long long evaluations = 0;
  double seconds = 0;

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

  bool IsInReachOfARoad(int row, int col) {
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
    return dPointToLineSegment({x, y}, place(a), place(b)) <= kReachOfRoads;
  }

  int Build(std::vector<Candidate> const &candidates, int demand) {
    int built = 0;
    for (Candidate const &candidate : candidates) {
      if (built == demand) break;
      if (!IsInReachOfARoad(candidate.row, candidate.col)) continue;
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

// Roads in red and railways in black over paled land use.
PixelPicture DrawNetwork(CByteMatrixBaseMap &map, CNetwork &network) {
  constexpr unsigned int kRoads = 0xC0392B;
  constexpr unsigned int kRailways = 0x000000;
  constexpr unsigned int kRailway = 3;
  PixelPicture picture = PaleLandUse(map);
  for (unsigned long i = 1; i < network.LinkCount(); ++i) {
    CNetwork::CLink const *link = network.GetLink(i);
    if (CNetwork::IsUnused(link)) continue;
    CNetwork::CNode const *a = network.GetNode(link->from);
    CNetwork::CNode const *b = network.GetNode(link->to);
    int const steps =
        static_cast<int>(std::max(std::abs(b->x - a->x), std::abs(b->y - a->y)) / kCellSize) + 1;
    for (int step = 0; step <= steps; ++step) {
      double const x = a->x + (b->x - a->x) * step / steps;
      double const y = a->y + (b->y - a->y) * step / steps;
      int const col = static_cast<int>((x - kWest) / kCellSize);
      int const row = map.NRows() - 1 - static_cast<int>((y - kSouth) / kCellSize);
      if (x >= kWest && y >= kSouth && col < map.NCols() && row >= 0)
        picture.At(col, row) = link->type == kRailway ? kRailways : kRoads;
    }
  }
  return picture;
}

// Cells that differ where the second raster is fine.
long long CountInFineBlocks(CMultiScaleByteMatrix const &one, CMultiScaleByteMatrix &two) {
  long long count = 0;
  for (int row = 0; row < two.NRows(); ++row)
    for (int col = 0; col < two.NCols(); ++col)
      count += one.At(row, col) != two.At(row, col) && two.FineCell(row, col);
  return count;
}

void TellComparison(Growth &two, std::string const &data, std::string const &networkYears) {
  Growth one(data, networkYears, 1);
  for (int year = kFirstYear; year <= kLastYear; ++year) one.GrowTo(year);
  std::printf("\nThe same years at one scale and at two\n");
  for (Growth *run : {&one, &two})
    std::printf("  blocks of %d x %d: %7lld stored cells, %8lld evaluations, %.2f s\n",
                run->Land().W(), run->Land().W(), StoredCells(run->Land()), run->evaluations,
                run->seconds);
  std::printf(
      "  %lld cells differ, %lld of them in fine blocks; residential cells: %lld and %lld\n",
      CountDifferences(one.Land(), two.Land()), CountInFineBlocks(one.Land(), two.Land()),
      CountClass(one.Land(), kResidential), CountClass(two.Land(), kResidential));
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

}  // namespace

void TellGrowth(std::string const &data, std::string const &networkYears, Output &output,
                Progress &progress) {
  progress.Step("preparing the years");
  Growth growth(data, networkYears, kBlockWidth);
  CByteMatrixBaseMap map;
  AttachLandUse(map, growth.Land());
  progress.Clear();
  std::printf("\nSettlements that grow from %d to %d\n", kFirstYear - 1, kLastYear);
  std::printf("  year   built   residential   stored cells\n");
  output.Chapter(
      "Settlements that grow",
      "A seeded rule: open land becomes residential near what attracts it and within reach "
      "of a road. It is worked out for each cell near settlements, and once for each block "
      "elsewhere.");

  std::string const name = "growth-";
  std::vector<CMultiScaleByteMatrix> years;
  for (int year = kFirstYear - 1; year <= kLastYear; ++year) {
    progress.Step("growing to " + std::to_string(year));
    int const built = year < kFirstYear ? 0 : growth.GrowTo(year);
    std::string const text = std::to_string(year);
    progress.Clear();
    std::printf("  %d   %5d   %11lld   %12lld\n", year, built,
                CountClass(growth.Land(), kResidential), StoredCells(growth.Land()));
    StoreMap(map, output.Add(name + text + ".qmp"));
    output.Draw(map, name + text, 2, Valley(), text, text);
    years.push_back(growth.Land());
  }
  output.Chapter(
      "What was built, and when",
      "Yellow in the first years, dark red in the last, over the land use in pale colours.");
  output.AddPicture(DrawWhenBuilt(map, years), "growth", "From yellow to red: the years");

  output.Draw(map, "last-year", 1, Whole(growth.Land()), "", "The country in the last year");

  output.Chapter("Roads over land use", "The network of the last year: roads red, railways black.");
  output.AddPicture(DrawNetwork(map, growth.Network()), "network", "Roads and railways");

  output.Chapter(
      "The function tables of the rule",
      "The weight of a neighbour by its distance, and the demand that drives the years.");
  for (char const *table : {"distance-decay", "demand"}) {
    std::string const plot = std::string(table) + ".svg";
    TableOptions options;
    options.file = data + "/tables/" + table + ".txt";
    options.out = output.Add(plot);
    TablePlot(options);
    output.Show(plot, table);
  }

  progress.Step("comparing one scale and two");
  std::string const pair = output.Add("growth.doc");
  output.Add("growth.img");
  if (map.OnFileExport(pair.c_str(), 0) == 0) throw Failure("cannot write '" + pair + "'");
  progress.Clear();
  TellComparison(growth, data, networkYears);
}
