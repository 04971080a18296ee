#include <unistd.h>
#include <winbase.h>

namespace {

thread_local DWORD lastError = 0;

}  // namespace

DWORD GetLastError() { return lastError; }

void SetLastError(DWORD code) { lastError = code; }

DWORD GetCurrentProcessId() { return static_cast<DWORD>(getpid()); }
