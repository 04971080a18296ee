#include "policy/ApplicationTable.h"

#include <algorithm>
#include <functional>

namespace Policy {
namespace {

constexpr std::string_view kTerminator("\0\0", 2);

bool Contains(const Test& test, const std::string& id) {
  return test.kind == Test::Kind::IsBytes ? id == test.bytes
                                          : test.kind == Test::Kind::EndsWith && IdEndsWith(id, test.bytes);
}

}  // namespace

ApplicationTable::ApplicationTable(const StateLayout& layout, std::vector<TestGroup> groups)
    : FieldTable(Field::Application, layout, std::move(groups)) {
  AddNames();
  AddEndings();
  AddOthers();
  unset_ = InternUnset();
}

std::size_t ApplicationTable::InternId(const std::string& id) {
  std::vector<BitWord> signature = EmptySignature();
  for (std::size_t group = 0; group < Groups().size(); ++group) {
    Standing standing;
    for (const Test* test : Groups()[group].tests) {
      (test->negated ? standing.failing : standing.positive) += Contains(*test, id) ? 1 : 0;
    }
    Write(signature, group, standing);
  }
  return Intern(signature);
}

void ApplicationTable::AddNames() {
  for (const TestGroup& group : Groups()) {
    for (const Test* test : group.tests) {
      if (test->kind == Test::Kind::IsBytes && !names_.contains(test->bytes)) {
        names_.emplace(test->bytes, InternId(test->bytes));
      }
    }
  }
}

void ApplicationTable::AddEndings() {
  std::vector<std::string> endings;
  for (const TestGroup& group : Groups()) {
    for (const Test* test : group.tests) {
      if (test->kind == Test::Kind::EndsWith) {
        endings.emplace_back(Unterminated(test->bytes));
      }
    }
  }
  std::ranges::sort(endings, [](const std::string& left, const std::string& right) {
    return left.size() != right.size() ? left.size() > right.size() : left < right;
  });
  endings.erase(std::unique(endings.begin(), endings.end()), endings.end());
  for (const std::string& ending : endings) {
    endings_.push_back({ending, {}, 0});
  }
  for (Ending& ending : endings_) {
    ending.example = ExampleOf(ending.bytes).value();
    ending.signature = InternId(ending.example);
  }
}

void ApplicationTable::AddOthers() {
  if (const auto example = ExampleOf({})) {
    others_ = Ending{{}, *example, InternId(*example)};
  }
}

std::optional<std::string> ApplicationTable::ExampleOf(const std::string& ending) const {
  // Ids of one character and the ending. There are more of them than names and longer endings, so some id is
  // none of these.
  const std::size_t enough = names_.size() + endings_.size() + 1;
  for (std::size_t i = 0; i < enough; ++i) {
    const auto unit = static_cast<UINT16>(0xE000 + i);
    const std::string id{static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
    const std::string candidate = id + ending + std::string(kTerminator);
    const Ending* longest = LongestEnding(candidate);
    if (!names_.contains(candidate) && (longest == nullptr ? ending.empty() : longest->bytes == ending)) {
      return candidate;
    }
  }
  return std::nullopt;
}

const ApplicationTable::Ending* ApplicationTable::LongestEnding(const std::string& id) const {
  const auto fits = [&id](const Ending& ending) { return IdEndsWith(id, ending.bytes); };
  const auto found = std::ranges::find_if(endings_, fits);
  return found == endings_.end() ? nullptr : &*found;
}

std::size_t ApplicationTable::SignatureOfId(const std::string& id) const {
  const auto named = names_.find(id);
  if (named != names_.end()) {
    return named->second;
  }
  const Ending* ending = LongestEnding(id);
  return ending == nullptr ? others_->signature : ending->signature;
}

std::size_t ApplicationTable::SignatureOf(const Connection& connection) const {
  return connection.application ? SignatureOfId(*connection.application) : unset_;
}

ValueClass ApplicationTable::Collect(const std::vector<bool>& signatures, const Connection& ordinary) const {
  ValueClass found;
  found.unset = signatures[unset_];
  const auto give = [&found](const std::string& example) {
    found.exampleApplication = found.exampleApplication.value_or(example);
  };
  if (ordinary.application && signatures[SignatureOfId(*ordinary.application)]) {
    give(*ordinary.application);
  }
  for (const auto& [name, signature] : names_) {
    if (signatures[signature]) {
      found.applications.push_back(name);
      give(name);
    }
  }
  for (const Ending& ending : endings_) {
    if (signatures[ending.signature]) {
      found.endings.push_back(ending.bytes);
      give(ending.example);
    }
  }
  if (others_ && signatures[others_->signature]) {
    found.others = true;
    give(others_->example);
  }
  return found;
}

}  // namespace Policy
