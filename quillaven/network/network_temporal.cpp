#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <locale>
#include <optional>
#include <system_error>

#include <quillaven/foundation/errors.h>
#include <quillaven/foundation/input_file_internal.h>
#include <quillaven/foundation/line_reader_internal.h>
#include <quillaven/foundation/numbers.h>
#include <quillaven/foundation/paths.h>
#include <quillaven/foundation/rounding_internal.h>
#include <quillaven/network/network.h>
#include <quillaven/network/network_index_internal.h>
#include <quillaven/platform/copy_file_internal.h>
#include <quillaven/platform/message_box_internal.h>
#include <quillaven/platform/number_locale_internal.h>
#include <quillaven/platform/system_paths.h>

namespace {

constexpr char kNoFile[] = "<none>";
constexpr char kTitle[] = "Temporal network data definitions file";
constexpr std::size_t kLongestLine = 4095;

std::string InLowerCase(std::string const &text) {
  CString result = text.c_str();
  result.MakeLower();
  return result;
}

// Names in either form of the machine, compared as one file.
bool SameName(std::string const &a, std::string const &b) {
  return InLowerCase(LibraryPath(a)) == InLowerCase(LibraryPath(b));
}

bool Refuse(char const *field) {
  ShowMessageBox(field, kTitle);
  return false;
}

// Cuts the field at the cursor off at the next tab. A field that is missing is an empty text.
char *NextField(char *&cursor) {
  char *const field = cursor;
  cursor += std::strcspn(cursor, "\t");
  if (*cursor == '\t') *cursor++ = '\0';
  return field;
}

// A coordinate as atof takes it: whatever number the field begins with.
std::optional<double> NextCoordinate(char *&cursor, char const *name) {
  char const *const field = NextField(cursor);
  if (*field == '\0') {
    Refuse(name);
    return std::nullopt;
  }
  PointLocale const numbers;
  return std::strtod(field, nullptr);
}

// NAME_YEAR.bin in the directory of the definitions file, in the form the file's own name has.
std::string CopyName(std::string const &file, int year) {
  std::string const name = LibraryPath(file);     // of the same length
  std::size_t const base = name.rfind('\\') + 1;  // 0 without a directory
  std::size_t const point = name.rfind('.');
  std::size_t const end = point != std::string::npos && point >= base ? point : file.size();
  return file.substr(0, end) + itostr("_%04d", year) + ".bin";
}

// Copies a year's file to its new name, unless both are one file by different names.
bool CopyYearFile(std::string const &from, std::string const &to) {
  std::string const source = SystemPath(from);
  std::string const target = SystemPath(to);
  std::error_code none;
  if (std::filesystem::equivalent(source, target, none)) return true;
  return CopyOneFile(source.c_str(), target.c_str());
}

void WriteDelta(std::ostream &stream, CNetwork::CDelta const &delta) {
  stream << (delta.add ? "add" : "del");
  for (double const number : {delta.start.x, delta.start.y, delta.end.x, delta.end.y})
    stream << '\t' << lftostr("%f", number);
  if (delta.add) stream << '\t' << itostr("%d", static_cast<int>(delta.link.type));
  stream << '\n';
}

}  // namespace

// ---- The list of years -------------------------------------------------------------------------

void CNetwork::LoadTemporalDataDefinition(char const *file, char const *base) {
  temporalData.clear();
  std::ifstream stream = OpenInputFile(file);
  if (!stream) ThrowNoSuchFileException(file);
  // A last line without a line break brings the end of the file with it and is not processed.
  for (std::string line; ReadTextLine(stream, line, kLongestLine) && !stream.eof();) {
    char *rest = line.data();
    std::string const keyword = InLowerCase(NextField(rest));
    if (keyword == "year") ReadDataDefYear(rest, base);
    if (keyword == "add") ReadDataDefDelta(rest, true);
    if (keyword == "del") ReadDataDefDelta(rest, false);
  }

  // A file that a later year names again is not read anew: the changes between are kept.
  CTemporalData const *last = nullptr;
  for (CTemporalData &entry : temporalData) {
    if (entry.fileName == kNoFile) continue;
    if (last != nullptr && InLowerCase(last->fileName) == InLowerCase(entry.fileName)) {
      entry.fileName = kNoFile;
    } else {
      last = &entry;
    }
  }
}

// Years are appended as they come: a file holds them in rising order.
bool CNetwork::ReadDataDefYear(char *rest, char const *base) {
  char const *const year = NextField(rest);
  if (*year == '\0') return Refuse("Year");
  char const *const name = NextField(rest);
  if (*name == '\0') return Refuse("Network fileName");
  CTemporalData entry;
  entry.year = LeadingInteger(year);
  entry.fileName = name;
  if (entry.fileName != kNoFile)
    entry.fileName = GetFullPath(LibraryPath(base).c_str(), LibraryPath(name).c_str());
  temporalData.push_back(entry);
  return true;
}

bool CNetwork::ReadDataDefDelta(char *rest, bool add) {
  if (temporalData.empty()) return Refuse("Year");  // no year to put the change in
  CDelta delta;
  delta.add = add;
  struct {
    double *target;
    char const *name;
  } const coordinates[] = {{&delta.start.x, "startX"},
                           {&delta.start.y, "startY"},
                           {&delta.end.x, "endX"},
                           {&delta.end.y, "endY"}};
  for (auto const &[target, name] : coordinates) {
    std::optional<double> const number = NextCoordinate(rest, name);
    if (!number) return false;
    *target = *number;
  }
  if (add) {
    char const *const type = NextField(rest);
    if (*type == '\0') return Refuse("TYPE");
    delta.link.type = static_cast<unsigned int>(LeadingInteger(type)) & 0xFFU;
  }
  // The file holds no id. Links have always got these bits of startY for one: ids of added links
  // are arbitrary, but the same on every reading.
  delta.link.id =
      static_cast<std::uint32_t>(std::bit_cast<std::uint64_t>(delta.start.y)) & 0xFFFFFFU;
  temporalData.back().deltas.push_back(delta);
  return true;
}

