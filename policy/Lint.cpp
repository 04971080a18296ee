#include "policy/Lint.h"

#include <algorithm>
#include <map>

#include "catalog/Flags.h"
#include "catalog/Keys.h"
#include "catalog/Names.h"
#include "policy/ConditionText.h"
#include "policy/LintBehaviour.h"

namespace Policy {
namespace {

constexpr UINT32 kKnownFlags = Catalog::NamedBits(Catalog::kFilterFlags);

bool IsNetwork(const Condition& condition) {
  return condition.value.type == FWP_V4_ADDR_MASK || condition.value.type == FWP_V6_ADDR_MASK;
}

bool IsVerdict(const Filter& filter) {
  return filter.action == FWP_ACTION_BLOCK || filter.action == FWP_ACTION_PERMIT;
}

/// What a strict engine has against a condition; empty if nothing.
std::string Refusal(const Filter& filter, const Condition& condition) {
  const Catalog::Layer* layer = Catalog::FindLayer(filter.layerKey);
  if (layer == nullptr || condition.field == nullptr) {
    return {};
  }
  const bool takesAny = condition.value.type == FWP_EMPTY || condition.value.type == FWP_RANGE_TYPE;
  const bool isNegated = condition.match == FWP_MATCH_NOT_EQUAL;
  const Catalog::LayerField* field = Catalog::FieldAt(*layer, *condition.field);
  if (field == nullptr) {
    return "tests a field that the layer does not have";
  }
  const auto [type, alternative] = Catalog::TypesOf(*field);
  if (!takesAny && condition.value.type != type && condition.value.type != alternative) {
    return "has a value of a type that the field does not take";
  }
  if (IsNetwork(condition) && condition.match != FWP_MATCH_EQUAL) {
    return "compares a network, which is documented for EQUAL only";
  }
  if (condition.value.type == FWP_V4_ADDR_MASK && condition.test.kind == Test::Kind::Unreadable) {
    return "has a network mask with holes";
  }
  return isNegated && condition.value.type == FWP_SECURITY_DESCRIPTOR_TYPE
             ? "negates a security descriptor, which has no order"
             : "";
}

/// What can be told from a filter alone.
class FilterLint {
 public:
  FilterLint(const Filter& filter, std::vector<Finding>& findings) : filter_(filter), findings_(findings) {}

  void Run() {
    LintFlags();
    LintPlace();
    LintOrder();
    for (const Condition& condition : filter_.conditions) {
      LintCondition(condition);
    }
    LintNegations();
  }

 private:
  void Add(FindingKind kind, std::string reason, std::string advice) {
    findings_.push_back({kind, &filter_, nullptr, std::move(reason), std::move(advice)});
  }

  void LintFlags() {
    if ((filter_.flags & ~kKnownFlags) != 0) {
      Add(FindingKind::Refusable, "It has flags without a meaning, which a strict engine refuses.",
          "leave them out");
    }
  }

  void LintPlace() {
    if (IsVerdict(filter_) && Catalog::IsFlowEstablished(filter_.layerKey)) {
      Add(FindingKind::FlowEstablished,
          "It decides at " + Catalog::LayerName(filter_.layerKey) +
              ", where the connection has been authorised already; filters there are not "
              "meant to, and it is asked once for each flow, never again when the policy changes.",
          "decide at the layer that authorises: ALE_AUTH_CONNECT or ALE_AUTH_RECV_ACCEPT");
    }
    if (IsVerdict(filter_) && filter_.sublayerKey == Catalog::kInspectionSublayerKey) {
      Add(FindingKind::Refusable, "It decides in INSPECTION, the sublayer for filters that only look.",
          "put it into a sublayer of its own");
    }
  }

  void LintOrder() {
    std::vector<GUID> seen;
    for (std::size_t i = 0; i < filter_.conditions.size(); ++i) {
      const GUID& field = filter_.conditions[i].fieldKey;
      const bool isNext = i > 0 && filter_.conditions[i - 1].fieldKey == field;
      if (!isNext && std::ranges::find(seen, field) != seen.end()) {
        Add(FindingKind::InterleavedFields,
            "Conditions on " + Catalog::FieldName(field) +
                " do not stand together; that one of them is enough is "
                "documented only for conditions in a row.",
            "put conditions on one field side by side");
        return;
      }
      seen.push_back(field);
    }
  }

  void LintCondition(const Condition& condition) {
    const bool isFlags = condition.field != nullptr && condition.field->type == FWPM_FIELD_FLAGS;
    const bool comparesWord = condition.match == FWP_MATCH_EQUAL || condition.match == FWP_MATCH_NOT_EQUAL;
    const std::string refusal = Refusal(filter_, condition);
    if (isFlags && comparesWord && condition.test.kind == Test::Kind::InInterval) {
      Add(FindingKind::FlagsEquality,
          ConditionText(condition) +
              " compares the whole word: it fails as soon as another flag is set beside those named.",
          "test the bits that matter, with FLAGS_ALL_SET or FLAGS_NONE_SET");
    }
    if (!refusal.empty()) {
      Add(FindingKind::Refusable,
          ConditionText(condition) + ' ' + refusal + "; a strict engine refuses the filter.",
          "write it in a way that the documentation covers");
    } else if (condition.test.kind == Test::Kind::Unreadable) {
      Add(FindingKind::Unreadable,
          ConditionText(condition) + " cannot be judged here, so the filter counts as perhaps matching.",
          "ask the engine itself, or name the traffic by its addresses, ports and application");
    }
  }

  void LintNegations() {
    std::map<std::string, int> negations;
    for (const Condition& condition : filter_.conditions) {
      negations[Catalog::FieldName(condition.fieldKey)] += condition.test.negated ? 1 : 0;
    }
    for (const auto& [field, count] : negations) {
      if (count > 1) {
        Add(FindingKind::SeveralNegations,
            "It has several negations on " + field +
                ". Conditions on one field hold if one of them does: read so, "
                "they exclude nothing. Those who write them usually want all to hold.",
            "give each excluded value a filter of greater weight that does the opposite");
      }
    }
  }

  const Filter& filter_;
  std::vector<Finding>& findings_;
};

}  // namespace

std::vector<Finding> Lint(const Snapshot& snapshot, const ShowProgress& show) {
  std::vector<Finding> findings;
  for (const Filter& filter : snapshot.filters) {
    FilterLint(filter, findings).Run();
    LintTests(filter, findings);
  }
  LintBehaviour(snapshot, findings, show);
  std::ranges::stable_sort(findings, {}, [](const Finding& finding) { return finding.filter->id; });
  return findings;
}

}  // namespace Policy
