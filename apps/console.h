// The program as the application around the library: boxes become lines on standard error, and long
// work shows where it is when standard error is a terminal.
//
//   Console console("data");                 // data/Legends and data/Palettes
//   Progress progress(3);
//   progress.Step("reading landuse.asc");
//   if (map.OnFileImport(...) == 0) throw Failure("cannot read landuse.asc");

#pragma once

#include <stdexcept>
#include <string>

#include <quillaven/quillaven.h>

/// Ends a command with one line on standard error and a non-zero status.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The same for arguments that no file or machine could make right, with a status of their own.
class BadArguments : public Failure {
 public:
  using Failure::Failure;
};

/// In force as long as it lives; its help directory holds "Legends" and "Palettes".
class Console : public CApplication {
 public:
  explicit Console(std::string const &helpDirectory);
  ~Console() override;
  Console(Console const &) = delete;
  Console &operator=(Console const &) = delete;

  /// The first box ends the command: thrown as a Failure once the library call is over, behind the
  /// file that the call worked on, unless there is none or the box names it.
  void ThrowIfBoxShown(std::string const &file) const;
  std::string const &FirstBox() const { return m_firstBox; }
  /// Prints the first box as a warning on what the call worked on, and forgets it.
  void WarnIfBoxShown(std::string const &what);

  int DoMessageBox(char const *text, char const *title, unsigned int type,
                   unsigned int helpId) override;
  std::string HelpFilePath() const override { return m_helpFile; }
  /// The same pictures on every machine.
  CStampImage MakeStamp(char const *text) override { return DrawWithBuiltInFont(text); }

 private:
  CApplication *m_before;
  std::string m_helpFile;
  std::string m_firstBox;
};

/// The steps of long work, each shown on one line that the next writes over. Silent when standard
/// error is no terminal.
class Progress {
 public:
  explicit Progress(int steps);
  ~Progress();
  Progress(Progress const &) = delete;
  Progress &operator=(Progress const &) = delete;

  void Step(std::string const &what);
  /// Takes the line away, before something is printed where it stands.
  void Clear() const;

 private:
  bool m_shown;
  int m_steps;
  int m_step = 0;
};

/// A text of several lines as one.
std::string OneLine(std::string const &text);
