// The documentation file (".doc") of an Idrisi image: what the cells of the image file mean.
//
//   CIdrisiImageHeader header;
//   if (header.ReadFile("landuse.doc")) Use(header.Rows(), header.Columns(), header.DataType());
//   header.DataType("byte");
//   header.WriteFile("copy.doc");
//
// A text file of one field a line: a label of 14 characters and the value. A line's meaning comes
// from its place alone; labels are not looked at, so files in other languages pass. Numbers have a
// point whatever the locale is. Origin: the documentation files of Idrisi for DOS and Windows.

#pragma once

#include <vector>

#include <quillaven/platform/api.h>
#include <quillaven/platform/strings.h>

class QUILLAVEN_API CIdrisiImageHeader {
 public:
  /// Width of a line's label; the value stands behind it.
  enum : int { DESCRIPTOR_WIDTH = 14 };

  /// Reads a documentation file. False if it cannot be opened, which a box tells, or if a line is
  /// missing; fields that were read by then are kept, and categories whose lines are missing stay as
  /// they were. A line without a value gives "malformed input" to a text and 0 to a number, and is
  /// no failure, nor is a last line without a line feed.
  virtual bool ReadFile(char const *file);
  /// Writes a documentation file. Coordinates lose their fractions, and a category gains a blank
  /// each time it is written and read: both are as other programs know these files. False, with no
  /// message, if the file cannot be written.
  virtual bool WriteFile(char const *file);

  char const *Title() const { return m_Title; }
  void Title(char const *text) { m_Title = text; }
  /// "real", "integer" or "byte".
  char const *DataType() const { return m_DataType; }
  void DataType(char const *text) { m_DataType = text; }
  /// "binary" or "ascii".
  char const *FileType() const { return m_FileType; }
  void FileType(char *text) { m_FileType = text; }
  int Columns() { return m_Columns; }
  void Columns(int columns) { m_Columns = columns; }
  int Rows() { return m_Rows; }
  void Rows(int rows) { m_Rows = rows; }
  char const *RefSystem() const { return m_RefSystem; }
  char const *RefUnits() const { return m_RefUnits; }
  double UnitDistance() const { return m_UnitDistance; }
  /// The corners of the image in reference units.
  double MinX() const { return m_MinX; }
  void MinX(double value) { m_MinX = value; }
  double MaxX() const { return m_MaxX; }
  void MaxX(double value) { m_MaxX = value; }
  double MinY() const { return m_MinY; }
  void MinY(double value) { m_MinY = value; }
  double MaxY() const { return m_MaxY; }
  void MaxY(double value) { m_MaxY = value; }
  char const *PositionError() const { return m_PositionError; }
  /// A text, set as a number of six significant digits.
  char const *Resolution() const { return m_Resolution; }
  void Resolution(double resolution);
  double MinValue() const { return m_MinValue; }
  void MinValue(double value) { m_MinValue = value; }
  double MaxValue() const { return m_MaxValue; }
  void MaxValue(double value) { m_MaxValue = value; }
  char const *ValueUnits() const { return m_ValueUnits; }
  char const *ValueError() const { return m_ValueError; }
  /// The value of cells that the definition tells about, as text: a number, or "none".
  char const *FlagValue() const { return m_FlagValue; }
  void FlagValue(char const *text) { m_FlagValue = text; }
  char const *FlagDefinition() const { return m_FlagDefinition; }
  void FlagDefinition(char const *text) { m_FlagDefinition = text; }

  /// Names of the values of a categorial image. The index of a name is that of the first that
  /// equals it exactly, -1 if none does; a title that is none is an empty text.
  int CategoryCount() const { return static_cast<int>(m_Categories.size()); }
  int CategoryIndex(char const *name) const;
  char const *CategoryTitle(int index) const;

 private:
  CString m_Title;
  CString m_DataType = "real";
  CString m_FileType = "binary";
  int m_Columns = 1;
  int m_Rows = 1;
  CString m_RefSystem = "plane";
  CString m_RefUnits = "m";
  double m_UnitDistance = 1.0;
  double m_MinX = 0.0;
  double m_MaxX = 1.0;
  double m_MinY = 0.0;
  double m_MaxY = 1.0;
  CString m_PositionError = "unknown";
  CString m_Resolution = "unknown";
  double m_MinValue = 0.0;
  double m_MaxValue = 1.0;
  CString m_ValueUnits = "unspecified";
  CString m_ValueError = "unknown";
  CString m_FlagValue = "none";
  CString m_FlagDefinition = "none";
  std::vector<CString> m_Categories;
};
