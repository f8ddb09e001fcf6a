// The dialogs that are open, one above the other.
//
//   OpenWindow const open(m_open, &window);   // in front of the others until the end of this block

#pragma once

#include <vector>

/// A window at the end of a list, for as long as this lives.
template <class Window>
class OpenWindow {
 public:
  OpenWindow(std::vector<Window *> &open, Window *window) : m_open(open) {
    m_open.push_back(window);
  }
  ~OpenWindow() { m_open.pop_back(); }
  OpenWindow(OpenWindow const &) = delete;
  OpenWindow &operator=(OpenWindow const &) = delete;

 private:
  std::vector<Window *> &m_open;
};
