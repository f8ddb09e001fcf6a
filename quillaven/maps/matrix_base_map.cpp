#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <type_traits>
#include <vector>

#include <quillaven/foundation/numbers.h>
#include <quillaven/foundation/random_internal.h>
#include <quillaven/foundation/rounding_internal.h>
#include <quillaven/legends/map_legend_internal.h>
#include <quillaven/maps/cells_changed_internal.h>
#include <quillaven/maps/matrix_base_map.h>
#include <quillaven/platform/application.h>
#include <quillaven/platform/number_locale_internal.h>
#include <quillaven/raster/raster_operations.h>

namespace {

constexpr unsigned long kWhite = 0xFFFFFF;
constexpr unsigned long kGreyUnit = 0x010101;

template <class T>
bool IsOnRaster(CMultiScaleMatrix<T> const *raster, int row, int col) {
  return raster != nullptr && 0 <= row && row < raster->NRows() && 0 <= col &&
         col < raster->NCols();
}

// Equality as the maps test it: a cell that is not a number counts as equal to every no-data value.
template <class T>
bool EqualsNoData(T value, float noData) {
  double const number = value;
  return number == static_cast<double>(noData) || number != number;
}

// Uniform from 0.5 to 1.5, both ends included.
double JitterFactor() {
  constexpr double kUnit = 3.051850947599719e-5;  // 1 / 32767
  return std::clamp(RandomDraw() * kUnit + 0.5, 0.5, 1.5);
}

// The value that a cell shows under jitter. A float that equals the no-data value keeps it, whether
// or not that value is in force; integers are truncated and keep their low bits.
template <class T>
T Jittered(T value, float noData) {
  if constexpr (std::is_floating_point_v<T>) {
    return EqualsNoData(value, noData) ? value : static_cast<T>(value * JitterFactor());
  } else {
    return static_cast<T>(static_cast<int>(value * JitterFactor()));
  }
}

// Where a map without a raster would lie: black in the top left corner, white in the bottom right.
unsigned long GreyRamp(int row, int col, int rows, int cols) {
  double const steps = static_cast<double>(rows) + cols - 2;
  double const share = (static_cast<double>(row) + col) / steps * 255.0;
  return (steps != 0 ? static_cast<unsigned long>(Truncated(share)) & 0xFF : 0) * kGreyUnit;
}

// A bit for each cell of a raster.
class CellSet {
 public:
  CellSet(int rows, int cols)
      : m_nCols(static_cast<std::size_t>(cols)),
        m_Bits((static_cast<std::size_t>(rows) * m_nCols + 63) / 64) {}
  bool Has(int row, int col) const {
    std::size_t const at = Position(row, col);
    return (m_Bits[at / 64] >> at % 64 & 1) != 0;
  }
  void Add(int row, int col) {
    std::size_t const at = Position(row, col);
    m_Bits[at / 64] |= std::uint64_t{1} << at % 64;
  }

 private:
  std::size_t Position(int row, int col) const {
    return static_cast<std::size_t>(row) * m_nCols + static_cast<std::size_t>(col);
  }

  std::size_t m_nCols;
  std::vector<std::uint64_t> m_Bits;
};

// A cell in the queue of a fill. The column has 10 bits: column 1024 is column 0 of the next row.
// That limit is a property of the operation and stays.
constexpr std::uint32_t kColumns = 1024;
constexpr int kMostColumns = 1024;

std::uint32_t CellCode(int row, int col) {
  return static_cast<std::uint32_t>(row) * kColumns + static_cast<std::uint32_t>(col);
}

}  // namespace

void TellCellsChanged() {
  constexpr unsigned int kCellsChangedMessage = 32771;
  GetApplication().OnMainWindowMessage(kCellsChangedMessage);
}

template <class T>
int CMatrixBaseMap<T>::NRows() const {
  return m_pMatrix != nullptr ? m_pMatrix->NRows() : 0;
}

template <class T>
int CMatrixBaseMap<T>::NCols() const {
  return m_pMatrix != nullptr ? m_pMatrix->NCols() : 0;
}

