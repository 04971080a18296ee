#include "JsonReporter.h"

#include <algorithm>
#include <iostream>
#include <iterator>

#include "AskedCircumstances.h"
#include "CalibrationJson.h"
#include "PolicyJson.h"
#include "ValueJson.h"
#include "WatchJson.h"
#include "catalog/Names.h"

namespace {

Json KeyOrNull(const std::optional<GUID>& key) {
  return key ? Json(Catalog::FormatGuid(*key)) : Json(nullptr);
}

template <class Shown, class Convert>
Json ToArray(const std::vector<Shown>& all, Convert convert) {
  Json json = Json::array();
  std::ranges::transform(all, std::back_inserter(json), convert);
  return json;
}

Json ConditionToJson(const Policy::Condition& condition) {
  return {{"field", Catalog::FieldName(condition.fieldKey)},
          {"fieldKey", Catalog::FormatGuid(condition.fieldKey)},
          {"match", Catalog::MatchName(condition.match)},
          {"type", Catalog::DataTypeName(condition.value.type)},
          {"value", ToJson(condition.value)},
          {"text", condition.text}};
}

Json WeightToJson(const Policy::Value& weight) {
  return {{"type", Catalog::DataTypeName(weight.type)}, {"value", ToJson(weight)}};
}

Json FilterToJson(const Policy::Filter* filter) {
  return {{"id", filter->id},
          {"key", Catalog::FormatGuid(filter->key)},
          {"name", filter->name},
          {"provider", KeyOrNull(filter->providerKey)},
          {"layer", Catalog::LayerName(filter->layerKey)},
          {"layerKey", Catalog::FormatGuid(filter->layerKey)},
          {"sublayer", Catalog::FormatGuid(filter->sublayerKey)},
          {"action", Catalog::ActionName(filter->action)},
          {"callout", KeyOrNull(filter->calloutKey)},
          {"flags", filter->flags},
          {"override", (filter->flags & FWPM_FILTER_FLAG_CLEAR_ACTION_RIGHT) != 0},
          {"weight", WeightToJson(filter->weight)},
          {"effectiveWeight", WeightToJson({FWP_UINT64, filter->effectiveWeight})},
          {"conditions", ToArray(filter->conditions, ConditionToJson)}};
}

Json SublayerToJson(const SublayerContents& contents) {
  const Policy::Sublayer& sublayer = *contents.sublayer;
  return {{"key", Catalog::FormatGuid(sublayer.key)},
          {"name", sublayer.listed ? sublayer.name : ""},
          {"description", sublayer.description},
          {"provider", KeyOrNull(sublayer.providerKey)},
          {"weight", sublayer.listed ? Json(sublayer.weight) : Json(nullptr)},
          {"filters", ToArray(contents.filters, FilterToJson)}};
}

Json RefusalToJson(const Replay::Refusal& refusal) {
  return {{"reason", refusal.reason}, {"count", refusal.count}, {"example", refusal.example}};
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

void JsonReporter::ShowContents(const Contents& contents) {
  Json& step = Step();
  step["provider"] = nullptr;
  if (const Policy::Provider* provider = contents.provider) {
    step["provider"] = {{"key", Catalog::FormatGuid(provider->key)},
                        {"name", provider->name},
                        {"description", provider->description}};
  }
  step["sublayers"] = ToArray(contents.sublayers, SublayerToJson);
}

void JsonReporter::ShowExplanation(const Policy::Explanation& explanation,
                                   const ExplanationContext& context) {
  Json json = ToJson(explanation, context.owners, context.labels);
  json["askedFor"] = Json::object();
  for (const ToldCircumstance& circumstance : context.told) {
    json["askedFor"][circumstance.name] = circumstance.text;
  }
  Step()["explanations"].push_back(std::move(json));
}

void JsonReporter::ShowMap(const Policy::Map& map, const Policy::Labels&) { Step()["map"] = ToJson(map); }

void JsonReporter::ShowPromises(const std::vector<Promises::PromiseResult>& promises,
                                const Policy::Owners& owners, const Policy::Labels& labels) {
  Step()["promises"] = ToJson(promises, owners, labels);
}

void JsonReporter::ShowFindings(const std::vector<Policy::Finding>& findings, const Policy::Owners& owners,
                                Policy::Detail) {
  Step()["findings"] = ToJson(findings, owners);
}

void JsonReporter::ShowAgreement(const Replay::Agreement& agreement) {
  Step().update({{"filters", agreement.filters},
                 {"accepted", agreement.accepted},
                 {"refusals", ToArray(agreement.refusals, RefusalToJson)},
                 {"automaticWeights", agreement.automaticWeights},
                 {"equalWeights", agreement.equalWeights},
                 {"orderedPairs", agreement.orderedPairs},
                 {"sameOrder", agreement.sameOrder},
                 {"sublayers", agreement.sublayers},
                 {"equalSublayers", agreement.equalSublayers},
                 {"windows", Catalog::WindowsVersionName(agreement.windows)}});
}

std::unique_ptr<Watch::Audience> JsonReporter::StartWatching() {
  hasLines_ = true;
  return std::make_unique<WatchJson>(Step());
}

void JsonReporter::ShowCalibration(const ToldCalibration& calibration) {
  Step()["calibration"] = ToJson(calibration);
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
  const int indent = hasLines_ ? -1 : 2;
  // Names of adapters come from the system and may not be valid UTF-8.
  std::cout << document_.dump(indent, ' ', false, Json::error_handler_t::replace) << std::endl;
}
