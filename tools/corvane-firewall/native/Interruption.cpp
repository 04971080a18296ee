#include "Interruption.h"

#include <array>
#include <atomic>
#include <csignal>
#include <cstddef>

namespace {

std::atomic<bool> isAskedFor{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a handler of a signal must not wait");

constexpr std::array kSignals{SIGINT, SIGTERM};
std::array<struct sigaction, kSignals.size()> actionsBefore;

void Ask(int) { isAskedFor = true; }

}  // namespace

Interruption::Interruption() {
  isAskedFor = false;
  struct sigaction action {};
  action.sa_handler = &Ask;
  // The second time the signal does what it does without a handler.
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    sigaction(kSignals[i], &action, &actionsBefore[i]);
  }
}

Interruption::~Interruption() {
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    sigaction(kSignals[i], &actionsBefore[i], nullptr);
  }
}

bool Interruption::IsAskedFor() { return isAskedFor; }
