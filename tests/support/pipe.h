// A pipe with a name, through which bytes come as from another program.
//
//   Pipe const pipe(bytes);
//   EXPECT_TRUE(network.Read(pipe.Name().c_str()));   // can be read once

#pragma once

#include <cstdint>
#include <future>
#include <string>
#include <thread>

#include "tests/support/temporary_directory.h"

class Pipe {
 public:
  explicit Pipe(std::string bytes);
  /// What was not read is lost.
  ~Pipe();
  Pipe(Pipe const &) = delete;
  Pipe &operator=(Pipe const &) = delete;

  std::string const &Name() const { return m_name; }

 private:
  void Send();

  TemporaryDirectory m_directory;
  std::string m_name;
  std::string m_bytes;
  std::intptr_t m_handle = -1;  // where the system makes the end that is written to at once
  std::promise<void> m_opened;  // the sender's end
  std::thread m_sender;
};
