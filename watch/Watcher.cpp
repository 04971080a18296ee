#include "watch/Watcher.h"

#include <cstdint>
#include <utility>
#include <vector>

#include "catalog/Format.h"
#include "watch/EventText.h"
#include "watch/RememberedEvents.h"
#include "watch/Subscription.h"

namespace Watch {
namespace {

using Clock = std::chrono::steady_clock;

/// How long it may take until an end is noticed.
constexpr std::chrono::milliseconds kTick{100};
/// How often the engine is asked whether it is there, and repeats are looked for.
constexpr std::chrono::seconds kLook{1};

struct Keyword {
  UINT32 bit;
  const char* recorded;
};
/// What the engine records besides, if its option says so.
constexpr Keyword kKeywords[]{{FWPM_NET_EVENT_KEYWORD_INBOUND_MCAST, "drops of inbound multicast"},
                              {FWPM_NET_EVENT_KEYWORD_INBOUND_BCAST, "drops of inbound broadcast"},
                              {FWPM_NET_EVENT_KEYWORD_CAPABILITY_DROP, "drops for want of a capability"},
                              {FWPM_NET_EVENT_KEYWORD_CLASSIFY_ALLOW, "permitted connections"}};

/// Empty if the engine records everything.
std::string NotRecorded(UINT32 keywords) {
  std::string names;
  for (const auto& [bit, recorded] : kKeywords) {
    if ((keywords & bit) == 0) {
      names.append(names.empty() ? "" : ", ").append(recorded);
    }
  }
  return names.empty() ? "" : "The engine does not record, as is usual: " + names + '.';
}

/// From the subscription to its end.
class Vigil {
 public:
  Vigil(const EventCalls& engine, FilterKeeper::Read read, std::optional<GUID> ours, Audience& audience)
      : audience_(audience), subscription_(engine, queue_), filters_(std::move(read), ours, Clock::now()) {}

  void Begin() {
    audience_.Begin();
    LookAtCollection();
    if (const auto keywords = subscription_.ReadOption(FWPM_ENGINE_NET_EVENT_MATCH_ANY_KEYWORDS)) {
      if (const std::string note = NotRecorded(*keywords); !note.empty()) {
        audience_.Note(note);
      }
    }
  }

  /// @throws WatchError when the engine does not answer any more.
  void Keep(const std::function<bool()>& isOver) {
    Clock::time_point nextLook = Clock::now() + kLook;
    while (!isOver()) {
      TellNext(Clock::now() + kTick);
      if (const auto now = Clock::now(); now >= nextLook) {
        nextLook = now + kLook;
        LookAround(now);
      }
    }
  }

  void End() {
    while (TellNext(Clock::time_point())) {
    }
    TellRepeats(folding_.TakeRest());
    NoteLost();
    audience_.End(totals_);
  }

 private:
  bool TellNext(Clock::time_point until) {
    const std::optional<NetEvent> event = queue_.Take(until);
    if (event) {
      Tell(*event);
    }
    return event.has_value();
  }

  void Tell(const NetEvent& event) {
    if (event.kind == EventKind::Other) {
      ++totals_.others[TypeName(event.type)];
      return;
    }
    const auto now = Clock::now();
    const Folding::Added added = folding_.Add(event, now);
    if (added.forgotten) {
      audience_.TellRepeats(*added.forgotten);
    }
    if (!added.begun) {
      ++totals_.repeats;
      return;
    }
    ++totals_.drops;
    filters_.Refresh(event.filterId.value_or(0), now);
    audience_.Tell({added.begun->number, event, 1, event.time, AccountOf(event, filters_)});
  }

  void TellRepeats(const std::vector<Group>& groups) {
    for (const Group& group : groups) {
      audience_.TellRepeats(group);
    }
  }

  void LookAround(Clock::time_point now) {
    TellRepeats(folding_.TakeDue(now));
    NoteLost();
    LookAtCollection();
  }

  void NoteLost() {
    const std::size_t lost = queue_.LostCount();
    if (lost != totals_.lost) {
      audience_.Note("Events came too fast: " + Catalog::FormatNumber(lost - totals_.lost) + " were lost.");
    }
    totals_.lost = lost;
  }

  void LookAtCollection() {
    const bool collects = subscription_.ReadOption(FWPM_ENGINE_COLLECT_NET_EVENTS).value_or(1) != 0;
    if (collects != collects_) {
      audience_.Note(collects
                         ? "The engine collects net events again."
                         : "The engine does not collect net events, so nothing can be seen. \"netsh wfp set "
                           "options netevents=on\" switches it on, for everybody and for good.");
    }
    collects_ = collects;
  }

  Audience& audience_;
  EventQueue queue_;
  Subscription subscription_;  // after the queue that it fills
  FilterKeeper filters_;
  Folding folding_;
  Totals totals_;
  bool collects_ = true;
};

}  // namespace

Watcher::Watcher(const EventCalls& engine, FilterKeeper::Read read, std::optional<GUID> ours,
                 Audience& audience)
    : engine_(engine), read_(std::move(read)), ours_(ours), audience_(audience) {}

void Watcher::Run(const std::function<bool()>& isOver) {
  Vigil vigil(engine_, read_, ours_, audience_);
  std::optional<WatchError> lost;
  try {
    vigil.Begin();
    vigil.Keep(isOver);
  } catch (const WatchError& error) {
    lost = error;
  }
  vigil.End();
  if (lost) {
    throw LostSubscription(*lost);
  }
}

void Watcher::TellRemembered() {
  Folding folding(SIZE_MAX);
  Totals totals;
  for (const NetEvent& event : ReadRememberedEvents(engine_)) {
    if (event.kind == EventKind::Other) {
      ++totals.others[TypeName(event.type)];
    } else if (folding.Add(event, Clock::time_point()).begun) {
      ++totals.drops;
    } else {
      ++totals.repeats;
    }
  }
  const FilterKeeper filters(read_, ours_, Clock::now());
  std::size_t number = 0;
  for (const Group& group : folding.All()) {
    audience_.Tell({++number, group.first, group.count, group.lastTime, AccountOf(group.first, filters)});
  }
  audience_.End(totals);
}

}  // namespace Watch
