#include "PolicyJson.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>

#include "OpenQuestions.h"
#include "catalog/Format.h"
#include "catalog/Names.h"
#include "policy/LintText.h"
#include "policy/Summary.h"

namespace {

using ::ToJson;
using Policy::IpVersion;

std::string HexDigits(UINT64 number) {
  std::array<char, 16> digits;
  return {digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), number, 16).ptr};
}

Json ToJson(const std::optional<Policy::Action>& action) {
  return action ? Json(Policy::ActionText(*action)) : Json(nullptr);
}

/// The converted value, or null if there is none.
template <class Value, class Convert>
Json ToJson(const std::optional<Value>& value, Convert convert) {
  return value ? Json(convert(*value)) : Json(nullptr);
}

Json ToJson(const std::vector<Policy::Choice>& choices) {
  Json json = Json::object();
  for (const Policy::Choice& choice : choices) {
    const Policy::AssumptionText& text = Policy::TextOf(choice.assumption);
    json[std::string(text.name)] = text.readings[choice.reading].name;
  }
  return json;
}

Json Reference(const Policy::Filter* filter) {
  return filter == nullptr ? Json(nullptr) : Json{{"id", filter->id}, {"name", filter->name}};
}

Json References(const std::vector<const Policy::Filter*>& filters) {
  Json json = Json::array();
  std::ranges::transform(filters, std::back_inserter(json), Reference);
  return json;
}

Json ToJson(const std::vector<Policy::NearMiss>& nearMisses) {
  Json json = Json::array();
  for (const auto& [filter, field, action] : nearMisses) {
    json.push_back({{"filter", Reference(filter)},
                    {"action", Policy::ActionText(action)},
                    {"field", Policy::FieldText(field)}});
  }
  return json;
}

Json SublayerName(const Policy::Sublayer* sublayer) {
  if (sublayer == nullptr) {
    return nullptr;
  }
  return sublayer->name.empty() ? Catalog::SublayerName(sublayer->key) : sublayer->name;
}

const char* EffectText(Policy::SublayerTrace::Effect effect) {
  using Effect = Policy::SublayerTrace::Effect;
  switch (effect) {
    case Effect::Stands:
      return "stands";
    case Effect::Overridden:
      return "overridden";
    case Effect::Ignored:
      return "ignored";
    default:
      return "none";
  }
}

Json ToJson(const Policy::LayerTrace& trace) {
  Json json{{"layer", trace.layer->name},
            {"verdict", ToJson(trace.verdict)},
            {"action", ToJson(trace.action)},
            {"sublayers", Json::array()}};
  for (const Policy::SublayerTrace& sublayer : trace.sublayers) {
    json["sublayers"].push_back({{"name", SublayerName(sublayer.sublayer)},
                                 {"weight", sublayer.sublayer->weight},
                                 {"deciding", Reference(sublayer.deciding)},
                                 {"outranked", References(sublayer.outranked)},
                                 {"unjudged", References(sublayer.unjudged)},
                                 {"turning", References(sublayer.turning)},
                                 {"nearMisses", ToJson(sublayer.nearMisses)},
                                 {"effect", EffectText(sublayer.effect)},
                                 {"by", SublayerName(sublayer.by)}});
  }
  return json;
}

Json ToJson(const Policy::Ending& ending, const Policy::Owners& owners) {
  const Policy::Filter* filter = ending.deciding;
  return {{"readings", ToJson(ending.outcome.choices)},
          {"verdict", ToJson(ending.outcome.action)},
          {"filter", Reference(filter)},
          {"owner", filter == nullptr ? Json(nullptr) : Json(owners.NameOf(*filter))},
          {"ours", filter != nullptr && owners.KindOf(*filter) == Policy::OwnerKind::Ours}};
}

/// LUIDs are decimal, other numbers hexadecimal.
std::string NumberText(Policy::Number number, bool isLuid) {
  return isLuid ? Catalog::FormatNumber(number.low) : HexText(number);
}

bool IsLuid(Policy::Field field) {
  using enum Policy::Field;
  return field == LocalInterface || field == ArrivalInterface || field == NextHopInterface;
}

