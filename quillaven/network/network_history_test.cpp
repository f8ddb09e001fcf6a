// Random histories of a network through all its doors, text, callers' changes, binary files and
// years, against a model that knows nothing but the rules.

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <list>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <quillaven/network/network.h>
#include <quillaven/network/network_access_internal.h>

#include "tests/support/recording_application.h"
#include "tests/support/small_network.h"
#include "tests/support/temporary_directory.h"

namespace {

using Access = CNetworkAccess;
using Place = std::pair<double, double>;

constexpr char kNone[] = "<none>";

struct ModelLink {
  std::size_t from = 0;
  std::size_t to = 0;
  unsigned int type = 0;
  unsigned int id = 0;
};

// Nodes, links and lists by the standard library's means; index 0 is reserved.
struct Model {
  std::vector<Place> places{{0, 0}};
  std::vector<ModelLink> links{{}};
  std::vector<std::list<std::size_t>> in{{}};
  std::vector<std::list<std::size_t>> out{{}};
  std::size_t cells = 1;

  std::size_t FindNode(Place place) const {
    auto const found = std::find(places.begin() + 1, places.end(), place);
    return found == places.end() ? 0 : static_cast<std::size_t>(found - places.begin());
  }
  std::size_t NodeAt(Place place) {
    if (std::size_t const found = FindNode(place)) return found;
    places.push_back(place);
    in.emplace_back();
    out.emplace_back();
    return places.size() - 1;
  }
  std::size_t FindLink(std::size_t from, std::size_t to) const {
    auto const leads = [&](std::size_t link) { return links[link].to == to; };
    auto const found = std::find_if(out[from].begin(), out[from].end(), leads);
    return found == out[from].end() ? 0 : *found;
  }
  // There is one link at most from a place to another.
  void Set(Place from, Place to, unsigned int type, unsigned int id) {
    std::size_t const start = NodeAt(from);
    std::size_t const end = NodeAt(to);
    std::size_t link = FindLink(start, end);
    if (link == 0) {
      link = links.size();
      links.push_back({start, end, 0, 0});
      out[start].push_front(link);
      in[end].push_front(link);
      cells += 2;
    }
    links[link].type = type;
    links[link].id = id;
  }
  void Delete(std::size_t link) {
    out[links[link].from].remove(link);
    in[links[link].to].remove(link);
    links[link].from = 0;
    links[link].to = 0;
  }
};

struct ModelChange {
  bool add = false;
  Place from;
  Place to;
  unsigned int type = 0;
  unsigned int id = 0;
};

struct ModelYear {
  int year = 0;
  std::string file = kNone;  // without its directory
  std::vector<ModelChange> changes;
};

class NetworkHistory : public testing::Test {
 protected:
  void Run(unsigned int seed, int steps) {
    random.seed(seed);
    network.Clear(true);
    model = {};
    files.clear();
    years.clear();
    loaded = -1;
    for (int step = 0; step < steps; ++step) {
      SCOPED_TRACE(step);
      ASSERT_NO_FATAL_FAILURE(Step());
      ASSERT_NO_FATAL_FAILURE(Compare());
    }
  }

 private:
  void Step() {
    switch (random() % 12) {
      case 0:
      case 1:
        return ReadText();
      case 2:
      case 3:
        return AddAsACaller();
      case 4:
        return DeleteAsACaller();
      case 5:
        return Save();
      case 6:
        return Load();
      case 7:
        return SetYear();
      case 8:
      case 9:
        return NoteChange();
      case 10:
        return GoToYear();
      default:
        return random() % 3 == 0 ? Clear() : SaveAndReadYears();
    }
  }

  // Eighths have few enough decimals for a definitions file.
  Place Draw() {
    auto const number = [&] { return (static_cast<double>(random() % 25) - 12) / 8; };
    double const x = number();
    return {x, random() % 2 == 0 ? 0.0 : number()};
  }
  std::string AnyFile() {
    if (files.empty()) return {};
    return std::next(files.begin(), static_cast<std::ptrdiff_t>(random() % files.size()))->first;
  }
  // A link in use, 0 if none was met.
  std::size_t AnyLink() {
    std::size_t const link = random() % model.links.size();
    return model.links[link].from == 0 ? 0 : link;
  }

