#include <quillaven/platform/exceptions.h>

// The destructors stand here so that each class has one home for its type information, and a
// program that catches one of these knows it for the type that the library threw.
CException::~CException() = default;
CUserException::~CUserException() = default;
CArchiveException::~CArchiveException() = default;
CFileException::~CFileException() = default;
CInternetException::~CInternetException() = default;
