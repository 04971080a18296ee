#include "dump/ReadValues.h"

#include "catalog/Fields.h"
#include "dump/Sddl.h"

namespace Dump {
namespace {

/// Dotted where the field is an address, else a number.
UINT32 ReadUint32(const Element& element) {
  const std::string text = element.TrimmedText();
  in_addr address{};
  if (text.find('.') == std::string::npos) {
    return ReadNumber<UINT32>(element);
  }
  if (inet_pton(AF_INET, text.c_str(), &address) != 1) {
    element.FailExpecting("a number from 0 to 4294967295 or an address like 10.0.0.1");
  }
  return ntohl(address.s_addr);
}

template <class Number>
Number ReadReal(const Element& element) {
  Number number{};
  const std::string text = element.TrimmedText();
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  if (result.ec != std::errc() || result.ptr != end) {
    element.FailExpecting("a number like 0.5");
  }
  return number;
}

void ReadIpV6(const Element& element, UINT8* address) {
  if (inet_pton(AF_INET6, element.TrimmedText().c_str(), address) != 1) {
    element.FailExpecting("an address like fe80::1");
  }
}

FWP_BYTE_ARRAY16* ReadByteArray16(const Element& element, EngineState& state) {
  auto* array = state.memory.MakeArray<FWP_BYTE_ARRAY16>(1);
  ReadIpV6(element, array->byteArray16);
  return array;
}

/// "00-11-22-33-44-55"
FWP_BYTE_ARRAY6* ReadByteArray6(const Element& element, EngineState& state) {
  constexpr std::size_t kLength = 17;
  const std::string text = element.TrimmedText();
  auto* array = state.memory.MakeArray<FWP_BYTE_ARRAY6>(1);
  bool isAddress = text.size() == kLength;
  for (std::size_t i = 0; isAddress && i < sizeof(array->byteArray6); ++i) {
    const auto byte = ParseInteger<UINT8>(std::string_view(text).substr(3 * i, 2), 16);
    isAddress = byte && (3 * i + 2 == kLength || text[3 * i + 2] == '-');
    array->byteArray6[i] = byte.value_or(0);
  }
  if (!isAddress) {
    element.FailExpecting("an address like 00-11-22-33-44-55");
  }
  return array;
}

SID* ReadSid(const Element& element, EngineState& state) {
  const std::vector<UINT8> sid = ParseSid(element.TrimmedText());
  if (sid.empty()) {
    element.FailExpecting("a SID like S-1-5-18");
  }
  return reinterpret_cast<SID*>(state.memory.MakeBytes(sid));
}

FWP_BYTE_BLOB* ReadDescriptor(const Element& element, EngineState& state) {
  try {
    const std::vector<UINT8> descriptor = ParseSddl(element.TrimmedText(), DomainSids::Mark);
    if (NamesUnknownDomain(descriptor)) {
      ++state.unknownDomainSids;
    }
    return state.memory.Make(
        FWP_BYTE_BLOB{static_cast<UINT32>(descriptor.size()), state.memory.MakeBytes(descriptor)});
  } catch (const SddlError& error) {
    element.Fail(std::string("in <sd>, ") + error.what());
  }
}

template <class Number>
Number* ReadPointedNumber(const Element& element, EngineState& state) {
  return state.memory.Make(ReadNumber<Number>(element));
}

double* ReadPointedReal(const Element& element, EngineState& state) {
  return state.memory.Make(ReadReal<double>(element));
}

FWP_BYTE_BLOB* ReadPointedBlob(const Element& element, EngineState& state) {
  return state.memory.Make(ReadBlob(element, state));
}

FWP_RANGE0* ReadRange(const Element& element, EngineState& state) {
  Members members(element);
  const FWP_RANGE0 range{ReadValue(members.Take("valueLow"), state),
                         ReadValue(members.Take("valueHigh"), state)};
  members.SkipRest(state.skippedElements);
  return state.memory.Make(range);
}

FWP_V4_ADDR_AND_MASK* ReadV4Network(const Element& element, EngineState& state) {
  Members members(element);
  const FWP_V4_ADDR_AND_MASK network{ReadUint32(members.Take("addr")), ReadUint32(members.Take("mask"))};
  members.SkipRest(state.skippedElements);
  return state.memory.Make(network);
}

FWP_V6_ADDR_AND_MASK* ReadV6Network(const Element& element, EngineState& state) {
  Members members(element);
  FWP_V6_ADDR_AND_MASK network{};
  ReadIpV6(members.Take("addr"), network.addr);
  network.prefixLength = ReadNumber<UINT8>(members.Take("prefixLength"));
  members.SkipRest(state.skippedElements);
  return state.memory.Make(network);
}

/// A member that is a pointer: null if its element is.
template <class Target>
Target* ReadPointer(Members& members, std::string_view name, EngineState& state,
                    Target* (*read)(const Element&, EngineState&)) {
  const Element element = members.Take(name);
  return element.IsNull() ? nullptr : read(element, state);
}

/// False for a type that is no number.
template <class Value>
bool ReadNumberValue(Members& members, EngineState& state, Value& value) {
  switch (value.type) {
    case FWP_UINT8:
      value.uint8 = ReadNumber<UINT8>(members.Take("uint8"));
      return true;
    case FWP_UINT16:
      value.uint16 = ReadNumber<UINT16>(members.Take("uint16"));
      return true;
    case FWP_UINT32:
      value.uint32 = ReadUint32(members.Take("uint32"));
      return true;
    case FWP_UINT64:
      value.uint64 = ReadPointer(members, "uint64", state, ReadPointedNumber<UINT64>);
      return true;
    case FWP_INT8:
      value.int8 = ReadNumber<INT8>(members.Take("int8"));
      return true;
    case FWP_INT16:
      value.int16 = ReadNumber<INT16>(members.Take("int16"));
      return true;
    case FWP_INT32:
      value.int32 = ReadNumber<INT32>(members.Take("int32"));
      return true;
    case FWP_INT64:
      value.int64 = ReadPointer(members, "int64", state, ReadPointedNumber<INT64>);
      return true;
    case FWP_FLOAT:
      value.float32 = ReadReal<float>(members.Take("float32"));
      return true;
    case FWP_DOUBLE:
      value.double64 = ReadPointer(members, "double64", state, ReadPointedReal);
      return true;
    default:
      if (value.type != Catalog::kBitmapIndexType) {
        return false;
      }
      value.uint8 = ReadNumber<UINT8>(members.Take("bitmapIndex"));
      return true;
  }
}

/// False for a type that is not a run of bytes.
template <class Value>
bool ReadDataValue(Members& members, EngineState& state, Value& value) {
  switch (value.type) {
    case FWP_EMPTY:
      return true;
    case FWP_BYTE_ARRAY16_TYPE:
      value.byteArray16 = ReadPointer(members, "byteArray16", state, ReadByteArray16);
      return true;
    case FWP_BYTE_ARRAY6_TYPE:
      value.byteArray6 = ReadPointer(members, "byteArray6", state, ReadByteArray6);
      return true;
    case FWP_BYTE_BLOB_TYPE:
      value.byteBlob = ReadPointer(members, "byteBlob", state, ReadPointedBlob);
      return true;
    case FWP_SID:
      value.sid = ReadPointer(members, "sid", state, ReadSid);
      return true;
    case FWP_SECURITY_DESCRIPTOR_TYPE:
      value.sd = ReadPointer(members, "sd", state, ReadDescriptor);
      return true;
    case FWP_TOKEN_ACCESS_INFORMATION_TYPE:
      value.tokenAccessInformation = ReadPointer(members, "tokenAccessInformation", state, ReadPointedBlob);
      return true;
    case FWP_UNICODE_STRING_TYPE:
      value.unicodeString = ReadText(members.TakeIfAny("unicodeString"), state);
      return true;
    default:
      return false;
  }
}

template <class Value>
bool ReadSingle(Members& members, EngineState& state, Value& value) {
  return ReadNumberValue(members, state, value) || ReadDataValue(members, state, value);
}

bool ReadNetworkOrRange(Members& members, EngineState& state, FWP_CONDITION_VALUE0& value) {
  switch (value.type) {
    case FWP_V4_ADDR_MASK:
      value.v4AddrMask = ReadPointer(members, "v4AddrMask", state, ReadV4Network);
      return true;
    case FWP_V6_ADDR_MASK:
      value.v6AddrMask = ReadPointer(members, "v6AddrMask", state, ReadV6Network);
      return true;
    case FWP_RANGE_TYPE:
      value.rangeValue = ReadPointer(members, "rangeValue", state, ReadRange);
      return true;
    default:
      return false;
  }
}

/// Reads the type, then with `read` the rest.
template <class Value, class Read>
Value ReadTyped(const Element& element, EngineState& state, Read read) {
  Value value{};
  Members members(element);
  const Element type = members.Take("type");
  value.type = static_cast<FWP_DATA_TYPE>(ReadNamedNumber(type, kDataTypes));
  if (!read(members, value)) {
    type.FailExpecting("a type that a value can have here");
  }
  members.SkipRest(state.skippedElements);
  return value;
}

}  // namespace

FWP_VALUE0 ReadValue(const Element& element, EngineState& state) {
  return ReadTyped<FWP_VALUE0>(
      element, state, [&](Members& members, FWP_VALUE0& value) { return ReadSingle(members, state, value); });
}

FWP_CONDITION_VALUE0 ReadConditionValue(const Element& element, EngineState& state) {
  return ReadTyped<FWP_CONDITION_VALUE0>(element, state, [&](Members& members, FWP_CONDITION_VALUE0& value) {
    return ReadSingle(members, state, value) || ReadNetworkOrRange(members, state, value);
  });
}

}  // namespace Dump
