// The document of one map: a named raster with a short list of legend items, a modified word and a
// save format. A user interface asks it for the colour, text and legend item of a cell and asks it
// to change cells, without knowing the element type of the raster.
//
//   CBaseMap &map = document;
//   for (int row = 0; row < map.NRows(); ++row)
//     for (int col = 0; col < map.NCols(); ++col) Draw(row, col, map.GetCellColor(row, col));
//   if (map.IsModified()) AskToSave();
//
// Cells are addressed (row, col), 0-based. Colours are 0x00BBGGRR. One thread at a time.

#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include <quillaven/platform/api.h>
#include <quillaven/platform/geometry.h>

class CArchive;
class CException;

class QUILLAVEN_API CBaseMap {
 public:
  /// What the first bytes of a file look like.
  enum CFileType {
    ftUnknown = 0,  ///< the type could not be found
    ftText = 1,     ///< the start of the file is all text
    ftBinary = 2    ///< the start of the file holds at least one byte that is not text
  };

  /// How a legend item is drawn; the library knows one way only.
  enum CLegendSymbolType { lstDefault = 0 };

  /// A truth value in one byte, false until told otherwise.
  class CBool {
   public:
    CBool() = default;
    CBool(bool value) : m_bValue(value) {}  // NOLINT: stands where a bool stands
    CBool(CBool const &) = default;
    CBool const &operator=(bool const &value) {  // NOLINT: the result is const, as the other's is
      m_bValue = value;
      return *this;
    }
    CBool const &operator=(CBool const &other) {  // NOLINT: the result is const, as the other's is
      m_bValue = other.m_bValue;
      return *this;
    }
    operator bool() const { return m_bValue; }  // NOLINT: stands where a bool stands

   private:
    bool m_bValue = false;
  };

  CBaseMap() = default;
  CBaseMap(CBaseMap const &) = default;
  CBaseMap &operator=(CBaseMap const &) = default;

  /// Size in cells; typed maps answer with the raster's own, read fresh at each call.
  virtual int NRows() const { return m_nRows; }
  virtual int NCols() const { return m_nCols; }

  // What a map of another kind may offer; the library never asks.
  virtual bool CanShowFeature() { return false; }
  virtual bool ShowFeature(int /*row*/, int /*col*/) { return false; }
  virtual bool CanShowFunction() { return false; }
  virtual bool ShowFunction(int /*row*/, int /*col*/) { return false; }
  virtual bool AllowNumericEditing() { return false; }
  virtual CLegendSymbolType GetLegendItemSymbol(int /*item*/) { return lstDefault; }
  virtual int UnderlineItem(int /*item*/) { return 0; }

  /// Stores or loads the document, as the archive is made: the stored sizes, then the names and
  /// colours of the legend items. A name is stored up to its first zero byte, and loaded with all
  /// its bytes. What the archive throws passes; sizes and legend items change together, when all of
  /// them are there. A number of items below 0 is std::bad_alloc. The cells follow in the typed maps.
  virtual void Serialize(CArchive &archive);

  /// Colour and name of the legend item of a cell; 0 and an empty text for an item that is none.
  virtual unsigned long GetCellColor(int row, int col);
  virtual std::string GetCellString(int row, int col);
  /// The legend item of a cell; -1 for a cell without data.
  virtual int GetCellLegendIndex(int row, int col) = 0;

  /// 0: a map that answers these says so; the reference stays untouched.
  virtual int GetCellValue(int /*row*/, int /*col*/, unsigned char & /*value*/) { return 0; }
  virtual int GetCellValue(int /*row*/, int /*col*/, unsigned long & /*value*/) { return 0; }
  virtual int GetCellValue(int /*row*/, int /*col*/, float & /*value*/) { return 0; }
  virtual void SetCellValue(int /*row*/, int /*col*/, unsigned char /*value*/) {}
  virtual void SetCellValue(int /*row*/, int /*col*/, unsigned long /*value*/) {}
  virtual void SetCellValue(int /*row*/, int /*col*/, float /*value*/) {}