Json ToJson(const std::vector<Policy::Interval>& intervals, bool areLuids) {
  Json json = Json::array();
  for (const Policy::Interval& interval : intervals) {
    json.push_back({NumberText(interval.first, areLuids), NumberText(interval.last, areLuids)});
  }
  return json;
}

Json ToJson(const std::vector<Policy::ValueClass::Masked>& patterns) {
  Json json = Json::array();
  for (const auto& [mask, value, except] : patterns) {
    json.push_back({{"mask", mask}, {"value", value}, {"except", except}});
  }
  return json;
}

Json HexTexts(const std::vector<std::string>& texts) {
  Json json = Json::array();
  for (const std::string& text : texts) {
    json.push_back(HexText(text));
  }
  return json;
}

Json ExampleOf(const Policy::ValueClass& values, bool isLuid) {
  if (values.exampleApplication) {
    return HexText(*values.exampleApplication);
  }
  return ToJson(values.exampleNumber, [isLuid](Policy::Number number) { return NumberText(number, isLuid); });
}

Json ToJson(const Policy::MapTarget& target) {
  return {{target.isVerdict ? "verdict" : "node", target.index}};
}

Json ToJson(const Policy::MapSection& section) {
  Json json{{"direction", DirectionText(section.direction)},
            {"ipVersion", VersionNumber(section.ipVersion)},
            {"fields", Json::array()},
            {"nodes", Json::array()},
            {"root", ToJson(section.root)}};
  for (const Policy::FieldClasses& field : section.fields) {
    Json classes = Json::array();
    for (const Policy::ValueClass& values : field.classes) {
      classes.push_back(ToJson(values, field.field));
    }
    json["fields"].push_back({{"field", Policy::FieldText(field.field)}, {"classes", std::move(classes)}});
  }
  for (const Policy::MapNode& node : section.nodes) {
    Json targets = Json::array();
    for (const Policy::MapTarget& target : node.targets) {
      targets.push_back(ToJson(target));
    }
    json["nodes"].push_back({{"field", node.field}, {"targets", std::move(targets)}});
  }
  return json;
}

}  // namespace

const char* DirectionText(Policy::Direction direction) {
  return direction == Policy::Direction::Outbound ? "outbound" : "inbound";
}

int VersionNumber(Policy::IpVersion ipVersion) { return ipVersion == IpVersion::V4 ? 4 : 6; }

std::string HexText(Policy::Number number) {
  const std::string low = HexDigits(number.low);
  return number.high == 0 ? "0x" + low
                          : "0x" + HexDigits(number.high) + std::string(16 - low.size(), '0') + low;
}

std::string HexText(std::string_view bytes) {
  return bytes.empty() ? ""
                       : Catalog::FormatBytes({reinterpret_cast<const UINT8*>(bytes.data()), bytes.size()});
}

Json ToJson(const Policy::ValueClass& values, Policy::Field field) {
  return {{"text", values.text},
          {"unset", values.unset},
          {"intervals", ToJson(values.intervals, IsLuid(field))},
          {"masked", ToJson(values.masked)},
          {"applications", HexTexts(values.applications)},
          {"endings", HexTexts(values.endings)},
          {"others", values.others},
          {"example", ExampleOf(values, IsLuid(field))}};
}

Json ToJson(const Policy::Verdict& verdict) {
  constexpr std::array kKinds{"block", "permit", "depends"};
  Json json{{"verdict", kKinds.at(static_cast<std::size_t>(verdict.GetKind()))},
            {"text", Policy::Describe(verdict)}};
  if (verdict.GetKind() == Policy::Verdict::Kind::Depends) {
    json["outcomes"] = Json::array();
    for (const auto& [choices, action] : verdict.Outcomes()) {
      json["outcomes"].push_back({{"readings", ToJson(choices)}, {"verdict", ToJson(action)}});
    }
  }
  return json;
}

