/**
 * @file
 * Values as records of the engine hold them.
 */
#pragma once

#include <WfpPlatform.h>

#include <string>
#include <variant>
#include <vector>

namespace Policy {

/// A copy of a value with what its pointers lead to.
struct Value {
  FWP_DATA_TYPE type = FWP_EMPTY;
  /// Of unsigned types, of signed ones, of floating ones; bytes of blobs, descriptors, SIDs and MAC addresses
  /// and the UTF-8 of texts; addresses and networks; the two ends of a range. Nothing where there is no data,
  /// a pointer is null, or a size is out of all reason.
  std::variant<std::monostate, UINT64, INT64, double, std::string, FWP_BYTE_ARRAY16, FWP_V4_ADDR_AND_MASK,
               FWP_V6_ADDR_AND_MASK, std::vector<Value>>
      data;
};

/// The greatest size of a blob that can be meant.
inline constexpr UINT32 kMostBytes = 16 * 1024 * 1024;

/// Sizes may be any, pointers must be null or valid.
Value ToValue(const FWP_VALUE0& value);
Value ToValue(const FWP_CONDITION_VALUE0& value);

/// A text of a record in UTF-8, which may be null; that of control characters comes as its bytes.
std::string ToText(const wchar_t* text);

}  // namespace Policy