  void ReadText() {
    auto const type = static_cast<unsigned int>(random() % 256);
    std::string text;
    for (auto roads = random() % 12; roads > 0; --roads) {
      auto const id = static_cast<unsigned int>(random() % 1000);
      text += std::to_string(id) + "\n";
      Place previous = Draw();
      model.NodeAt(previous);
      text += Line(previous);
      for (auto points = random() % 9; points > 0; --points) {
        Place const next = random() % 4 == 0 ? Place{0, 0} : Draw();  // many roads meet there
        text += Line(next);
        model.Set(previous, next, type, id);
        previous = next;
      }
      text += "END\n";
    }
    std::string const file = directory.Write("in.txt", text + "END\n");
    ASSERT_TRUE(network.ReadAsciiFile(file.c_str(), static_cast<unsigned char>(type)));
  }
  // In thousandths, as eighths are whole numbers of them.
  static std::string Line(Place place) {
    auto const text = [](double number) {
      return std::to_string(static_cast<int>(number * 1000)) + "e-3";
    };
    return " " + text(place.first) + " " + text(place.second) + "\n";
  }

  void AddAsACaller() {
    Place const from = Draw();
    Place const to = Draw();
    std::size_t const start = model.NodeAt(from);
    std::size_t const end = model.NodeAt(to);
    auto const id = static_cast<unsigned int>(random() % 0x1000000);
    if (model.FindLink(start, end) != 0) {
      NodeOf(network, from.first, from.second);
      NodeOf(network, to.first, to.second);
      return;
    }
    model.Set(from, to, 9, id);
    AddLinkBetween(network, from, to, 9, id);
  }

  void DeleteAsACaller() {
    for (int i = 0; i < 10; ++i) {
      std::size_t const link = AnyLink();
      if (link == 0) continue;
      model.Delete(link);
      DeleteLink(network, static_cast<unsigned long>(link));
    }
  }

  void Save() {
    std::string const name = "net" + std::to_string(random() % 3) + ".bin";
    ASSERT_TRUE(network.Write(directory.Path(name).c_str()));
    files[name] = model;
  }

  void Load() {
    std::string const name = AnyFile();
    if (name.empty()) return;
    ASSERT_TRUE(network.Read(directory.Path(name).c_str()));
    model = files[name];
  }

  void Clear() {
    network.Clear(false);
    model = {};
    loaded = -1;
  }

  ModelYear &Year(int year) {
    auto place = std::find_if(years.begin(), years.end(),
                              [&](ModelYear const &entry) { return entry.year >= year; });
    if (place == years.end() || place->year != year) place = years.insert(place, {year, kNone, {}});
    return *place;
  }

  void SetYear() {
    int const year = 1990 + static_cast<int>(random() % 6);
    std::string const name = AnyFile();
    ModelYear &entry = Year(year);
    entry = {year, name.empty() ? kNone : name, {}};
    std::string const told = name.empty() ? kNone : directory.Path(name);
    ASSERT_TRUE(network.SetDataDefYear(year, told.c_str()));
  }

  void NoteChange() {
    for (int i = 0; i < 8; ++i) {
      std::size_t const link = AnyLink();
      if (link == 0) continue;
      int const year = 1990 + static_cast<int>(random() % 6);
      bool const add = random() % 2 == 0;
      ModelLink const &changed = model.links[link];
      Year(year).changes.push_back(
          {add, model.places[changed.from], model.places[changed.to], changed.type, changed.id});
      if (add) {
        network.DeltaAddLink(year, network.GetLink(static_cast<unsigned long>(link)));
      } else {
        network.DeltaDeleteLink(year, network.GetLink(static_cast<unsigned long>(link)));
      }
    }
  }

  // The last entry that is not later, or the first.
  int EntryOf(int year) const {
    if (years.empty()) return -1;
    int entry = 0;
    for (std::size_t i = 1; i < years.size(); ++i)
      if (years[i].year <= year) entry = static_cast<int>(i);
    return entry;
  }

  void GoToYear() {
    int const year = 1988 + static_cast<int>(random() % 10);
    ASSERT_EQ(network.IsYearLoaded(year), EntryOf(year) == loaded);
    ASSERT_TRUE(network.LoadTemporalData(year));
    ASSERT_TRUE(network.IsYearLoaded(year));
    if (years.empty()) {
      model = {};
      loaded = -1;
      return;
    }
    int const last = EntryOf(year);
    if (last == loaded) return;
    for (int i = 0; i <= last; ++i) Replay(years[static_cast<std::size_t>(i)]);
    loaded = last;
  }

