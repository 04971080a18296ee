#include "policy/NumberTable.h"

#include <algorithm>

namespace Policy {
NumberTable::NumberTable(Field field, unsigned bits, const StateLayout& layout, std::vector<TestGroup> groups)
    : FieldTable(field, layout, std::move(groups)), greatest_(GreatestOfBits(bits)) {
  Sweep();
  unset_ = InternUnset();
}

std::vector<NumberTable::Edge> NumberTable::Edges() const {
  std::vector<Edge> edges;
  for (std::size_t group = 0; group < Groups().size(); ++group) {
    for (const Test* test : Groups()[group].tests) {
      const auto [first, last] = test->interval;
      if (test->kind != Test::Kind::InInterval || first > last) {
        continue;
      }
      edges.push_back({first, group, test->negated, true});
      if (last < greatest_) {
        edges.push_back({Next(last), group, test->negated, false});
      }
    }
  }
  std::ranges::sort(edges, {}, &Edge::at);
  return edges;
}

void NumberTable::Sweep() {
  std::vector<BitWord> signature = EmptySignature();
  std::vector<Standing> standings(Groups().size());
  for (std::size_t group = 0; group < Groups().size(); ++group) {
    Write(signature, group, standings[group]);
  }
  const std::vector<Edge> edges = Edges();
  starts_.push_back(0);
  for (auto edge = edges.begin(); edge != edges.end();) {
    if (edge->at != starts_.back()) {
      signatureAt_.push_back(Intern(signature));
      starts_.push_back(edge->at);
    }
    for (; edge != edges.end() && edge->at == starts_.back(); ++edge) {
      Standing& standing = standings[edge->group];
      std::size_t& count = edge->negated ? standing.failing : standing.positive;
      count = edge->isBegin ? count + 1 : count - 1;
      Write(signature, edge->group, standing);
    }
  }
  signatureAt_.push_back(Intern(signature));
}

std::size_t NumberTable::SignatureAt(Number number) const {
  const auto next = std::ranges::upper_bound(starts_, number);
  return signatureAt_[static_cast<std::size_t>(next - starts_.begin()) - 1];
}

std::size_t NumberTable::SignatureOf(const Connection& connection) const {
  const std::optional<Number> number = NumberOf(connection, GetField());
  return number ? SignatureAt(*number) : unset_;
}

ValueClass NumberTable::Collect(const std::vector<bool>& signatures, const Connection& ordinary) const {
  ValueClass found;
  found.unset = signatures[unset_];
  for (std::size_t i = 0; i < starts_.size(); ++i) {
    if (!signatures[signatureAt_[i]]) {
      continue;
    }
    const Number last = i + 1 < starts_.size() ? Previous(starts_[i + 1]) : greatest_;
    if (i > 0 && signatures[signatureAt_[i - 1]]) {
      found.intervals.back().last = last;
    } else {
      found.intervals.push_back({starts_[i], last});
    }
  }
  const std::optional<Number> number = NumberOf(ordinary, GetField());
  if (number && signatures[SignatureAt(*number)]) {
    found.exampleNumber = number;
  } else if (!found.intervals.empty()) {
    found.exampleNumber = found.intervals.front().first;
  }
  return found;
}

}  // namespace Policy
