#include "emulator/NetEventLog.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "emulator/NetEventSelection.h"

namespace EngineEmulator {

void NetEventLog::Add(NetEventPtr event) {
  constexpr std::size_t kMostBytesOfAll = 128 * 1024;
  size_ += event->Size();
  events_.push_back(std::move(event));
  while (size_ > kMostBytesOfAll) {
    size_ -= events_.front()->Size();
    events_.pop_front();
  }
}

std::vector<NetEventPtr> NetEventLog::Select(const FWPM_NET_EVENT_ENUM_TEMPLATE0* criteria) const {
  std::vector<NetEventPtr> selected;
  std::ranges::copy_if(events_, std::back_inserter(selected),
                       [&](const NetEventPtr& event) { return Selects(criteria, false, event->Record()); });
  return selected;
}

}  // namespace EngineEmulator
