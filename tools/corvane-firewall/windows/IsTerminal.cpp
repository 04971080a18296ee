#include "IsTerminal.h"

#include <WfpPlatform.h>

bool IsErrorsTerminal() {
  DWORD mode = 0;
  return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}
