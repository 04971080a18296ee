#include <algorithm>

#include "dump/Numbers.h"
#include "dump/XmlDocument.h"

namespace Dump {

Members::Members(const Element& parent) : parent_(parent) {
  for (const Element& element : parent.Children()) {
    members_.push_back({element});
  }
}

Members::Member* Members::Find(std::string_view name) {
  const auto isIt = [name](const Member& member) { return !member.isTaken && member.element.Name() == name; };
  const auto found = std::ranges::find_if(members_, isIt);
  if (found == members_.end()) {
    return nullptr;
  }
  const auto second = std::find_if(found + 1, members_.end(), isIt);
  if (second != members_.end()) {
    second->element.Fail("expected one <" + std::string(name) + "> in <" + std::string(parent_.Name()) +
                         ">, found a second");
  }
  found->isTaken = true;
  return &*found;
}

Element Members::Take(std::string_view name) {
  const Member* member = Find(name);
  if (member == nullptr) {
    parent_.Fail("expected <" + std::string(name) + "> in <" + std::string(parent_.Name()) + '>');
  }
  return member->element;
}

std::optional<Element> Members::TakeIfAny(std::string_view name) {
  const Member* member = Find(name);
  return member == nullptr || member->element.IsNull() ? std::nullopt : std::optional(member->element);
}

std::vector<Element> Members::Rest() const {
  std::vector<Element> rest;
  for (const Member& member : members_) {
    if (!member.isTaken) {
      rest.push_back(member.element);
    }
  }
  return rest;
}

void Members::SkipRest(SkippedElements& skipped) const {
  for (const Element& element : Rest()) {
    ++skipped[std::string(element.Name())];
  }
}

std::vector<Element> Items(const Element& list, SkippedElements& skipped) {
  std::vector<Element> items = list.Children();
  const auto isOther = [](const Element& element) { return element.Name() != "item"; };
  for (const Element& element : items) {
    if (isOther(element)) {
      ++skipped[std::string(element.Name())];
    }
  }
  std::erase_if(items, isOther);
  const auto numItems = list.Attribute("numItems");
  if (numItems && ParseInteger<std::size_t>(*numItems) != items.size()) {
    list.Fail("expected " + std::string(*numItems) + " items in <" + std::string(list.Name()) +
              ">, as numItems says, found " + std::to_string(items.size()));
  }
  return items;
}

}  // namespace Dump
