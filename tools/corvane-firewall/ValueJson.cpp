#include "ValueJson.h"

#include <string>

#include "catalog/Format.h"
#include "catalog/Names.h"

namespace {

struct DataToJson {
  FWP_DATA_TYPE type;

  Json operator()(std::monostate) const { return nullptr; }
  // A text, because many readers of JSON keep only 53 bits of a number.
  Json operator()(UINT64 number) const {
    return type == FWP_UINT64 ? Json(Catalog::FormatNumber(number)) : Json(number);
  }
  Json operator()(INT64 number) const {
    return type == FWP_INT64 ? Json(Catalog::FormatNumber(number)) : Json(number);
  }
  Json operator()(double number) const { return number; }
  Json operator()(const std::string& bytes) const {
    if (type == FWP_UNICODE_STRING_TYPE) {
      return bytes;
    }
    if (type == FWP_SID) {
      return Catalog::FormatSid(reinterpret_cast<const SID&>(*bytes.data()));
    }
    return bytes.empty() ? ""
                         : Catalog::FormatBytes({reinterpret_cast<const UINT8*>(bytes.data()), bytes.size()});
  }
  Json operator()(const FWP_BYTE_ARRAY16& address) const { return Catalog::FormatIpV6(address.byteArray16); }
  Json operator()(const FWP_V4_ADDR_AND_MASK& network) const {
    return {{"address", Catalog::FormatIpV4(network.addr)}, {"mask", Catalog::FormatIpV4(network.mask)}};
  }
  Json operator()(const FWP_V6_ADDR_AND_MASK& network) const {
    return {{"address", Catalog::FormatIpV6(network.addr)}, {"prefixLength", network.prefixLength}};
  }
  Json operator()(const std::vector<Policy::Value>& ends) const {
    return {{"low", RangeEnd(ends.front())}, {"high", RangeEnd(ends.back())}};
  }

  static Json RangeEnd(const Policy::Value& end) {
    return {{"type", Catalog::DataTypeName(end.type)}, {"value", ToJson(end)}};
  }
};

}  // namespace

Json ToJson(const Policy::Value& value) { return std::visit(DataToJson{value.type}, value.data); }
