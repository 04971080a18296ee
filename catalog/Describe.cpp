#include "catalog/Describe.h"

#include <span>
#include <string_view>

#include "catalog/Fields.h"
#include "catalog/Format.h"
#include "catalog/Names.h"

namespace Catalog {
namespace {

/// The text of what a pointer leads to, or "null".
template <class Value, class Format>
std::string Pointee(const Value* pointer, Format format) {
  return pointer == nullptr ? "null" : format(*pointer);
}

template <class Format>
std::string Blob(const FWP_BYTE_BLOB* blob, Format format) {
  return Pointee(blob, [format](const FWP_BYTE_BLOB& bytes) -> std::string {
    if (bytes.data == nullptr && bytes.size != 0) {
      return "null";
    }
    return format(std::span<const UINT8>(bytes.data, bytes.size));
  });
}

std::string String(const wchar_t& text) { return FormatText(&text); }

std::string TokenInformation(const FWP_TOKEN_INFORMATION& token) {
  return FormatNumber(token.sidCount) + " and " + FormatNumber(token.restrictedSidCount) + " restricted";
}

std::string Number32(const GUID& fieldKey, UINT32 number) {
  const Field* field = FindField(fieldKey);
  if (field != nullptr && field->type == FWPM_FIELD_IP_ADDRESS) {
    return FormatIpV4(number);
  }
  if (field != nullptr && field->type == FWPM_FIELD_FLAGS) {
    return FormatHex(number);
  }
  return FormatNumber(number);
}

/// The datum of the types that FWP_VALUE0 and FWP_CONDITION_VALUE0 have in common.
template <class Value>
std::string Datum(const GUID& fieldKey, const Value& value) {
  const auto number = [](auto pointee) { return FormatNumber(pointee); };
  // Types that only newer headers know have a number, but no member to read here.
  switch (static_cast<UINT32>(value.type)) {
    case FWP_UINT8:
      return FormatNumber(unsigned{value.uint8});
    case FWP_UINT16:
      return FormatNumber(value.uint16);
    case FWP_UINT32:
      return Number32(fieldKey, value.uint32);
    case FWP_UINT64:
      return Pointee(value.uint64, number);
    case FWP_INT8:
      return FormatNumber(int{value.int8});
    case FWP_INT16:
      return FormatNumber(value.int16);
    case FWP_INT32:
      return FormatNumber(value.int32);
    case FWP_INT64:
      return Pointee(value.int64, number);
    case FWP_FLOAT:
      return FormatNumber(value.float32);
    case FWP_DOUBLE:
      return Pointee(value.double64, number);
    case FWP_BYTE_ARRAY16_TYPE:
      return Pointee(value.byteArray16, [](const auto& bytes) { return FormatIpV6(bytes.byteArray16); });
    case FWP_BYTE_BLOB_TYPE:
      return Blob(value.byteBlob, FormatTextOrBytes);
    case FWP_SID:
      return Pointee(value.sid, FormatSid);
    case FWP_SECURITY_DESCRIPTOR_TYPE:
      return Blob(value.sd, FormatBytes);
    case FWP_TOKEN_INFORMATION_TYPE:
      return Pointee(value.tokenInformation, TokenInformation);
    case FWP_TOKEN_ACCESS_INFORMATION_TYPE:
      return Blob(value.tokenAccessInformation, FormatBytes);
    case FWP_UNICODE_STRING_TYPE:
      return Pointee(value.unicodeString, String);
    case FWP_BYTE_ARRAY6_TYPE:
      return Pointee(value.byteArray6, [](const auto& bytes) { return FormatBytes(bytes.byteArray6); });
    default:
      return {};
  }
}

template <class Value>
std::string TypeAndDatum(const GUID& fieldKey, const Value& value) {
  const std::string datum = Datum(fieldKey, value);
  return DataTypeName(value.type) + (datum.empty() ? "" : " " + datum);
}

std::string Network(const FWP_V4_ADDR_AND_MASK& network) {
  return FormatIpV4(network.addr) + '/' + FormatIpV4(network.mask);
}

std::string Network(const FWP_V6_ADDR_AND_MASK& network) {
  return FormatIpV6(network.addr) + '/' + FormatNumber(unsigned{network.prefixLength});
}

std::string Conditions(const FWPM_FILTER0& filter) {
  if (filter.numFilterConditions == 0) {
    return "-";
  }
  if (filter.filterCondition == nullptr) {
    return "null";
  }
  std::string text;
  for (const auto& condition : std::span(filter.filterCondition, filter.numFilterConditions)) {
    text.append(text.empty() ? "" : " & ").append(DescribeCondition(condition));
  }
  return text;
}

}  // namespace

std::string DescribeConditionValue(const GUID& fieldKey, const FWP_CONDITION_VALUE0& value) {
  const auto network = [](const auto& pointee) { return Network(pointee); };
  const auto range = [&fieldKey](const FWP_RANGE0& ends) {
    return TypeAndDatum(fieldKey, ends.valueLow) + " to " + TypeAndDatum(fieldKey, ends.valueHigh);
  };
  switch (value.type) {
    case FWP_V4_ADDR_MASK:
      return "V4_ADDR_MASK " + Pointee(value.v4AddrMask, network);
    case FWP_V6_ADDR_MASK:
      return "V6_ADDR_MASK " + Pointee(value.v6AddrMask, network);
    case FWP_RANGE_TYPE:
      return "RANGE " + Pointee(value.rangeValue, range);
    default:
      return TypeAndDatum(fieldKey, value);
  }
}

std::string DescribeCondition(const FWPM_FILTER_CONDITION0& condition) {
  return FieldName(condition.fieldKey) + ' ' + MatchName(condition.matchType) + ' ' +
         DescribeConditionValue(condition.fieldKey, condition.conditionValue);
}

std::string DescribeFilter(const FWPM_FILTER0& filter) {
  return LayerName(filter.layerKey) + " | " + ActionName(filter.action.type) + " | " +
         TypeAndDatum(GUID{}, filter.weight) + " | " + FilterFlagNames(filter.flags) + " | " +
         Conditions(filter);
}

}  // namespace Catalog
