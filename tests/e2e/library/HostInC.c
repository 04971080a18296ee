/* A host in plain C. */
#include "corvane/native_firewall.h"

typedef uint64_t(CORVANE_CALL* DisableInternetFunction)(const wchar_t* const* apps, uint32_t appCount,
                                                        const wchar_t* const* interfaceNames,
                                                        uint32_t interfaceCount, LogCallback log);
_Static_assert(_Generic(&DisableInternet, DisableInternetFunction : 1, default : 0),
               "a host's own idea of the function");

static uint32_t lineCount;

static uint64_t CORVANE_CALL CountLine(const char* line) {
  lineCount += line[0] != '\0';
  return 0;
}

/* Disables the internet; gives the number of lines logged. */
uint32_t LinesLoggedInC(DisableInternetFunction disableInternet) {
  lineCount = 0;
  return disableInternet(NULL, 0, NULL, 0, CountLine) == 0 ? lineCount : 0;
}
