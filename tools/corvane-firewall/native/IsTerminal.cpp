#include "IsTerminal.h"

#include <unistd.h>

bool IsErrorsTerminal() { return isatty(STDERR_FILENO) != 0; }
