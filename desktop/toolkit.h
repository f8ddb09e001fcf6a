// The toolkit, started if nobody else has, and stopped by whoever started it.

#pragma once

#include <wx/string.h>

class Toolkit {
 public:
  Toolkit() = default;
  ~Toolkit();
  Toolkit(Toolkit const &) = delete;
  Toolkit &operator=(Toolkit const &) = delete;

  /// False if there is no display.
  bool Start();

 private:
  bool m_mine = false;
};

/// A text of the library: UTF-8, or one byte for each character where it is none.
wxString ToolkitText(char const *text);
