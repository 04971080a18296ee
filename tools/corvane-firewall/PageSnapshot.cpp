#include "PageSnapshot.h"

#include <algorithm>
#include <array>
#include <deque>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>

#include "Identities.h"
#include "PolicyJson.h"
#include "catalog/Format.h"
#include "catalog/Names.h"
#include "catalog/PassiveCallouts.h"
#include "catalog/Providers.h"
#include "policy/Certainty.h"
#include "policy/DerivedTests.h"
#include "policy/FilterTests.h"
#include "policy/ModelledField.h"

namespace {

const char* KindText(Policy::Test::Kind kind) {
  constexpr std::array kTexts{"unreadable", "unset",    "in-interval", "all-set",
                              "any-set",    "none-set", "is",          "ends-with"};
  return kTexts.at(static_cast<std::size_t>(kind));
}

std::string OwnerName(const Policy::Snapshot& snapshot, const GUID& key) {
  const auto found = std::ranges::find(snapshot.providers, key, &Policy::Provider::key);
  if (found != snapshot.providers.end() && !found->name.empty()) {
    return found->name;
  }
  const Catalog::BuiltInProvider* builtIn = Catalog::FindBuiltInProvider(key);
  return builtIn == nullptr ? Catalog::FormatGuid(key) : std::string(builtIn->name);
}

/// The directions of the connections that pass a layer; none if no answer is about the layer.
std::vector<Policy::Direction> DirectionsAt(const std::string& layer) {
  using enum Policy::Direction;
  if (layer.starts_with("ALE_AUTH_CONNECT_V")) {
    return {Outbound};
  }
  if (layer.starts_with("ALE_AUTH_RECV_ACCEPT_V")) {
    return {Inbound};
  }
  return layer.starts_with("ALE_FLOW_ESTABLISHED_V") ? std::vector{Outbound, Inbound}
                                                     : std::vector<Policy::Direction>{};
}

Policy::IpVersion VersionAt(const std::string& layer) {
  return layer.ends_with('6') ? Policy::IpVersion::V6 : Policy::IpVersion::V4;
}

/// What a condition asks of another field; none if it does not, or not the same in both directions.
std::optional<Policy::DerivedTests> DerivedOf(const Policy::Condition& condition,
                                              const Policy::Filter& filter) {
  const std::string layer = Catalog::LayerName(filter.layerKey);
  std::optional<Policy::DerivedTests> derived;
  for (const Policy::Direction direction : DirectionsAt(layer)) {
    auto other = Policy::Derive(condition, filter, direction, VersionAt(layer));
    if (derived && other && derived->field != other->field) {
      return std::nullopt;
    }
    derived = std::move(other);
  }
  return derived;
}

/// The field of connections that a condition asks about.
std::optional<Policy::Field> FieldOf(const Policy::Condition& condition, const Policy::Filter& filter) {
  const auto derived = DerivedOf(condition, filter);
  return derived ? std::optional(derived->field) : Policy::ModelledField(condition);
}

/// What the circumstances make of a filter's conditions, as far as they decide them for all connections.
std::map<const Policy::Condition*, bool> Settled(const Policy::Filter& filter,
                                                 const Policy::Circumstances& circumstances) {
  const std::string layer = Catalog::LayerName(filter.layerKey);
  std::map<const Policy::Condition*, std::set<Policy::Certainty>> found;
  for (const Policy::Direction direction : DirectionsAt(layer)) {
    std::deque<Policy::Test> derived;
    const Policy::FilterTests tests =
        Policy::TestsOf(filter, direction, VersionAt(layer), circumstances, derived);
    for (const auto& conditions : tests.ofCircumstances) {
      for (const Policy::Condition* condition : conditions) {
        found[condition].insert(Policy::CertaintyOf(conditions, direction, circumstances));
      }
    }
  }
  std::map<const Policy::Condition*, bool> settled;
  for (const Policy::Condition& condition : filter.conditions) {
    const auto field = FieldOf(condition, filter);
    if (field && Policy::IsOfQuarantineThatIsOver(filter, *field, circumstances)) {
      settled[&condition] = true;
    }
  }
  for (const auto& [condition, certainties] : found) {
    if (certainties.size() == 1 && *certainties.begin() != Policy::Certainty::InDoubt) {
      settled[condition] = *certainties.begin() == Policy::Certainty::Holds;
    }
  }
  return settled;
}

/// What filters refer to by an index.
class Shared {
 public:
  Shared(const Policy::Snapshot& snapshot, const Policy::Circumstances& circumstances, SharedTexts& texts)
      : snapshot_(snapshot), circumstances_(circumstances), texts_(texts) {
    for (std::size_t i = 0; i < snapshot.sublayers.size(); ++i) {
      const Policy::Sublayer& sublayer = snapshot.sublayers[i];
      sublayerIndices_[sublayer.key] = i;
      sublayers_.push_back(
          {{"key", Catalog::FormatGuid(sublayer.key)},
           {"name", sublayer.name.empty() ? Catalog::SublayerName(sublayer.key) : sublayer.name},
           {"weight", sublayer.weight},
           {"listed", sublayer.listed}});
    }
  }

