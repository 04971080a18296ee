#pragma once

#include <WfpPlatform.h>

#include "filtering/BaseValue.h"

namespace WfpFirewall::Filtering {

/// How a value is written into the engine's records.
struct NativeField {
  GUID key;            ///< the field compared (FWPM_CONDITION_...)
  FWP_DATA_TYPE type;  ///< the data type of the record
  void* data;          ///< what the value holds; owned by the value
};

/// The field of a value's most derived class.
/// @throws FirewallException "Not supported condition value" for null, for a class without a field and for a
///         value that was moved from, "You can use base IpAddressV4 class as condition" for the base classes
///         of IPv4 addresses.
NativeField MapToNativeField(const Values::BaseValue* value);

}  // namespace WfpFirewall::Filtering
