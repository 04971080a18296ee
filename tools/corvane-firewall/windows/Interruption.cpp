#include "Interruption.h"

#include <windows.h>

#include <atomic>

namespace {

std::atomic<bool> isAskedFor{false};

/// Runs on a thread of its own. What it does not handle ends the program.
BOOL WINAPI Ask(DWORD event) {
  const bool isWish = event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT;
  return isWish && !isAskedFor.exchange(true) ? TRUE : FALSE;
}

}  // namespace

Interruption::Interruption() {
  isAskedFor = false;
  SetConsoleCtrlHandler(&Ask, TRUE);
}

Interruption::~Interruption() { SetConsoleCtrlHandler(&Ask, FALSE); }

bool Interruption::IsAskedFor() { return isAskedFor; }