  /// Editing: the selected item into a cell, 0 into a cell, the selected item into an area.
  virtual void SetCell(int /*row*/, int /*col*/) {}
  virtual void ClearCell(int /*row*/, int /*col*/) {}
  virtual void FillArea(int /*row*/, int /*col*/) {}
  /// The scale of the block that holds a cell.
  virtual void FineCell(int /*row*/, int /*col*/, bool /*fine*/) {}
  virtual bool FineCell(int /*row*/, int /*col*/) { return true; }

 protected:
  /// Tells the user why a load or save of `path` failed: chooses the message from the kind and
  /// cause of the exception, and shows it with the exclamation icon and its number as help context.
  /// A CUserException has been told already and shows nothing. The exception stays the caller's.
  virtual void ReportSaveLoadException(char const *path, CException *exception, int saving,
                                       unsigned int defaultMessage);

 public:
  virtual ~CBaseMap();

  // A document layer of the application may fill these in; here they do nothing and answer 0.
  virtual int OnOpenDocument(char const * /*path*/) { return 0; }
  virtual int OnReadDocument(char const * /*path*/) { return 0; }
  virtual int OnSaveDocument(char const * /*path*/) { return 0; }
  virtual int OnFileImport(char const * /*path*/, int /*format*/) { return 0; }
  virtual int OnFileExport(char const * /*path*/, int /*format*/) { return 0; }
  virtual int WriteBitmap(char const * /*path*/, int /*zoom*/, CRect /*rectangle*/,
                          char const * /*stamp*/) {
    return 0;
  }

  /// 1 if the cell lies on the map by its stored sizes, else 0.
  int OnMap(int row, int col) const {
    return 0 <= row && row < m_nRows && 0 <= col && col < m_nCols ? 1 : 0;
  }

  /// 2 if cells have changed since the application last cleared that bit, else 0.
  int IsModified() const { return static_cast<int>(m_nModifiedFlags & kCellsChanged); }
  /// Bits of the modified word. Only the bit of value 2 means something to the library.
  void SetModifiedFlag(unsigned long bits) { m_nModifiedFlags |= static_cast<std::uint32_t>(bits); }
  void ClearModifiedFlag(unsigned long bits) {
    m_nModifiedFlags &= ~static_cast<std::uint32_t>(bits);
  }
  unsigned long GetModifiedFlag() const { return m_nModifiedFlags; }

  /// Name and colour of a legend item; empty and 0 for an item that is none.
  std::string GetLegendItemName(int item) const;
  unsigned long GetLegendItemColor(int item) const;
  int GetLegendItemCount() const { return m_nLegendItems; }
  void AddLegendItem(std::string const &name, unsigned long color);
  void ClearLegend();

  void SetSaveFormat(CFileType format) { m_SaveFormat = format; }

  /// Whether the first 16 bytes of a file are all text. False, with ftUnknown, for a file that
  /// cannot be opened or holds fewer bytes.
  static bool GetTypeOfFile(char const *path, CFileType &type);

 protected:
  static constexpr std::uint32_t kCellsChanged = 2;

 public:
  // Applications read and set these fields, and the legend rules fill the items in place.
  std::int32_t m_nRows = 0;  ///< as last taken from the raster
  std::int32_t m_nCols = 0;
  std::int32_t m_nLegendItems = 0;  ///< the size of the two vectors
  std::vector<std::string> m_LegendNames;
  std::vector<unsigned long> m_LegendColors;  ///< 0x00BBGGRR each
  std::int32_t m_nSelectedItem = 0;  ///< what cell editing paints with; set by the application

  // Display flags of the application. Only m_bJitter means something to the library: a random
  // factor on each value that is shown.
  CBool m_bDisplayFlag1 = true;
  CBool m_bDisplayFlag2 = true;
  CBool m_bJitter;
  CBool m_bDisplayFlag4 = true;
  CBool m_bDisplayFlag5 = true;
  CBool m_bDisplayFlag6 = true;
  CBool m_bDisplayFlag7;
  CBool m_bDisplayFlag8;

  std::array<unsigned char, 32> m_Reserved{};
  std::string m_strTitle;
  std::string m_strBaseName;  ///< the stem of the bitmap legend's file name
  std::uint32_t m_nModifiedFlags = 0;
  CFileType m_SaveFormat = ftUnknown;
};
