#include "support/FilterText.h"

#include <array>
#include <sstream>
#include <stdexcept>

#include "catalog/Fields.h"
#include "catalog/Layers.h"
#include "dump/Sddl.h"

namespace {

using Parts = std::vector<std::string>;

/// The pieces of a text between separators.
Parts Split(const std::string& text, const std::string& separator) {
  Parts parts;
  std::size_t begin = 0;
  for (std::size_t end = 0; end != std::string::npos; begin = end + separator.size()) {
    end = text.find(separator, begin);
    parts.push_back(text.substr(begin, end == std::string::npos ? end : end - begin));
  }
  return parts;
}

/// A text before and after the first separator.
std::pair<std::string, std::string> Halves(const std::string& text, const std::string& separator) {
  const std::size_t at = text.find(separator);
  if (at == std::string::npos) {
    return {text, {}};
  }
  return {text.substr(0, at), text.substr(at + separator.size())};
}

template <class Table>
UINT32 Find(const Table& table, const std::string& name) {
  for (const auto& [text, number] : table) {
    if (text == name) {
      return number;
    }
  }
  throw std::invalid_argument("unknown: " + name);
}

struct Named {
  std::string_view text;
  UINT32 number;
};

constexpr Named kActions[]{{"BLOCK", FWP_ACTION_BLOCK},
                           {"PERMIT", FWP_ACTION_PERMIT},
                           {"CALLOUT_TERMINATING", FWP_ACTION_CALLOUT_TERMINATING},
                           {"CALLOUT_UNKNOWN", FWP_ACTION_CALLOUT_UNKNOWN},
                           {"CALLOUT_INSPECTION", FWP_ACTION_CALLOUT_INSPECTION}};
constexpr Named kFlags[]{{"-", 0}, {"CLEAR_ACTION_RIGHT", 8}, {"DISABLED", 0x20}};
constexpr Named kMatches[]{
    {"EQUAL", 0},          {"GREATER", 1},    {"LESS", 2},          {"GREATER_OR_EQUAL", 3},
    {"LESS_OR_EQUAL", 4},  {"RANGE", 5},      {"FLAGS_ALL_SET", 6}, {"FLAGS_ANY_SET", 7},
    {"FLAGS_NONE_SET", 8}, {"NOT_EQUAL", 10}, {"PREFIX", 11},       {"NOT_PREFIX", 12}};
constexpr Named kTypes[]{{"EMPTY", FWP_EMPTY},
                         {"UINT8", FWP_UINT8},
                         {"UINT16", FWP_UINT16},
                         {"UINT32", FWP_UINT32},
                         {"UINT64", FWP_UINT64},
                         {"BYTE_ARRAY16", FWP_BYTE_ARRAY16_TYPE},
                         {"BYTE_BLOB", FWP_BYTE_BLOB_TYPE},
                         {"SECURITY_DESCRIPTOR", FWP_SECURITY_DESCRIPTOR_TYPE},
                         {"SID", FWP_SID},
                         {"V4_ADDR_MASK", FWP_V4_ADDR_MASK},
                         {"V6_ADDR_MASK", FWP_V6_ADDR_MASK},
                         {"RANGE", FWP_RANGE_TYPE}};

UINT32 IpV4(const std::string& text) {
  UINT32 address = 0;
  if (inet_pton(AF_INET, text.c_str(), &address) != 1) {
    throw std::invalid_argument("no address: " + text);
  }
  return ntohl(address);
}

FWP_BYTE_ARRAY16 IpV6(const std::string& text) {
  FWP_BYTE_ARRAY16 address{};
  if (inet_pton(AF_INET6, text.c_str(), address.byteArray16) != 1) {
    throw std::invalid_argument("no address: " + text);
  }
  return address;
}

/// The number of a decimal or hexadecimal text or of an IPv4 address.
UINT64 NumberIn(const std::string& text) {
  return text.find('.') != std::string::npos ? IpV4(text) : std::stoull(text, nullptr, 0);
}

}  // namespace

