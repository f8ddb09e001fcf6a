#include "apps/console.h"

#include <cstdio>
#include <filesystem>

#include "apps/terminal.h"

Console::Console(std::string const &helpDirectory)
    : m_before(SetApplication(this)),
      m_helpFile((std::filesystem::absolute(helpDirectory) / "quillaven.hlp").string()) {}

Console::~Console() {
  SetApplication(m_before);
}

int Console::DoMessageBox(char const *text, char const *title, unsigned int /*type*/,
                          unsigned int /*helpId*/) {
  if (m_firstBox.empty())
    m_firstBox = OneLine(title == Name() ? std::string(text) : std::string(title) + ": " + text);
  return 1;
}

void Console::ThrowIfBoxShown(std::string const &file) const {
  if (m_firstBox.empty()) return;
  bool const isNamed = m_firstBox.find(file) != std::string::npos;
  throw Failure(isNamed ? m_firstBox : "'" + file + "': " + m_firstBox);
}

void Console::WarnIfBoxShown(std::string const &what) {
  if (!m_firstBox.empty())
    std::fprintf(stderr, "quillaven: warning: '%s': %s\n", what.c_str(), m_firstBox.c_str());
  m_firstBox.clear();
}

std::string OneLine(std::string const &text) {
  std::string line;
  for (char const c : text) {
    if (c == '\n' && !line.empty()) {
      line += line.back() == ':' ? " " : ", ";
    } else if (c != '\n' && c != '\r' && c != '\t') {
      line += c;
    }
  }
  return line;
}

Progress::Progress(int steps) : m_shown(StandardErrorIsTerminal()), m_steps(steps) {}

Progress::~Progress() {
  Clear();
}

void Progress::Clear() const {
  if (m_shown) std::fputs("\r\033[K", stderr);
}

void Progress::Step(std::string const &what) {
  ++m_step;
  if (!m_shown) return;
  Clear();
  std::fprintf(stderr, "[%d/%d] %s", m_step, m_steps, what.c_str());
  std::fflush(stderr);
}
