// An application that keeps what the library tells it, in force as long as it lives.
//
//   RecordingApplication application;
//   NoSuchFile("missing.txt");
//   EXPECT_EQ(application.boxes.at(0).title, "Error: Cannot open file");

#pragma once

#include <string>
#include <vector>

#include <quillaven/platform/application.h>

struct RecordedBox {
  std::string text;
  std::string title;
  unsigned int type = 0;
  unsigned int helpId = 0;
};

class RecordingApplication : public CApplication {
 public:
  RecordingApplication() : m_before(SetApplication(this)) {}
  ~RecordingApplication() override { SetApplication(m_before); }
  RecordingApplication(RecordingApplication const &) = delete;
  RecordingApplication &operator=(RecordingApplication const &) = delete;

  int DoMessageBox(char const *text, char const *title, unsigned int type,
                   unsigned int helpId) override {
    boxes.push_back({text, title, type, helpId});
    return 1;
  }
  void OnMainWindowMessage(unsigned int message) override { messages.push_back(message); }
  void BeginWaitCursor() override { ++waitCursorBegun; }
  void EndWaitCursor() override { ++waitCursorEnded; }
  std::string HelpFilePath() const override { return helpFilePath; }

  std::vector<RecordedBox> boxes;
  std::vector<unsigned int> messages;
  int waitCursorBegun = 0;
  int waitCursorEnded = 0;
  std::string helpFilePath;

 private:
  CApplication *m_before;
};