template <class T>
void CMatrixBaseMap<T>::AttachRaster(char const *baseName, char const *title,
                                     CMultiScaleMatrix<T> *raster, char const *legendFile) {
  m_strBaseName = baseName;
  m_strTitle = title;
  m_pMatrix = raster;
  m_nRows = NRows();
  m_nCols = NCols();
  ReadLegend(legendFile);
}

// What a cell shows: nullptr for one without data, else `answer` of the value, with jitter.
template <class T>
template <class Answer>
auto CMatrixBaseMap<T>::ShowCell(int row, int col, Answer answer) {
  if (!IsOnRaster(m_pMatrix, row, col)) return answer(static_cast<T const *>(nullptr));
  T value = m_pMatrix->At(row, col);
  float const noData = m_pMatrix->NoDataValue();
  if (m_pMatrix->HasNoDataValue() && EqualsNoData(value, noData))
    return answer(static_cast<T const *>(nullptr));
  if (m_bJitter) value = Jittered(value, noData);
  return answer(static_cast<T const *>(&value));
}

template <class T>
unsigned long CMatrixBaseMap<T>::GetCellColor(int row, int col) {
  if (m_pMatrix == nullptr) return GreyRamp(row, col, m_nRows, m_nCols);
  if (row == 0 && col == 0) RefreshSize();
  return ShowCell(row, col, [this](T const *value) {
    return value == nullptr ? kWhite : m_Legend.GetCellColor(this, *value);
  });
}

template <class T>
int CMatrixBaseMap<T>::GetCellLegendIndex(int row, int col) {
  if (m_pMatrix == nullptr) return 0;
  if (row == 0 && col == 0) RefreshSize();
  return ShowCell(row, col, [this](T const *value) {
    return value == nullptr ? -1 : m_Legend.GetCellLegendIndex(this, *value);
  });
}

template <class T>
std::string CMatrixBaseMap<T>::GetCellString(int row, int col) {
  if (m_pMatrix == nullptr) return itostr("%d", row) + "," + itostr("%d", col);
  return ShowCell(row, col, [this](T const *value) {
    return value == nullptr ? std::string("NODATA") : m_Legend.GetCellString(this, *value);
  });
}

template <class T>
void CMatrixBaseMap<T>::RefreshSize() {
  m_nRows = m_pMatrix->NRows();
  m_nCols = m_pMatrix->NCols();
}

// Item names are data for the float and short maps: an item is named by its value.
template <class T>
T CMatrixBaseMap<T>::ValueOfItem(int item) const {
  if constexpr (std::is_same_v<T, unsigned char>) {
    return static_cast<unsigned char>(item);
  } else {
    std::string const name = GetLegendItemName(item);
    if constexpr (std::is_floating_point_v<T>) {
      PointLocale const numbers;
      return static_cast<T>(std::strtod(name.c_str(), nullptr));
    } else {
      return static_cast<T>(LeadingInteger(name.c_str()));
    }
  }
}

template <class T>
void CMatrixBaseMap<T>::StoreAndTell(int row, int col, T value) {
  if (IsOnRaster(m_pMatrix, row, col)) m_pMatrix->At(row, col) = value;
  TellCellsChanged();
  SetModifiedFlag(kCellsChanged);
}

template <class T>
void CMatrixBaseMap<T>::SetCell(int row, int col) {
  StoreAndTell(row, col, ValueOfItem(m_nSelectedItem));
}

template <class T>
void CMatrixBaseMap<T>::ClearCell(int row, int col) {
  StoreAndTell(row, col, T{});  // the value 0, not the no-data value
}

template <class T>
void CMatrixBaseMap<T>::FillArea(int row, int col) {
  GetApplication().BeginWaitCursor();
  int const old = GetCellLegendIndex(row, col);
  // With nothing to paint the wait cursor stays on, and nobody is told.
  if (old == m_nSelectedItem) return;
  if (OnMap(row, col) != 0) PaintArea(row, col, old, ValueOfItem(m_nSelectedItem));
  GetApplication().EndWaitCursor();
  TellCellsChanged();
  SetModifiedFlag(kCellsChanged);
}

