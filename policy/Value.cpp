#include "policy/Value.h"

#include <cstddef>
#include <iterator>

#include "catalog/Format.h"

namespace Policy {
namespace {

using Data = decltype(Value::data);

/// What a pointer leads to, as the type in which it is kept.
template <class Kept, class Pointee>
Data Follow(const Pointee* pointer) {
  return pointer == nullptr ? Data() : Data(static_cast<Kept>(*pointer));
}

Data BytesOf(const FWP_BYTE_BLOB* blob) {
  if (blob == nullptr || blob->size > kMostBytes || (blob->size != 0 && blob->data == nullptr)) {
    return {};
  }
  return std::string(blob->data, blob->data + blob->size);
}

Data BytesOf(const SID* sid) {
  if (sid == nullptr || sid->SubAuthorityCount > SID_MAX_SUB_AUTHORITIES) {
    return {};
  }
  const auto* bytes = reinterpret_cast<const UINT8*>(sid);
  return std::string(bytes, bytes + offsetof(SID, SubAuthority) + sid->SubAuthorityCount * sizeof(DWORD));
}

Data BytesOf(const FWP_BYTE_ARRAY6* address) {
  return address == nullptr
             ? Data()
             : Data(std::string(std::begin(address->byteArray6), std::end(address->byteArray6)));
}

/// The data of the types that few fields have.
template <class Native>
Data RareDataOf(const Native& value) {
  switch (value.type) {
    case FWP_SID:
      return BytesOf(value.sid);
    case FWP_SECURITY_DESCRIPTOR_TYPE:
      return BytesOf(value.sd);
    case FWP_TOKEN_ACCESS_INFORMATION_TYPE:
      return BytesOf(value.tokenAccessInformation);
    case FWP_UNICODE_STRING_TYPE:
      return value.unicodeString == nullptr ? Data() : Data(ToText(value.unicodeString));
    case FWP_BYTE_ARRAY6_TYPE:
      return BytesOf(value.byteArray6);
    default:
      return {};
  }
}

/// The data that FWP_VALUE0 and FWP_CONDITION_VALUE0 have in common.
template <class Native>
Data DataOf(const Native& value) {
  switch (value.type) {
    case FWP_UINT8:
      return UINT64{value.uint8};
    case FWP_UINT16:
      return UINT64{value.uint16};
    case FWP_UINT32:
      return UINT64{value.uint32};
    case FWP_UINT64:
      return Follow<UINT64>(value.uint64);
    case FWP_INT8:
      return INT64{value.int8};
    case FWP_INT16:
      return INT64{value.int16};
    case FWP_INT32:
      return INT64{value.int32};
    case FWP_INT64:
      return Follow<INT64>(value.int64);
    case FWP_FLOAT:
      return double{value.float32};
    case FWP_DOUBLE:
      return Follow<double>(value.double64);
    case FWP_BYTE_ARRAY16_TYPE:
      return Follow<FWP_BYTE_ARRAY16>(value.byteArray16);
    case FWP_BYTE_BLOB_TYPE:
      return BytesOf(value.byteBlob);
    default:
      return RareDataOf(value);
  }
}

}  // namespace

Value ToValue(const FWP_VALUE0& value) { return {value.type, DataOf(value)}; }

Value ToValue(const FWP_CONDITION_VALUE0& value) {
  switch (value.type) {
    case FWP_V4_ADDR_MASK:
      return {value.type, Follow<FWP_V4_ADDR_AND_MASK>(value.v4AddrMask)};
    case FWP_V6_ADDR_MASK:
      return {value.type, Follow<FWP_V6_ADDR_AND_MASK>(value.v6AddrMask)};
    case FWP_RANGE_TYPE:
      return {value.type, value.rangeValue == nullptr
                              ? Data()
                              : Data(std::vector{ToValue(value.rangeValue->valueLow),
                                                 ToValue(value.rangeValue->valueHigh)})};
    default:
      return {value.type, DataOf(value)};
  }
}

std::string ToText(const wchar_t* text) {
  return text == nullptr || *text == L'\0' ? std::string() : Catalog::FormatText(text);
}

}  // namespace Policy
