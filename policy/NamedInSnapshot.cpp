#include "policy/NamedInSnapshot.h"

#include <algorithm>
#include <span>
#include <vector>

#include "policy/Connection.h"
#include "policy/SecurityDescriptor.h"

namespace Policy {
namespace {

constexpr UINT32 kFirstOfPersons = 1000;

bool IsPerson(const Sid& sid) {
  static const Sid kDomains{5, {21}};
  return sid.BeginsWith(kDomains) && sid.numbers.size() == 5 && sid.numbers.back() >= kFirstOfPersons;
}

/// Calls `visit` with the bytes of each security descriptor of a condition.
template <class Visit>
void ForEachDescriptor(const Snapshot& snapshot, Visit visit) {
  for (const Filter& filter : snapshot.filters) {
    for (const Condition& condition : filter.conditions) {
      const auto* data = std::get_if<std::string>(&condition.value.data);
      if (data != nullptr && condition.value.type == FWP_SECURITY_DESCRIPTOR_TYPE) {
        visit(std::span(reinterpret_cast<const UINT8*>(data->data()), data->size()));
      }
    }
  }
}

std::vector<AccessEntry> EntriesOf(std::span<const UINT8> descriptor) {
  try {
    return ReadSecurityDescriptor(descriptor).entries.value_or(std::vector<AccessEntry>());
  } catch (const MalformedError&) {
    return {};
  }
}

}  // namespace

std::optional<Sid> OnlyAccount(const Snapshot& snapshot) {
  std::vector<Sid> accounts;
  ForEachDescriptor(snapshot, [&](std::span<const UINT8> descriptor) {
    for (const AccessEntry& entry : EntriesOf(descriptor)) {
      if (IsPerson(entry.sid) && std::ranges::find(accounts, entry.sid) == accounts.end()) {
        accounts.push_back(entry.sid);
      }
    }
  });
  return accounts.size() == 1 ? std::optional(accounts.front()) : std::nullopt;
}

std::optional<std::string> OnlyApplication(std::string_view ending, const Snapshot& snapshot) {
  const std::string bytes = ApplicationBytes(ending);
  std::optional<std::string> found;
  for (const Filter& filter : snapshot.filters) {
    for (const Condition& condition : filter.conditions) {
      const Test& test = condition.test;
      if (test.kind != Test::Kind::IsBytes || !IdEndsWith(test.bytes, bytes)) {
        continue;
      }
      if (found && *found != test.bytes) {
        return std::nullopt;
      }
      found = test.bytes;
    }
  }
  return found;
}

}  // namespace Policy