FilterText::FilterText(const std::string& text) {
  static wchar_t name[] = L"Filter";
  const Parts parts = Split(text, " | ");
  record_.displayData.name = name;
  for (const Catalog::Layer& layer : Catalog::AllLayers()) {
    record_.layerKey = layer.name == parts.at(0) ? layer.key : record_.layerKey;
  }
  record_.action.type = Find(kActions, parts.at(1));
  record_.action.calloutKey = record_.layerKey;
  SetDatum(record_.weight, Halves(parts.at(2), " ").first, Halves(parts.at(2), " ").second);
  record_.flags = Find(kFlags, parts.at(3));
  for (const std::string& condition : parts.at(4) == "-" ? Parts() : Split(parts.at(4), " & ")) {
    conditions_.push_back(MakeCondition(condition));
  }
  record_.numFilterConditions = static_cast<UINT32>(conditions_.size());
  record_.filterCondition = conditions_.data();
}

FWPM_FILTER_CONDITION0 FilterText::MakeCondition(const std::string& text) {
  const auto [field, rest] = Halves(text, " ");
  const auto [match, value] = Halves(rest, " ");
  if (Catalog::FindField(field) == nullptr) {
    throw std::invalid_argument("unknown: " + field);
  }
  FWPM_FILTER_CONDITION0 condition{};
  condition.fieldKey = Catalog::FindField(field)->key;
  condition.matchType = static_cast<FWP_MATCH_TYPE>(Find(kMatches, match));
  condition.conditionValue = MakeValue(value);
  return condition;
}

template <class Value>
void FilterText::SetDatum(Value& value, const std::string& type, const std::string& datum) {
  value.type = static_cast<FWP_DATA_TYPE>(Find(kTypes, type));
  switch (value.type) {
    case FWP_UINT8:
      value.uint8 = static_cast<UINT8>(NumberIn(datum));
      break;
    case FWP_UINT16:
      value.uint16 = static_cast<UINT16>(NumberIn(datum));
      break;
    case FWP_UINT32:
      value.uint32 = static_cast<UINT32>(NumberIn(datum));
      break;
    case FWP_UINT64:
      value.uint64 = Keep(NumberIn(datum));
      break;
    case FWP_BYTE_ARRAY16_TYPE:
      value.byteArray16 = Keep(IpV6(datum));
      break;
    case FWP_BYTE_BLOB_TYPE:
      value.byteBlob = MakeBlob(datum);
      break;
    case FWP_SECURITY_DESCRIPTOR_TYPE:
      value.sd = datum.starts_with("D:") ? KeepBytes(Dump::ParseSddl(datum)) : MakeBlob(datum);
      break;
    case FWP_SID:
      value.sid = reinterpret_cast<SID*>(KeepBytes(Dump::ParseSid(datum))->data);
      break;
    default:
      break;
  }
}

FWP_CONDITION_VALUE0 FilterText::MakeValue(const std::string& text) {
  const auto [type, datum] = Halves(text, " ");
  const auto [address, mask] = Halves(datum, "/");
  FWP_CONDITION_VALUE0 value{};
  SetDatum(value, type, datum);
  if (value.type == FWP_V4_ADDR_MASK) {
    value.v4AddrMask = Keep(FWP_V4_ADDR_AND_MASK{IpV4(address), IpV4(mask)});
  } else if (value.type == FWP_V6_ADDR_MASK) {
    FWP_V6_ADDR_AND_MASK network{};
    const FWP_BYTE_ARRAY16 bytes = IpV6(address);
    std::copy_n(bytes.byteArray16, 16, network.addr);
    network.prefixLength = static_cast<UINT8>(std::stoul(mask));
    value.v6AddrMask = Keep(network);
  } else if (value.type == FWP_RANGE_TYPE) {
    value.rangeValue = Keep(MakeRange(datum));
  }
  return value;
}

/// @param text such as "UINT16 1 to UINT16 2".
FWP_RANGE0 FilterText::MakeRange(const std::string& text) {
  const auto [low, high] = Halves(text, " to ");
  FWP_RANGE0 range{};
  SetDatum(range.valueLow, Halves(low, " ").first, Halves(low, " ").second);
  SetDatum(range.valueHigh, Halves(high, " ").first, Halves(high, " ").second);
  return range;
}

FWP_BYTE_BLOB* FilterText::MakeBlob(const std::string& text) {
  std::string bytes;
  for (const char character : text + '\0') {
    bytes += character;
    bytes += '\0';
  }
  return KeepBytes({bytes.begin(), bytes.end()});
}

FWP_BYTE_BLOB* FilterText::KeepBytes(const std::vector<UINT8>& bytes) {
  auto* kept = Keep(std::string(bytes.begin(), bytes.end()));
  return Keep(FWP_BYTE_BLOB{static_cast<UINT32>(kept->size()), reinterpret_cast<UINT8*>(kept->data())});
}
