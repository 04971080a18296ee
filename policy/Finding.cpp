#include "policy/Finding.h"

#include <array>

namespace Policy {
namespace {

constexpr std::array<std::string_view, 11> kNames{
    "always-true",        "never-true",        "never-decides",    "tie-of-actions",
    "flags-equality",     "overridden-permit", "flow-established", "several-negations",
    "interleaved-fields", "refusable",         "unreadable"};

}  // namespace

std::string_view FindingName(FindingKind kind) { return kNames[static_cast<std::size_t>(kind)]; }

std::string Describe(const Finding& finding) {
  std::string text(FindingName(finding.kind));
  text += ": " + Describe(*finding.filter);
  if (finding.other != nullptr) {
    text += " and " + Describe(*finding.other);
  }
  return text + ": " + finding.reason + " Clearer: " + finding.advice + '.';
}

}  // namespace Policy
