#include "JsonReporter.h"

#include <algorithm>
#include <iostream>
#include <iterator>

#include "PolicyJson.h"

namespace {

const char* EngineName(Engine engine) { return engine == Engine::System ? "system" : "emulated"; }

Json KeyOrNull(const std::optional<std::string>& key) { return key ? Json(*key) : Json(nullptr); }

template <class Listed, class Convert>
Json ToArray(const std::vector<Listed>& all, Convert convert) {
  Json json = Json::array();
  std::ranges::transform(all, std::back_inserter(json), convert);
  return json;
}

Json ValueToJson(const ListedValue& value) { return {{"type", value.type}, {"value", value.value}}; }

Json ConditionToJson(const ListedCondition& condition) {
  return {{"field", condition.field},     {"fieldKey", condition.fieldKey}, {"match", condition.match},
          {"type", condition.value.type}, {"value", condition.value.value}, {"text", condition.text}};
}

Json FilterToJson(const ListedFilter& filter) {
  return {{"id", filter.id},
          {"key", filter.key},
          {"name", filter.name},
          {"provider", KeyOrNull(filter.provider)},
          {"layer", filter.layer},
          {"layerKey", filter.layerKey},
          {"sublayer", filter.sublayer},
          {"action", filter.action},
          {"callout", KeyOrNull(filter.callout)},
          {"flags", filter.flags},
          {"override", (filter.flags & FWPM_FILTER_FLAG_CLEAR_ACTION_RIGHT) != 0},
          {"weight", ValueToJson(filter.weight)},
          {"effectiveWeight", ValueToJson(filter.effectiveWeight)},
          {"conditions", ToArray(filter.conditions, ConditionToJson)}};
}

Json SublayerToJson(const ListedSublayer& sublayer) {
  return {{"key", sublayer.key},
          {"name", sublayer.name},
          {"description", sublayer.description},
          {"provider", KeyOrNull(sublayer.provider)},
          {"weight", sublayer.weight ? Json(*sublayer.weight) : Json(nullptr)},
          {"filters", ToArray(sublayer.filters, FilterToJson)}};
}

}  // namespace

JsonReporter::JsonReporter(std::optional<Engine> engine)
    : engine_(engine),
      document_{{"engine", engine ? Json(EngineName(*engine)) : Json(nullptr)},
                {"ok", true},
                {"steps", Json::array()}} {}

void JsonReporter::BeginStep(const std::string& step) {
  document_["steps"].push_back({{"step", step}, {"ok", false}, {"log", Json::array()}});
}

void JsonReporter::Log(const std::string& line) { Step()["log"].push_back(line); }

void JsonReporter::ShowStatus(const Status& status) {
  Step()["status"] = {
      {"internet", status.internet},
      {"dhcp", status.dhcp},
      {"leakProtection", status.leakProtection},
      {"localNetwork", status.localNetwork},
  };
}

void JsonReporter::ShowAdapters(const std::vector<ListedAdapter>& adapters) {
  Json& list = Step()["adapters"] = Json::array();
  for (const ListedAdapter& adapter : adapters) {
    list.push_back({{"name", adapter.name},
                    {"description", adapter.description},
                    {"luid", std::to_string(adapter.luid)}});
  }
}

void JsonReporter::ShowListing(const Listing& listing) {
  Json& step = Step();
  step["provider"] = nullptr;
  if (listing.provider) {
    const ListedProvider& provider = *listing.provider;
    step["provider"] = {
        {"key", provider.key}, {"name", provider.name}, {"description", provider.description}};
  }
  step["sublayers"] = ToArray(listing.sublayers, SublayerToJson);
}

void JsonReporter::ShowExplanation(const Policy::Explanation& explanation, const Policy::Labels& labels) {
  Step()["explanations"].push_back(ToJson(explanation, labels));
}

void JsonReporter::ShowMap(const Policy::Map& map, const Policy::Labels&) { Step()["map"] = ToJson(map); }

void JsonReporter::ShowPromises(const std::vector<Promises::PromiseResult>& promises,
                                const Policy::Labels& labels) {
  Step()["promises"] = ToJson(promises, labels);
}

void JsonReporter::ShowFindings(const std::vector<Policy::Finding>& findings) {
  Step()["findings"] = ToJson(findings);
}

void JsonReporter::ShowFile(const std::string& path) { Step()["file"] = path; }

void JsonReporter::EndStep() { Step()["ok"] = true; }

void JsonReporter::Fail(const Failure& failure) {
  document_["ok"] = false;
  Json error{{"text", failure.what()}};
  if (const auto code = failure.Code()) {
    error["code"] = *code;
    error["name"] = CodeName(*code);
  }
  if (const std::string hint = failure.Hint(engine_); !hint.empty()) {
    error["hint"] = hint;
  }
  document_["error"] = std::move(error);
}

void JsonReporter::Finish() {
  // Names of adapters come from elsewhere and need not be valid text.
  std::cout << document_.dump(2, ' ', false, Json::error_handler_t::replace) << std::endl;
}
