#include "policy/ModelledField.h"

#include <algorithm>
#include <iterator>

#include "catalog/Keys.h"

namespace Policy {
namespace {

struct KeyedField {
  GUID key;
  Field field;
};
constexpr KeyedField kFields[]{
    {Catalog::kFlagsFieldKey, Field::Flags},
    {Catalog::kIpLocalInterfaceFieldKey, Field::LocalInterface},
    {Catalog::kIpArrivalInterfaceFieldKey, Field::ArrivalInterface},
    {Catalog::kIpNextHopInterfaceFieldKey, Field::NextHopInterface},
    {Catalog::kAleAppIdFieldKey, Field::Application},
    {Catalog::kIpProtocolFieldKey, Field::Protocol},
    {Catalog::kIpLocalPortFieldKey, Field::LocalPort},
    {Catalog::kIpRemotePortFieldKey, Field::RemotePort},
    {Catalog::kIpLocalAddressFieldKey, Field::LocalAddress},
    {Catalog::kIpRemoteAddressFieldKey, Field::RemoteAddress},
};

}  // namespace

std::optional<Field> ModelledField(const Catalog::Field& field) {
  const auto* found = std::ranges::find(kFields, field.key, &KeyedField::key);
  return found == std::end(kFields) ? std::nullopt : std::optional(found->field);
}

std::optional<Field> ModelledField(const Condition& condition) {
  return condition.field == nullptr ? std::nullopt : ModelledField(*condition.field);
}

}  // namespace Policy
