// The last error of this thread, and the system's text for an error.

#pragma once

#include <optional>
#include <string>

/// The code that the last failing operation left (errno here, GetLastError on Windows).
unsigned long LastSystemError();

/// The system's text for a code in the user's language, as the system gives it, with each %1
/// replaced by `name`; nothing where the system has no text.
std::optional<std::string> SystemErrorText(unsigned long code, char const *name);
