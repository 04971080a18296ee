#include "WatchJson.h"

#include <iostream>

#include "PolicyJson.h"
#include "policy/Sid.h"
#include "watch/EventText.h"

namespace {

/// The converted value, or null if there is none.
template <class Value, class Convert>
Json OrNull(const std::optional<Value>& value, Convert convert) {
  return value ? Json(convert(*value)) : Json(nullptr);
}

template <class Value>
Json OrNull(const std::optional<Value>& value) {
  return value ? Json(*value) : Json(nullptr);
}

Json OrNull(const std::string& text) { return text.empty() ? Json(nullptr) : Json(text); }

const char* NameOf(Watch::EventDirection direction) {
  switch (direction) {
    case Watch::EventDirection::Inbound:
      return "inbound";
    case Watch::EventDirection::Outbound:
      return "outbound";
    case Watch::EventDirection::Forwarded:
      return "forwarded";
  }
  return "";
}

const char* NameOf(Watch::Account::Agreement agreement) {
  using Agreement = Watch::Account::Agreement;
  switch (agreement) {
    case Agreement::Agrees:
      return "agrees";
    case Agreement::Depends:
      return "depends";
    case Agreement::Differs:
      return "differs";
    default:
      return "not-asked";
  }
}

/// What the engine tells.
Json ToJson(const Watch::NetEvent& event) {
  const auto address = [&](Policy::Number number) { return Policy::FormatAddress(*event.ipVersion, number); };
  return {{"direction", OrNull(event.direction, [](auto direction) { return NameOf(direction); })},
          {"ipVersion", OrNull(event.ipVersion, &VersionNumber)},
          {"protocol", OrNull(event.protocol)},
          {"localAddress", OrNull(event.localAddress, address)},
          {"localPort", OrNull(event.localPort)},
          {"remoteAddress", OrNull(event.remoteAddress, address)},
          {"remotePort", OrNull(event.remotePort)},
          {"program", event.application ? Json(Watch::ProgramText(event)) : Json(nullptr)},
          {"user", OrNull(event.user, &Policy::FormatSid)},
          {"appContainer", OrNull(event.package, &Policy::FormatSid)},
          {"loopback", OrNull(event.isLoopback)},
          {"capability", OrNull(event.capability, &Watch::CapabilityName)},
          {"filterId", OrNull(event.filterId)}};
}

/// What is known of it besides.
Json ToJson(const Watch::Account& account) {
  const auto& filter = account.filter;
  return {{"filter", filter ? Json(filter->filter.name) : Json(nullptr)},
          {"owner", filter ? Json(filter->owner) : Json(nullptr)},
          {"ours", filter && filter->isOurs},
          {"gone", filter && filter->isGone},
          {"layer", OrNull(account.layer)},
          {"presentFilters", NameOf(account.agreement)},
          {"withoutFilter", OrNull(account.withoutFilter)},
          {"text", Watch::Describe(account)}};
}

/// Names that programs choose may not be valid UTF-8.
void WriteLine(const Json& line) {
  std::cout << line.dump(-1, ' ', false, Json::error_handler_t::replace) << std::endl;
}

}  // namespace

void WatchJson::Begin() { WriteLine({{"event", "begin"}}); }

void WatchJson::Note(const std::string& text) { WriteLine({{"event", "note"}, {"text", text}}); }

void WatchJson::Tell(const Watch::Drop& drop) {
  Json line{{"event", "drop"},
            {"number", drop.number},
            {"time", Watch::TimeText(drop.event.time)},
            {"lastTime", Watch::TimeText(drop.lastTime)},
            {"count", drop.count}};
  line.update(ToJson(drop.event));
  line.update(ToJson(drop.account));
  WriteLine(line);
}

void WatchJson::TellRepeats(const Watch::Group& group) {
  WriteLine({{"event", "repeats"},
             {"number", group.number},
             {"lastTime", Watch::TimeText(group.lastTime)},
             {"count", group.Untold()}});
}

void WatchJson::End(const Watch::Totals& totals) {
  Json others = Json::object();
  for (const auto& [type, count] : totals.others) {
    others[type] = count;
  }
  step_["totals"] = {{"drops", totals.drops},
                     {"repeats", totals.repeats},
                     {"lost", totals.lost},
                     {"others", std::move(others)}};
}
