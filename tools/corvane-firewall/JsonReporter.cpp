#include "JsonReporter.h"

#include <iostream>

#include "PolicyJson.h"

using Json = nlohmann::ordered_json;

namespace {

Json ToJson(const ListedFilter& filter) {
  return {{"id", filter.id},
          {"name", filter.name},
          {"layer", filter.layer},
          {"action", filter.action},
          {"conditions", filter.conditions},
          {"weight", filter.weight},
          {"override", filter.overridesOtherSublayers}};
}

Json ToJson(const ListedSublayer& sublayer) {
  Json filters = Json::array();
  for (const ListedFilter& filter : sublayer.filters) {
    filters.push_back(ToJson(filter));
  }
  return {{"key", sublayer.key},
          {"name", sublayer.name},
          {"description", sublayer.description},
          {"weight", sublayer.weight},
          {"filters", std::move(filters)}};
}

}  // namespace

JsonReporter::JsonReporter(Engine engine)
    : engine_(engine),
      document_{{"engine", engine == Engine::System ? "system" : "emulated"},
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
    list.push_back({{"name", adapter.name}, {"description", adapter.description}, {"luid", adapter.luid}});
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
  step["sublayers"] = Json::array();
  for (const ListedSublayer& sublayer : listing.sublayers) {
    step["sublayers"].push_back(ToJson(sublayer));
  }
}

void JsonReporter::ShowExplanation(const Policy::Explanation& explanation, const Policy::Labels& labels) {
  Step()["explanations"].push_back(ToJson(explanation, labels));
}

void JsonReporter::ShowMap(const Policy::Map& map, const Policy::Labels&) { Step()["map"] = ToJson(map); }

void JsonReporter::ShowPromises(const std::vector<Policy::PromiseResult>& promises,
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
