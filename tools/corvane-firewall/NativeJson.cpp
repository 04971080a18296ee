#include "NativeJson.h"

#include <span>
#include <string>

#include "Text.h"
#include "catalog/Format.h"
#include "catalog/Names.h"

namespace {

template <class Value, class Convert>
Json Pointee(const Value* pointer, Convert convert) {
  return pointer == nullptr ? Json(nullptr) : Json(convert(*pointer));
}

/// Hexadecimal digits.
std::string BytesText(std::span<const UINT8> bytes) {
  return bytes.empty() ? std::string() : Catalog::FormatBytes(bytes);
}

Json Blob(const FWP_BYTE_BLOB* blob) {
  if (blob == nullptr || (blob->data == nullptr && blob->size != 0)) {
    return nullptr;
  }
  return BytesText({blob->data, blob->size});
}

/// The data that FWP_VALUE0 and FWP_CONDITION_VALUE0 have in common. What no condition can be is null.
template <class Value>
Json Datum(const Value& value) {
  // JSON's readers may keep no more than 53 bits of a number.
  const auto decimal = [](auto number) { return Catalog::FormatNumber(number); };
  switch (value.type) {
    case FWP_UINT8:
      return value.uint8;
    case FWP_UINT16:
      return value.uint16;
    case FWP_UINT32:
      return value.uint32;
    case FWP_UINT64:
      return Pointee(value.uint64, decimal);
    case FWP_INT8:
      return value.int8;
    case FWP_INT16:
      return value.int16;
    case FWP_INT32:
      return value.int32;
    case FWP_INT64:
      return Pointee(value.int64, decimal);
    case FWP_FLOAT:
      return value.float32;
    case FWP_DOUBLE:
      return Pointee(value.double64, [](double number) { return number; });
    case FWP_BYTE_ARRAY16_TYPE:
      return Pointee(value.byteArray16,
                     [](const auto& bytes) { return Catalog::FormatIpV6(bytes.byteArray16); });
    case FWP_BYTE_BLOB_TYPE:
      return Blob(value.byteBlob);
    case FWP_SID:
      return Pointee(value.sid, Catalog::FormatSid);
    case FWP_SECURITY_DESCRIPTOR_TYPE:
      return Blob(value.sd);
    case FWP_TOKEN_ACCESS_INFORMATION_TYPE:
      return Blob(value.tokenAccessInformation);
    case FWP_UNICODE_STRING_TYPE:
      return Pointee(value.unicodeString, [](const wchar_t& text) { return ToUtf8(&text); });
    case FWP_BYTE_ARRAY6_TYPE:
      return Pointee(value.byteArray6, [](const auto& bytes) { return BytesText(bytes.byteArray6); });
    default:
      return nullptr;
  }
}

Json RangeEnd(const FWP_VALUE0& end) {
  return {{"type", Catalog::DataTypeName(end.type)}, {"value", ToJson(end)}};
}

}  // namespace

Json ToJson(const FWP_VALUE0& value) { return Datum(value); }

Json ToJson(const FWP_CONDITION_VALUE0& value) {
  switch (value.type) {
    case FWP_V4_ADDR_MASK:
      return Pointee(value.v4AddrMask, [](const FWP_V4_ADDR_AND_MASK& network) -> Json {
        return {{"address", Catalog::FormatIpV4(network.addr)}, {"mask", Catalog::FormatIpV4(network.mask)}};
      });
    case FWP_V6_ADDR_MASK:
      return Pointee(value.v6AddrMask, [](const FWP_V6_ADDR_AND_MASK& network) -> Json {
        return {{"address", Catalog::FormatIpV6(network.addr)}, {"prefixLength", network.prefixLength}};
      });
    case FWP_RANGE_TYPE:
      return Pointee(value.rangeValue, [](const FWP_RANGE0& range) -> Json {
        return {{"low", RangeEnd(range.valueLow)}, {"high", RangeEnd(range.valueHigh)}};
      });
    default:
      return Datum(value);
  }
}
