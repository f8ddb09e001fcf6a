// The base of the library's dialogs, as CApplication::RunModal takes them.

#pragma once

class CDialog {
 public:
  CDialog() = default;
  CDialog(CDialog const &) = default;
  CDialog &operator=(CDialog const &) = default;
  virtual ~CDialog() = default;
};
