#include "policy/MakeFieldTable.h"

#include "policy/ApplicationTable.h"
#include "policy/FlagsTable.h"
#include "policy/NumberTable.h"

namespace Policy {
namespace {

/// The bits of the numbers that a field has.
unsigned WidthOf(Field field, IpVersion ipVersion) {
  switch (field) {
    case Field::Protocol:
      return 8;
    case Field::LocalPort:
    case Field::RemotePort:
      return 16;
    case Field::LocalAddress:
    case Field::RemoteAddress:
      return AddressBits(ipVersion);
    default:
      return 64;
  }
}

}  // namespace

std::unique_ptr<FieldTable> MakeFieldTable(Field field, IpVersion ipVersion, const StateLayout& layout,
                                           std::vector<TestGroup> groups) {
  switch (field) {
    case Field::Flags:
      return std::make_unique<FlagsTable>(layout, std::move(groups));
    case Field::Application:
      return std::make_unique<ApplicationTable>(layout, std::move(groups));
    default:
      return std::make_unique<NumberTable>(field, WidthOf(field, ipVersion), layout, std::move(groups));
  }
}

}  // namespace Policy