Json ToJson(const Policy::Connection& connection, const Policy::Labels& labels) {
  const auto number = [](auto value) { return value; };
  const auto luid = [](UINT64 value) { return Catalog::FormatNumber(value); };
  const auto bytes = [](const std::string& value) { return HexText(value); };
  const auto address = [&](Policy::Number value) {
    return Policy::FormatAddress(connection.ipVersion, value);
  };
  return {{"text", Policy::Describe(connection, labels)},
          {"direction", DirectionText(connection.direction)},
          {"ipVersion", VersionNumber(connection.ipVersion)},
          {"protocol", ToJson(connection.protocol, number)},
          {"localAddress", ToJson(connection.localAddress, address)},
          {"localPort", ToJson(connection.localPort, number)},
          {"remoteAddress", ToJson(connection.remoteAddress, address)},
          {"remotePort", ToJson(connection.remotePort, number)},
          {"application", ToJson(connection.application, bytes)},
          {"interface", ToJson(connection.localInterface, luid)},
          {"arrivalInterface", ToJson(connection.arrivalInterface, luid)},
          {"nextHopInterface", ToJson(connection.nextHopInterface, luid)},
          {"flags", ToJson(connection.flags, number)}};
}

Json ToJson(const Policy::Explanation& explanation, const Policy::Owners& owners,
            const Policy::Labels& labels) {
  Json json{{"connection", ToJson(explanation.connection, labels)},
            {"verdict", ToJson(explanation.verdict)},
            {"expected", ToJson(explanation.verdict.In(explanation.world), Policy::ActionText)},
            {"summary", Policy::Summarize(explanation, owners, labels, SettledByOptions())},
            {"endings", Json::array()},
            {"layers", Json::array()}};
  for (const Policy::Ending& ending : explanation.endings) {
    json["endings"].push_back(ToJson(ending, owners));
  }
  for (const Policy::LayerTrace& layer : explanation.layers) {
    json["layers"].push_back(ToJson(layer));
  }
  return json;
}

Json ToJson(const Policy::Map& map) {
  Json json{{"verdicts", Json::array()}, {"sections", Json::array()}};
  for (const Policy::Verdict& verdict : map.verdicts) {
    json["verdicts"].push_back(ToJson(verdict));
  }
  for (const Policy::MapSection& section : map.sections) {
    json["sections"].push_back(ToJson(section));
  }
  return json;
}

Json ToJson(const std::vector<Promises::PromiseResult>& promises, const Policy::Owners& owners,
            const Policy::Labels& labels) {
  Json json = Json::array();
  for (const Promises::PromiseResult& promise : promises) {
    Json alternatives = Json::array();
    for (const auto& choices : Policy::Alternatives(promise.worlds)) {
      alternatives.push_back(ToJson(choices));
    }
    Json breaks = Json::array();
    for (const auto& [connection, filter, isCertain] : promise.breaks) {
      breaks.push_back({{"filter", Reference(filter)},
                        {"owner", filter == nullptr ? Json(nullptr) : Json(owners.NameOf(*filter))},
                        {"ours", filter != nullptr && owners.KindOf(*filter) == Policy::OwnerKind::Ours},
                        {"certain", isCertain},
                        {"connection", ToJson(connection, labels)}});
    }
    json.push_back(
        {{"feature", promise.feature},
         {"name", promise.name},
         {"sentence", promise.sentence},
         {"state", Promises::KeepingText(promise.keeping)},
         {"holds", promise.keeping == Promises::Keeping::Holds},
         {"holdsUnder", std::move(alternatives)},
         {"alone", ToJson(promise.alone, Promises::KeepingText)},
         {"breaks", std::move(breaks)},
         {"promised", ToJson(promise.promised)},
         {"counterexample", ToJson(promise.counterexample,
                                   [&](const auto& example) { return ToJson(example, owners, labels); })},
         {"text", Promises::Describe(promise, labels)}});
  }
  return json;
}

Json ToJson(std::vector<Policy::Finding> findings, const Policy::Owners& owners) {
  SortByOwner(findings, owners);
  Json json = Json::array();
  for (const Policy::Finding& finding : findings) {
    json.push_back({{"kind", Policy::FindingName(finding.kind)},
                    {"filter", Reference(finding.filter)},
                    {"owner", owners.NameOf(*finding.filter)},
                    {"ours", owners.KindOf(*finding.filter) == Policy::OwnerKind::Ours},
                    {"platform", owners.KindOf(*finding.filter) == Policy::OwnerKind::Platform},
                    {"layer", Catalog::LayerName(finding.filter->layerKey)},
                    {"other", Reference(finding.other)},
                    {"reason", finding.reason},
                    {"advice", finding.advice}});
  }
  return json;
}