bool CNetwork::SaveTemporalDataDefinition(char const *file, char const *base) {
  std::ofstream stream(SystemPath(file));
  if (!stream) {
    CannotCreateFile(file);
    return false;
  }
  stream.imbue(std::locale::classic());
  CString const libraryBase = LibraryPath(base).c_str();
  for (CTemporalData &entry : temporalData) {
    bool const hasFile = InLowerCase(entry.fileName) != kNoFile;
    if (hasFile) {
      std::string const copy = CopyName(file, entry.year);
      if (!SameName(copy, entry.fileName)) {
        if (!CopyYearFile(entry.fileName, copy)) {
          FileError(copy.c_str(), "Binary Network Copy failed");
          return false;
        }
        entry.fileName = copy;
      }
    }
    if (!hasFile && entry.deltas.empty()) continue;
    CString const name = LibraryPath(entry.fileName).c_str();
    stream << "year\t" << entry.year << '\t' << GetRelativePath(libraryBase, name) << '\n';
    for (CDelta const &delta : entry.deltas) WriteDelta(stream, delta);
  }
  return true;
}

bool CNetwork::SetDataDefYear(int year, char const *file) {
  CreateYear(year);
  auto const entry = std::find_if(temporalData.begin(), temporalData.end(),
                                  [year](CTemporalData const &e) { return e.year == year; });
  if (entry != temporalData.end()) {
    entry->fileName = file;
    entry->deltas.clear();  // a file starts the year afresh
  }
  return true;
}

// The last entry that is not later than the year, or the first if all are.
int CNetwork::GetTemporalDataIndex(int year) const {
  if (temporalData.empty()) return -1;
  if (year <= temporalData[0].year) return 0;
  for (std::size_t i = 1; i < temporalData.size(); ++i) {
    if (temporalData[i].year == year) return static_cast<int>(i);
    if (temporalData[i].year > year) return static_cast<int>(i) - 1;
  }
  return static_cast<int>(temporalData.size()) - 1;
}

// Unlike the reader of files this keeps the list in order.
void CNetwork::CreateYear(int year) {
  auto const place = std::find_if(temporalData.begin(), temporalData.end(),
                                  [year](CTemporalData const &e) { return e.year >= year; });
  if (place != temporalData.end() && place->year == year) return;
  CTemporalData entry;
  entry.year = year;
  entry.fileName = kNoFile;
  temporalData.insert(place, entry);
}

void CNetwork::DeltaAddLink(int year, CLink const *link) {
  AppendDelta(year, link, true);
}
void CNetwork::DeltaDeleteLink(int year, CLink const *link) {
  AppendDelta(year, link, false);
}

void CNetwork::AppendDelta(int year, CLink const *link, bool add) {
  auto const isOfYear = [&](int index) {
    return index >= 0 && temporalData[static_cast<std::size_t>(index)].year == year;
  };
  if (!isOfYear(GetTemporalDataIndex(year))) CreateYear(year);
  int const index = GetTemporalDataIndex(year);
  temporalData[static_cast<std::size_t>(index)].deltas.push_back(
      {NodeAt(link->from), NodeAt(link->to), *link, add});
}

// ---- The network of a year ---------------------------------------------------------------------

bool CNetwork::LoadTemporalData(int year) {
  if (temporalData.empty()) {
    Clear(false);
    return true;
  }
  int const last = GetTemporalDataIndex(year);
  if (last == loadedYearIndex) return true;
  std::optional<CNetworkIndex> index;  // of the network as it is since the last file
  for (std::size_t i = 0; i <= static_cast<std::size_t>(last); ++i) {
    CTemporalData const &entry = temporalData[i];
    if (entry.fileName != kNoFile) {
      index.reset();
      if (!Read(entry.fileName.c_str())) {
        loadedYearIndex = -1;
        return false;
      }
    }
    if (!index && !entry.deltas.empty()) index.emplace(nodes, links, idListElems);
    for (CDelta const &delta : entry.deltas) ApplyDelta(&delta, *index);
  }
  loadedYearIndex = last;
  return true;
}

bool CNetwork::IsYearLoaded(int year) const {
  return GetTemporalDataIndex(year) == loadedYearIndex;
}

// Adding a link that is there gives it the new type and id; deleting one that is not is silent.
void CNetwork::ApplyDelta(CDelta const *delta, CNetworkIndex &index) {
  if (delta->add) {
    std::uint32_t const start = FindOrCreateNode(delta->start.x, delta->start.y, index);
    std::uint32_t const end = FindOrCreateNode(delta->end.x, delta->end.y, index);
    CLink *const link = Connect(start, end, delta->link.type, delta->link.id, index);
    // Here a link that is there gets its ends too, which may be others in a damaged file.
    link->from = start;
    link->to = end;
    return;
  }
  std::uint32_t const start = index.nodes.Find(delta->start.x, delta->start.y);
  std::uint32_t const end = index.nodes.Find(delta->end.x, delta->end.y);
  if (start == 0 || end == 0) return;
  std::uint32_t const found = index.links.Find(start, end);
  if (found == 0) return;
  index.links.TakeOut(start, CLinkIndex::kOut, found);
  index.links.TakeOut(end, CLinkIndex::kIn, found);
  SetUnused(&links[found]);
}
