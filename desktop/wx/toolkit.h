// The toolkit, started if nobody else has. What was started here is stopped with the last owner.
//
//   std::shared_ptr<Toolkit> const toolkit = Toolkit::Shared();
//   if (toolkit->Start()) wxMessageBox("a display");

#pragma once

#include <memory>
#include <wx/string.h>

class Toolkit {
 public:
  /// There is one in a process, as there is one wxTheApp.
  static std::shared_ptr<Toolkit> Shared();
  ~Toolkit();
  Toolkit(Toolkit const &) = delete;
  Toolkit &operator=(Toolkit const &) = delete;

  /// False if there is no display.
  bool Start();

 private:
  Toolkit() = default;

  bool m_mine = false;
};

/// A text of the library: UTF-8, or one byte for each character where it is none.
wxString ToolkitText(char const *text);
