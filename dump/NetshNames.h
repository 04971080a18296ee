/**
 * @file
 * The names that netsh prints for numbers and flags.
 */
#pragma once

#include <WfpPlatform.h>

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "catalog/Flags.h"

namespace Dump {

/// Names for the numbers of one kind.
struct NumberNames {
  const char* expected;  ///< for errors: "a type of value like FWP_UINT8"
  std::optional<UINT32> (*find)(std::string_view name);
  std::string (*format)(UINT32 number);  ///< decimal where there is no name
};
extern const NumberNames kDataTypes;
extern const NumberNames kMatches;
extern const NumberNames kActions;
extern const NumberNames kFieldTypes;
extern const NumberNames kContextTypes;

/// Names for the flags of one kind of object.
struct FlagNames {
  const char* expected;
  std::string_view mark;  ///< stands in every name, behind FWP or FWPM: "_FILTER_FLAG_"
  std::span<const Catalog::Flag> flags;
  UINT32 unnamed = 0;  ///< flags that netsh prints as a number although they have a name
  UINT32 drivers = 0;  ///< flags that callouts' drivers give: their names begin with FWP, not FWPM
};
extern const FlagNames kLayerFlags;
extern const FlagNames kProviderFlags;
extern const FlagNames kProviderContextFlags;
extern const FlagNames kSublayerFlags;
extern const FlagNames kCalloutFlags;
extern const FlagNames kFilterFlags;

/// Whether it is the name of a flag of that kind, known or not.
bool IsFlagName(const FlagNames& names, std::string_view name);
/// The bit of a flag's name; empty if nobody knows.
std::optional<UINT32> FindFlagBit(const FlagNames& names, std::string_view name);
/// The name of a flag: "FWPM_FILTER_FLAG_INDEXED".
std::string FlagName(const FlagNames& names, const Catalog::Flag& flag);

/// Which of the two a filter has in the same place. A filter of a security realm may have either.
inline constexpr UINT32 kHasRealmContext = 0x80;
constexpr bool MayHaveContextKey(UINT32 filterFlags) {
  return (filterFlags & (FWPM_FILTER_FLAG_HAS_PROVIDER_CONTEXT | kHasRealmContext)) != 0;
}
constexpr bool MayHaveRawContext(UINT32 filterFlags) {
  return (filterFlags & FWPM_FILTER_FLAG_HAS_PROVIDER_CONTEXT) == 0;
}

}  // namespace Dump
