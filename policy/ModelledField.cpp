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

std::optional<Field> ModelledField(const Condition& condition) {
  if (condition.field != nullptr) {
    const auto found = std::ranges::find(kFields, condition.field->key, &KeyedField::key);
    if (found != std::end(kFields)) {
      return found->field;
    }
  }
  return std::nullopt;
}

}  // namespace Policy