  void Replay(ModelYear const &entry) {
    if (entry.file != kNone) model = files[entry.file];
    for (ModelChange const &change : entry.changes) {
      if (change.add) {
        model.Set(change.from, change.to, change.type, change.id);
        continue;
      }
      std::size_t const start = model.FindNode(change.from);
      std::size_t const end = model.FindNode(change.to);
      std::size_t const link = start == 0 || end == 0 ? 0 : model.FindLink(start, end);
      if (link != 0) model.Delete(link);
    }
  }

  // The list moves onto copies of its files and loses ids and empty years.
  void SaveAndReadYears() {
    std::string const file = directory.Path("all.txt");
    ASSERT_TRUE(network.SaveTemporalDataDefinition(file.c_str(), file.c_str()));
    std::vector<ModelYear> kept;
    for (ModelYear &entry : years) {
      if (entry.file == kNone && entry.changes.empty()) continue;
      if (entry.file != kNone) {
        std::string const copy = "all_" + std::to_string(entry.year) + ".bin";
        if (copy != entry.file) files[copy] = files[entry.file];
        entry.file = copy;
      }
      for (ModelChange &change : entry.changes)
        change.id = std::bit_cast<std::uint64_t>(change.from.second) & 0xFFFFFFU;
      kept.push_back(entry);
    }
    years = kept;
    network.LoadTemporalDataDefinition(file.c_str(), file.c_str());
  }

  std::list<std::size_t> Listed(std::uint32_t head) {
    std::list<std::size_t> result;
    for (; head != 0; head = Access::Cells(network)[head].next)
      result.push_back(Access::Cells(network)[head].link);
    return result;
  }

  void Compare() {
    ASSERT_TRUE(application.boxes.empty());
    ASSERT_EQ(network.NodeCount(), model.places.size());
    ASSERT_EQ(network.LinkCount(), model.links.size());
    ASSERT_EQ(Access::Cells(network).size(), model.cells);
    for (unsigned long i = 1; i < model.places.size(); ++i) {
      CNetwork::CNode const *const node = network.GetNode(i);
      ASSERT_EQ(Place(node->x, node->y), model.places[i]);
      ASSERT_EQ(Listed(node->inLinks), model.in[i]);
      ASSERT_EQ(Listed(node->outLinks), model.out[i]);
      ASSERT_EQ(CNetwork::IsUnused(node), model.in[i].empty() && model.out[i].empty());
      ASSERT_EQ(network.FindNode(node->x, node->y), node);
    }
    for (unsigned long i = 1; i < model.links.size(); ++i) {
      CNetwork::CLink const &link = *network.GetLink(i);
      ModelLink const &expected = model.links[i];
      ASSERT_EQ(link.from, expected.from);
      ASSERT_EQ(link.to, expected.to);
      ASSERT_EQ(link.type, expected.type);
      ASSERT_EQ(link.id, expected.id);
      if (expected.from == 0) continue;
      ASSERT_EQ(network.FindLink(link.from, link.to), &link);
      auto const back = static_cast<unsigned long>(model.FindLink(expected.to, expected.from));
      ASSERT_EQ(network.FindLink(link.to, link.from), back == 0 ? nullptr : network.GetLink(back));
    }
    ASSERT_EQ(Access::LoadedYearIndex(network), loaded);
    std::vector<CNetwork::CTemporalData> const &entries = Access::Years(network);
    ASSERT_EQ(entries.size(), years.size());
    for (std::size_t i = 0; i < years.size(); ++i) {
      ASSERT_EQ(entries[i].year, years[i].year);
      ASSERT_EQ(entries[i].deltas.size(), years[i].changes.size());
      ASSERT_EQ(entries[i].fileName == kNone, years[i].file == kNone);
    }
  }

  TemporaryDirectory directory;
  RecordingApplication application;
  CNetwork network;
  std::mt19937 random;

  Model model;
  std::map<std::string, Model> files;
  std::vector<ModelYear> years;
  int loaded = -1;
};

TEST_F(NetworkHistory, OfAnyKindGoesAsInANaiveModel) {
  for (unsigned int seed = 1; seed <= 25; ++seed) {
    SCOPED_TRACE(seed);
    ASSERT_NO_FATAL_FAILURE(Run(seed, 120));
  }
}

}  // namespace
