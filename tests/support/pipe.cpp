#include "tests/support/pipe.h"

#include <filesystem>
#include <stdexcept>
#include <utility>

#if defined(_WIN32)

#include <windows.h>

Pipe::Pipe(std::string bytes)
    : m_name("\\\\.\\pipe\\" + std::filesystem::path(m_directory.Path()).filename().string()),
      m_bytes(std::move(bytes)) {
  HANDLE const handle =
      ::CreateNamedPipeA(m_name.c_str(), PIPE_ACCESS_OUTBOUND, PIPE_TYPE_BYTE | PIPE_WAIT, 1,
                         1U << 16, 1U << 16, 0, nullptr);
  if (handle == INVALID_HANDLE_VALUE) throw std::runtime_error("no pipe can be made");
  m_handle = reinterpret_cast<std::intptr_t>(handle);
  m_sender = std::thread([this] { Send(); });
}

// Should no one have read, this is the reader that the sender waits for.
Pipe::~Pipe() {
  HANDLE const reader =
      ::CreateFileA(m_name.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  if (reader != INVALID_HANDLE_VALUE) ::CloseHandle(reader);
  m_sender.join();
}

void Pipe::Send() {
  HANDLE const handle = reinterpret_cast<HANDLE>(m_handle);
  if (::ConnectNamedPipe(handle, nullptr) || ::GetLastError() == ERROR_PIPE_CONNECTED) {
    DWORD written = 0;
    ::WriteFile(handle, m_bytes.data(), static_cast<DWORD>(m_bytes.size()), &written, nullptr);
    ::FlushFileBuffers(handle);
  }
  ::CloseHandle(handle);
}

#else

#include <csignal>
#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

Pipe::Pipe(std::string bytes) : m_name(m_directory.Path("pipe")), m_bytes(std::move(bytes)) {
  if (::mkfifo(m_name.c_str(), 0600) != 0) throw std::runtime_error("no pipe can be made");
  m_sender = std::thread([this] { Send(); });
}

// Should no one have read, this is the reader that the sender waits for.
Pipe::~Pipe() {
  int const reader = ::open(m_name.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  m_opened.get_future().wait();
  if (reader != -1) ::close(reader);
  m_sender.join();
}

void Pipe::Send() {
  // A reader that stops early ends a write, and not the program.
  sigset_t signals;
  ::sigemptyset(&signals);
  ::sigaddset(&signals, SIGPIPE);
  ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  int const handle = ::open(m_name.c_str(), O_WRONLY | O_CLOEXEC);
  m_opened.set_value();
  char const *at = m_bytes.data();
  for (std::size_t left = m_bytes.size(); left > 0;) {
    ssize_t const written = ::write(handle, at, left);
    if (written <= 0) break;
    at += written;
    left -= static_cast<std::size_t>(written);
  }
  if (handle != -1) ::close(handle);
}

#endif
