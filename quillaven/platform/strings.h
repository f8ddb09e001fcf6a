// The string class of the interfaces that speak in CString, and growing arrays.
//
//   CString path = "C:\\Data\\map.txt";
//   int cut = path.ReverseFind('\\');
//   CString directory = path.Left(cut);        // C:\Data
//   CString name = path.Mid(cut + 1);          // map.txt
//
// A CString is a std::string of single-byte characters; positions count from 0, and -1 stands for
// "not found". Counts outside the text are held to it: nothing here reads out of range.

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <quillaven/platform/api.h>

class CArchive;

class QUILLAVEN_API CString : public std::string {
 public:
  CString() = default;
  CString(char const *text) : std::string(text != nullptr ? text : "") {}  // NOLINT: as a literal
  CString(std::string text) : std::string(std::move(text)) {}              // NOLINT: as a string

  operator char const *() const { return c_str(); }  // NOLINT: passes for a C string everywhere

  int GetLength() const { return static_cast<int>(size()); }
  bool IsEmpty() const { return empty(); }

  /// The first `count` characters.
  CString Left(int count) const { return substr(0, Held(count)); }
  /// The last `count` characters.
  CString Right(int count) const { return substr(size() - Held(count)); }
  /// What stands from `first` on.
  CString Mid(int first) const { return substr(Held(first)); }
  CString Mid(int first, int count) const { return Mid(first).Left(count); }

  /// First position of a text or character at or behind `start`, -1 if there is none.
  int Find(char const *text, int start = 0) const { return Position(find(text, Held(start))); }
  int Find(char character, int start = 0) const { return Position(find(character, Held(start))); }
  /// Last position of a character, -1 if there is none.
  int ReverseFind(char character) const { return Position(rfind(character)); }

  /// Turns A to Z into a to z, whatever the locale is.
  void MakeLower();
  /// Replaces the text by a printf pattern filled in. Numbers have a point, whatever the locale is.
  void Format(char const *format, ...) __attribute__((format(printf, 2, 3)));

 private:
  std::size_t Held(int count) const {
    if (count < 0) return 0;
    return static_cast<std::size_t>(count) < size() ? static_cast<std::size_t>(count) : size();
  }
  static int Position(std::size_t found) { return found == npos ? -1 : static_cast<int>(found); }
};

/// A growing array. GetAt, SetAt and [] throw std::out_of_range for a place that is none; a size
/// below 0 is 0. New elements are values of T{}.
template <class T>
class CArray {
 public:
  int GetSize() const { return static_cast<int>(m_Items.size()); }
  bool IsEmpty() const { return m_Items.empty(); }
  void SetSize(int size) { m_Items.resize(size > 0 ? static_cast<std::size_t>(size) : 0); }
  void RemoveAll() { m_Items.clear(); }
  /// Appends, and returns the place of the new element.
  int Add(T const &item) {
    m_Items.push_back(item);
    return GetSize() - 1;
  }
  T const &GetAt(int at) const { return m_Items.at(static_cast<std::size_t>(at)); }
  void SetAt(int at, T const &item) { m_Items.at(static_cast<std::size_t>(at)) = item; }
  T const &operator[](int at) const { return GetAt(at); }
  T &operator[](int at) { return m_Items.at(static_cast<std::size_t>(at)); }

 private:
  std::vector<T> m_Items;
};

/// Texts of a document. In an archive: the number of texts in count form, each in string form.
class QUILLAVEN_API CStringArray : public CArray<CString> {
 public:
  void Serialize(CArchive &archive);
};

/// Unsigned 32-bit numbers of a document. In an archive: how many in count form, 4 bytes each.
class QUILLAVEN_API CDWordArray : public CArray<std::uint32_t> {
 public:
  void Serialize(CArchive &archive);
};
