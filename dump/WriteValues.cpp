#include "dump/DumpWriter.h"

#include <cstddef>

#include "catalog/Fields.h"
#include "catalog/Format.h"
#include "catalog/Names.h"
#include "dump/DumpError.h"
#include "dump/Numbers.h"
#include "dump/Sddl.h"

namespace Dump {
namespace {

using Catalog::FormatNumber;

std::string DescriptorText(const FWP_BYTE_BLOB& descriptor) {
  try {
    return FormatSddl({descriptor.data, descriptor.size});
  } catch (const SddlError& error) {
    throw DumpError(std::string("expected a security descriptor that has a text: ") + error.what());
  }
}

std::string TextOf(const SID& sid) {
  const std::size_t size = offsetof(SID, SubAuthority) + sid.SubAuthorityCount * sizeof(DWORD);
  std::string text = FormatSid({reinterpret_cast<const UINT8*>(&sid), size});
  if (text.empty()) {
    throw DumpError("expected a well-formed SID");
  }
  return text;
}

[[noreturn]] void FailUnknownType(FWP_DATA_TYPE type) {
  throw DumpError("expected a value that a dump can hold, found one of type " + Catalog::DataTypeName(type));
}

/// "00-11-22-33-44-55"
std::string PhysicalAddress(const FWP_BYTE_ARRAY6& address) {
  std::string text;
  for (const UINT8 byte : address.byteArray6) {
    if (!text.empty()) {
      text += '-';
    }
    AppendHex(text, byte);
  }
  return text;
}

std::string Uint32Text(UINT32 number, bool isAddress) {
  return isAddress ? Catalog::FormatIpV4(number) : FormatNumber(number);
}

/// Whether netsh writes the numbers of a field as addresses.
bool IsAddress(const GUID& fieldKey) {
  const Catalog::Field* field = Catalog::FindField(fieldKey);
  return field != nullptr && field->type == FWPM_FIELD_IP_ADDRESS;
}

}  // namespace

template <class Value>
bool DumpWriter::WriteNumberValue(const Value& value, bool isAddress) {
  switch (value.type) {
    case FWP_UINT8:
      return Leaf("uint8", FormatNumber(value.uint8));
    case FWP_UINT16:
      return Leaf("uint16", FormatNumber(value.uint16));
    case FWP_UINT32:
      return Leaf("uint32", Uint32Text(value.uint32, isAddress));
    case FWP_UINT64:
      return LeafIfAny("uint64", value.uint64, FormatNumber<UINT64>);
    case FWP_INT8:
      return Leaf("int8", FormatNumber(value.int8));
    case FWP_INT16:
      return Leaf("int16", FormatNumber(value.int16));
    case FWP_INT32:
      return Leaf("int32", FormatNumber(value.int32));
    case FWP_INT64:
      return LeafIfAny("int64", value.int64, FormatNumber<INT64>);
    case FWP_FLOAT:
      return Leaf("float32", FormatNumber(value.float32));
    case FWP_DOUBLE:
      return LeafIfAny("double64", value.double64, FormatNumber<double>);
    default:
      return value.type == Catalog::kBitmapIndexType && Leaf("bitmapIndex", FormatNumber(value.uint8));
  }
}

/// Applications' ids are text, so netsh shows blobs of conditions as such.
bool DumpWriter::WriteBlobAsText(std::string_view name, const FWP_BYTE_BLOB* blob) {
  return OpenIfAny(name, blob, [this](const FWP_BYTE_BLOB& bytes) {
    WriteBytes(bytes, Catalog::FormatTextOrBytes({bytes.data, bytes.size}));
  });
}

template <class Value>
bool DumpWriter::WriteDataValue(const Value& value) {
  switch (value.type) {
    case FWP_EMPTY:
      return true;
    case FWP_BYTE_ARRAY16_TYPE:
      return LeafIfAny("byteArray16", value.byteArray16,
                       [](const FWP_BYTE_ARRAY16& array) { return Catalog::FormatIpV6(array.byteArray16); });
    case FWP_BYTE_ARRAY6_TYPE:
      return LeafIfAny("byteArray6", value.byteArray6, PhysicalAddress);
    case FWP_BYTE_BLOB_TYPE:
      return WriteBlobAsText("byteBlob", value.byteBlob);
    case FWP_SID:
      return LeafIfAny("sid", value.sid, TextOf);
    case FWP_SECURITY_DESCRIPTOR_TYPE:
      return LeafIfAny("sd", value.sd, DescriptorText);
    case FWP_TOKEN_ACCESS_INFORMATION_TYPE:
      return WriteBlobAsText("tokenAccessInformation", value.tokenAccessInformation);
    case FWP_UNICODE_STRING_TYPE:
      WriteText("unicodeString", value.unicodeString);
      return true;
    default:
      return false;
  }
}

bool DumpWriter::WriteNetworkOrRange(const FWP_CONDITION_VALUE0& value, bool isAddress) {
  switch (value.type) {
    case FWP_V4_ADDR_MASK:
      return OpenIfAny("v4AddrMask", value.v4AddrMask, [&](const FWP_V4_ADDR_AND_MASK& network) {
        Leaf("addr", Catalog::FormatIpV4(network.addr));
        Leaf("mask", Catalog::FormatIpV4(network.mask));
      });
    case FWP_V6_ADDR_MASK:
      return OpenIfAny("v6AddrMask", value.v6AddrMask, [&](const FWP_V6_ADDR_AND_MASK& network) {
        Leaf("addr", Catalog::FormatIpV6(network.addr));
        Leaf("prefixLength", FormatNumber(network.prefixLength));
      });
    case FWP_RANGE_TYPE:
      return OpenIfAny("rangeValue", value.rangeValue, [&](const FWP_RANGE0& range) {
        WriteSingle("valueLow", range.valueLow, isAddress);
        WriteSingle("valueHigh", range.valueHigh, isAddress);
      });
    default:
      return false;
  }
}

template <class Value>
void DumpWriter::WriteType(const Value& value) {
  WriteNamedNumber("type", kDataTypes, static_cast<UINT32>(value.type));
}

void DumpWriter::WriteSingle(std::string_view name, const FWP_VALUE0& value, bool isAddress) {
  xml_.Open(name);
  WriteType(value);
  if (!WriteNumberValue(value, isAddress) && !WriteDataValue(value)) {
    FailUnknownType(value.type);
  }
  xml_.Close(name);
}

void DumpWriter::WriteValue(std::string_view name, const FWP_VALUE0& value) {
  WriteSingle(name, value, false);
}

void DumpWriter::WriteConditionValue(const GUID& fieldKey, const FWP_CONDITION_VALUE0& value) {
  const bool isAddress = IsAddress(fieldKey);
  xml_.Open("conditionValue");
  WriteType(value);
  if (!WriteNumberValue(value, isAddress) && !WriteDataValue(value) &&
      !WriteNetworkOrRange(value, isAddress)) {
    FailUnknownType(value.type);
  }
  xml_.Close("conditionValue");
}

}  // namespace Dump
