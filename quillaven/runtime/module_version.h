// The version of a loaded module, the main program or a library.
//
//   CModuleVersion version;
//   if (version.GetFileVersionInfoA("model.dll"))
//     Show(version.GetValue("FileVersion"), version.dwFileVersionMS >> 16);
//   _DllVersionInfo info;
//   if (CModuleVersion::DllGetVersion("comctl32.dll", info)) Show(info.dwMajorVersion);
//
// Version blocks are part of Windows programs and libraries; elsewhere there are none unless a
// CVersionSource (quillaven/platform/modules.h) supplies them. All failures are a false result or an
// empty string; there are no messages. Origin: the VERSIONINFO resource of Windows.

#pragma once

#include <cstdint>
#include <vector>

#include <quillaven/platform/api.h>
#include <quillaven/platform/modules.h>
#include <quillaven/platform/strings.h>

/// The public fields of the base are the fixed record of the block: 13 numbers of 32 bits, all 0
/// until one is read. A copy has a block of its own.
class QUILLAVEN_API CModuleVersion : public tagVS_FIXEDFILEINFO {
 public:
  CModuleVersion() : tagVS_FIXEDFILEINFO() {}
  CModuleVersion(CModuleVersion const &) = default;
  CModuleVersion &operator=(CModuleVersion const &) = default;
  virtual ~CModuleVersion();

  /// Reads the version block of a module that is loaded already, by its path or file name; the main
  /// program for null. A file that is only on disk is not read. False if the module is not loaded,
  /// if its path has 260 characters or more, or if it has no block whose fixed record begins with
  /// 0xFEEF04BD. Whatever happens, the fields are those of this call and the code page is 1252
  /// unless the file says otherwise; a block that was read before is kept until another takes its
  /// place.
  int GetFileVersionInfoA(char const *module);

  /// A text of the block, such as "FileVersion", in the first language that the file lists; empty if
  /// there is none. The key is spelled as the block has it; null counts as an empty one.
  CString GetValue(char const *key) const;

  /// Asks a loaded library for its version through its own entry DllGetVersion; the main program for
  /// null. True if the module is loaded, has the entry, and answers with 0 or above. The record is
  /// left alone where there is no entry to ask.
  static int DllGetVersion(char const *module, _DllVersionInfo &info);

 private:
  bool ReadFixedRecord();
  void ReadTranslation();

  std::vector<unsigned char> m_VersionData;  // the whole block; empty until one is read
  std::uint16_t m_Language = 0;
  std::uint16_t m_CodePage = 1252;
};