// Paints breadth first. A cell may be queued more than once; it is painted when it comes up first.
// What has been painted is kept, so that a value which falls into the old class again is painted
// once too.
template <class T>
void CMatrixBaseMap<T>::PaintArea(int startRow, int startCol, int old, T value) {
  if (m_pMatrix == nullptr) return;
  CellSet painted(std::max(NRows(), 0), std::max(NCols(), 0));
  // The class of a painted cell is asked for only where asking draws a random number.
  auto const matches = [&](int row, int col) {
    if (!IsOnRaster(m_pMatrix, row, col)) return false;
    if (!m_bJitter && painted.Has(row, col)) return false;
    return GetCellLegendIndex(row, col) == old && !painted.Has(row, col);
  };

  // What was queued had the class then. It may have lost it only by a block painted through another
  // cell, by jitter, or by a column that the queue cannot hold.
  bool const staysAsQueued =
      m_pMatrix->W() < 2 && !m_bJitter && std::max(m_nCols, NCols()) <= kMostColumns;

  std::deque<std::uint32_t> queue{CellCode(startRow, startCol)};
  while (!queue.empty()) {
    std::uint32_t const code = queue.front();
    queue.pop_front();
    int const row = static_cast<int>(code / kColumns);
    int const col = static_cast<int>(code % kColumns);
    bool const paint = staysAsQueued ? IsOnRaster(m_pMatrix, row, col) && !painted.Has(row, col)
                                     : matches(row, col);
    if (!paint) continue;
    m_pMatrix->At(row, col) = value;
    painted.Add(row, col);
    if (row - 1 >= 0 && matches(row - 1, col)) queue.push_back(code - kColumns);
    if (col + 1 < m_nCols && matches(row, col + 1)) queue.push_back(code + 1);
    if (row + 1 < m_nRows && matches(row + 1, col)) queue.push_back(code + kColumns);
    if (col - 1 >= 0 && matches(row, col - 1)) queue.push_back(code - 1);
  }
}

template <class T>
void CMatrixBaseMap<T>::FineCell(int row, int col, bool fine) {
  if (m_pMatrix != nullptr) m_pMatrix->FineCell(row, col, fine);
}

template <class T>
bool CMatrixBaseMap<T>::FineCell(int row, int col) {
  return m_pMatrix == nullptr || m_pMatrix->FineCell(row, col);
}

template <class T>
void CMatrixBaseMap<T>::UpdateResolution(CMultiScaleByteMatrix &resMap, int resolution) {
  if (m_pMatrix != nullptr) UpdateResolutionOfMap(*m_pMatrix, resMap, resolution);
}

template <class T>
void CMatrixBaseMap<T>::ReadLegend(char const *file) {
  m_Legend.SetBaseMapLegend(this, file);
}

template <class T>
void CMatrixBaseMap<T>::WriteLegend(char const *file) {
  m_Legend.Write(this, file);
}

CFloatMatrixBaseMap::~CFloatMatrixBaseMap() = default;
CShortMatrixBaseMap::~CShortMatrixBaseMap() = default;
CByteMatrixBaseMap::~CByteMatrixBaseMap() = default;

void CFloatMatrixBaseMap::Attach(char const *baseName, char const *title,
                                 CMultiScaleFloatMatrix *raster, char const *legendFile,
                                 bool exportAsByte) {
  AttachRaster(baseName, title, raster, legendFile);
  m_bExportAsByte = exportAsByte;
}

void CShortMatrixBaseMap::Attach(char const *baseName, char const *title,
                                 CMultiScaleShortMatrix *raster, char const *legendFile) {
  AttachRaster(baseName, title, raster, legendFile);
}

void CByteMatrixBaseMap::Attach(char const *baseName, char const *title,
                                CMultiScaleByteMatrix *raster, char const *legendFile) {
  AttachRaster(baseName, title, raster, legendFile);
}

template class CMatrixBaseMap<float>;
template class CMatrixBaseMap<short>;
template class CMatrixBaseMap<unsigned char>;
