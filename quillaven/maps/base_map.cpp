#include <array>
#include <fstream>

#include <quillaven/foundation/input_file_internal.h>
#include <quillaven/maps/base_map.h>
#include <quillaven/platform/exceptions.h>
#include <quillaven/platform/message_box_internal.h>

namespace {

constexpr unsigned int kUnexpectedFormat = 61728;
constexpr unsigned int kInvalidPath = 61729;
constexpr unsigned int kDiskFull = 61730;
constexpr unsigned int kNoAccessForReading = 61731;
constexpr unsigned int kNoAccessForWriting = 61732;
constexpr unsigned int kErrorOnReading = 61733;
constexpr unsigned int kErrorOnWriting = 61734;
constexpr unsigned int kExclamationIcon = 48;

// The text of a message number, with %1 for the path.
char const *MessageText(unsigned int number) {
  switch (number) {
    case kUnexpectedFormat:
      return "Unexpected file format in %1.";
    case kInvalidPath:
      return "%1 was not found, or its path is invalid.";
    case kDiskFull:
      return "The disk is full: %1 could not be saved.";
    case kNoAccessForReading:
      return "%1 may not be read: access was denied.";
    case kNoAccessForWriting:
      return "%1 may not be written: access was denied, or the file is in use.";
    case kErrorOnReading:
      return "An error occurred while %1 was read.";
    case kErrorOnWriting:
      return "An error occurred while %1 was written.";
    default:
      return "%1 could not be loaded or saved.";
  }
}

unsigned int MessageOfArchiveFault(int cause, unsigned int otherwise) {
  switch (cause) {
    case CArchiveException::endOfFile:
    case CArchiveException::badIndex:
    case CArchiveException::badClass:
    case CArchiveException::badSchema:
      return kUnexpectedFormat;
    default:
      return otherwise;
  }
}

unsigned int MessageOfFileFault(int cause, bool saving, unsigned int otherwise) {
  switch (cause) {
    case CFileException::fileNotFound:
    case CFileException::badPath:
      return kInvalidPath;
    case CFileException::diskFull:
      return kDiskFull;
    case CFileException::accessDenied:
      return saving ? kNoAccessForWriting : kNoAccessForReading;
    case CFileException::genericException:
    case CFileException::tooManyOpenFiles:
    case CFileException::invalidFile:
    case CFileException::directoryFull:
    case CFileException::badSeek:
    case CFileException::hardIO:
      return saving ? kErrorOnWriting : kErrorOnReading;
    default:
      return otherwise;
  }
}

bool IsItem(int item, std::size_t count) {
  return item >= 0 && static_cast<std::size_t>(item) < count;
}

}  // namespace

CBaseMap::~CBaseMap() = default;

unsigned long CBaseMap::GetCellColor(int row, int col) {
  int const item = GetCellLegendIndex(row, col);
  return IsItem(item, m_LegendColors.size()) ? m_LegendColors[static_cast<std::size_t>(item)] : 0;
}

std::string CBaseMap::GetCellString(int row, int col) {
  int const item = GetCellLegendIndex(row, col);
  return IsItem(item, m_LegendNames.size()) ? m_LegendNames[static_cast<std::size_t>(item)]
                                            : std::string();
}

void CBaseMap::ReportSaveLoadException(char const *path, CException *exception, int saving,
                                       unsigned int defaultMessage) {
  if (dynamic_cast<CUserException *>(exception) != nullptr) return;
  unsigned int number = defaultMessage;
  if (auto const *archive = dynamic_cast<CArchiveException *>(exception)) {
    number = MessageOfArchiveFault(archive->m_cause, number);
  } else if (auto const *file = dynamic_cast<CFileException *>(exception)) {
    number = MessageOfFileFault(file->m_cause, saving != 0, number);
  }
  std::string text = MessageText(number);
  text.replace(text.find("%1"), 2, path);
  AfxMessageBox(text.c_str(), kExclamationIcon, number);
}

std::string CBaseMap::GetLegendItemName(int item) const {
  if (item < 0 || item >= m_nLegendItems || !IsItem(item, m_LegendNames.size())) return {};
  return m_LegendNames[static_cast<std::size_t>(item)];
}

unsigned long CBaseMap::GetLegendItemColor(int item) const {
  if (item < 0 || item >= m_nLegendItems || !IsItem(item, m_LegendColors.size())) return 0;
  return m_LegendColors[static_cast<std::size_t>(item)];
}

void CBaseMap::AddLegendItem(std::string const &name, unsigned long color) {
  m_LegendNames.push_back(name);
  m_LegendColors.push_back(color);
  ++m_nLegendItems;
}

void CBaseMap::ClearLegend() {
  m_LegendNames.clear();
  m_LegendColors.clear();
  m_nLegendItems = 0;
}

bool CBaseMap::GetTypeOfFile(char const *path, CFileType &type) {
  type = ftUnknown;
  std::ifstream file = OpenInputFile(path, std::ios::binary);
  std::array<char, 16> start{};
  if (!file.read(start.data(), start.size())) return false;
  for (char const c : start) {
    // Each byte counts as a signed char: those from 128 up are no text in the "C" locale.
    bool const text = (c >= ' ' && c <= '~') || (c >= '\t' && c <= '\r');
    if (!text) {
      type = ftBinary;
    } else if (type == ftUnknown) {
      type = ftText;
    }
  }
  return true;
}