  Json Filter(const Policy::Filter& filter) {
    const auto settled = Settled(filter, circumstances_);
    Json conditions = Json::array();
    for (const Policy::Condition& condition : filter.conditions) {
      const auto found = settled.find(&condition);
      conditions.push_back(
          ConditionIndex(condition, found == settled.end() ? std::nullopt : std::optional(found->second),
                         DerivedOf(condition, filter)));
    }
    Json json{{"id", filter.id},
              {"name", texts_.IndexOf(filter.name)},
              {"key", Catalog::FormatGuid(filter.key)},
              {"owner", OwnerIndex(filter.providerKey)},
              {"layer", texts_.IndexOf(Catalog::LayerName(filter.layerKey))},
              {"sublayer", sublayerIndices_.at(filter.sublayerKey)},
              {"action", Catalog::ActionName(filter.action)},
              {"weight", HexText(filter.effectiveWeight)},
              {"conditions", std::move(conditions)}};
    if (filter.IsHard()) {
      json["hard"] = true;
    }
    if (filter.calloutKey && Catalog::FindPassiveCallout(*filter.calloutKey) != nullptr) {
      json["passive"] = true;
    }
    if ((filter.flags & (FWPM_FILTER_FLAG_DISABLED | FWPM_FILTER_FLAG_BOOTTIME)) != 0) {
      json["inForce"] = false;
    }
    return json;
  }

  Json Sublayers() { return std::move(sublayers_); }
  Json Owners() { return std::move(owners_); }
  Json Conditions() { return std::move(conditions_); }

 private:
  std::size_t OwnerIndex(const std::optional<GUID>& key) {
    const auto [place, isNew] = ownerIndices_.try_emplace(key.value_or(GUID{}), ownerIndices_.size());
    if (isNew) {
      owners_.push_back({{"name", key ? OwnerName(snapshot_, *key) : "no provider"},
                         {"ours", key && *key == kProvider.key}});
    }
    return place->second;
  }

  /// @param holds what the circumstances make of it, if they decide it.
  /// @param derived what it asks of another field, if it does.
  std::size_t ConditionIndex(const Policy::Condition& condition, std::optional<bool> holds,
                             const std::optional<Policy::DerivedTests>& derived) {
    Json json{{"field", condition.field == nullptr ? Catalog::FormatGuid(condition.fieldKey)
                                                   : std::string(condition.field->name)},
              {"text", texts_.IndexOf(condition.text)}};
    if (holds) {
      json["holds"] = *holds;
    }
    json.update(TestJson(condition.test));
    if (derived) {
      json["asksOf"] = Policy::FieldText(derived->field);
      for (const Policy::Test& test : derived->tests) {
        json["tests"].push_back(TestJson(test));
      }
    }
    const auto [place, isNew] = conditionIndices_.try_emplace(json.dump(), conditionIndices_.size());
    if (isNew) {
      conditions_.push_back(std::move(json));
    }
    return place->second;
  }

  Json TestJson(const Policy::Test& test) {
    Json json{{"test", KindText(test.kind)}};
    if (test.negated) {
      json["negated"] = true;
    }
    if (test.interval.first != Policy::Number{} || test.interval.last != Policy::Number{}) {
      json["first"] = HexText(test.interval.first);
      json["last"] = HexText(test.interval.last);
    }
    if (!test.bytes.empty()) {
      json["bytes"] = texts_.IndexOf(HexText(test.bytes));
    }
    return json;
  }

  const Policy::Snapshot& snapshot_;
  const Policy::Circumstances& circumstances_;
  SharedTexts& texts_;
  Json sublayers_ = Json::array();
  Json owners_ = Json::array();
  Json conditions_ = Json::array();
  std::map<GUID, std::size_t, Catalog::KeyOrder> sublayerIndices_;
  std::map<GUID, std::size_t, Catalog::KeyOrder> ownerIndices_;
  std::map<std::string, std::size_t> conditionIndices_;
};

}  // namespace

Json PageSnapshot(const Policy::Snapshot& snapshot, const Policy::Circumstances& circumstances,
                  SharedTexts& texts) {
  Shared shared(snapshot, circumstances, texts);
  Json filters = Json::array();
  for (const Policy::Filter& filter : snapshot.filters) {
    filters.push_back(shared.Filter(filter));
  }
  return {{"sublayers", shared.Sublayers()},
          {"owners", shared.Owners()},
          {"conditions", shared.Conditions()},
          {"filters", std::move(filters)}};
}

Json PageFindings(const std::vector<Policy::Finding>& findings, const Policy::Snapshot& snapshot) {
  const auto indexOf = [&](const Policy::Filter* filter) {
    return filter == nullptr ? Json(nullptr) : Json(filter - snapshot.filters.data());
  };
  std::map<std::pair<std::string_view, std::string_view>, std::size_t> groups;
  Json json = Json::array();
  for (const Policy::Finding& finding : findings) {
    const std::string_view kind = Policy::FindingName(finding.kind);
    const auto [place, isNew] = groups.try_emplace({kind, finding.reason}, groups.size());
    if (isNew) {
      json.push_back({{"kind", kind},
                      {"reason", finding.reason},
                      {"advice", finding.advice},
                      {"places", Json::array()}});
    }
    json[place->second]["places"].push_back({indexOf(finding.filter), indexOf(finding.other)});
  }
  return json;
}
