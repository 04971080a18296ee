// Reads a random native filter, such as another program may have added, and writes it again.
#include <array>
#include <cstring>
#include <deque>
#include <string_view>

#include "catalog/Fields.h"
#include "catalog/Layers.h"
#include "engine/FirewallException.h"
#include "filtering/Filter.h"
#include "fuzz/Input.h"

namespace {

using Fuzz::Input;
using Fuzz::Require;
using WfpFirewall::Filter;
using WfpFirewall::FirewallException;

constexpr std::string_view kRefusals[]{"Not supported Layer type.", "Not supported Condition type.",
                                       "Not yet supported condition", "Not supported condition value"};

/// The data that a condition's value may point at.
union Pointee {
  UINT64 number;
  FWP_BYTE_BLOB blob;
  FWP_V4_ADDR_AND_MASK networkV4;
  FWP_V6_ADDR_AND_MASK networkV6;
  FWP_RANGE0 range;
};

/// A native filter with the data that it points at.
class NativeFilter {
 public:
  explicit NativeFilter(Input& input) {
    record_.action.type = FWP_ACTION_BLOCK + input.Take<std::uint8_t>();
    record_.layerKey = TakeKey(input, Catalog::AllLayers());
    record_.flags = input.Take<std::uint8_t>();
    record_.weight.type = static_cast<FWP_DATA_TYPE>(input.Take<std::uint8_t>());
    record_.weight.uint8 = input.Take<std::uint8_t>();
    while (!input.IsEmpty()) {
      conditions_.push_back(TakeCondition(input));
    }
    record_.numFilterConditions = static_cast<UINT32>(conditions_.size());
    record_.filterCondition = conditions_.data();
  }

  FWPM_FILTER0& Record() { return record_; }

 private:
  template <class Table>
  static GUID TakeKey(Input& input, const Table& table) {
    const std::size_t index = input.TakeIndex(table.size() + 1);
    return index < table.size() ? table[index].key : input.Take<GUID>();
  }

  /// The value is a pointer, valid or null. A condition on a plain number reads it from the pointer's bytes.
  FWPM_FILTER_CONDITION0 TakeCondition(Input& input) {
    FWPM_FILTER_CONDITION0 condition{};
    condition.fieldKey = TakeKey(input, Catalog::kFields);
    condition.matchType = static_cast<FWP_MATCH_TYPE>(input.Take<std::uint8_t>());
    condition.conditionValue.type = static_cast<FWP_DATA_TYPE>(input.Take<std::uint16_t>());
    if (input.TakeFlag()) {
      condition.conditionValue.uint64 = &pointees_.emplace_back(input.Take<Pointee>()).number;
    }
    return condition;
  }

  FWPM_FILTER0 record_{};
  std::vector<FWPM_FILTER_CONDITION0> conditions_;
  std::deque<Pointee> pointees_;
};

bool SameValue(const FWP_CONDITION_VALUE0& read, const FWP_CONDITION_VALUE0& written) {
  switch (written.type) {
    case FWP_UINT8:
      return written.uint8 == read.uint8;
    case FWP_UINT16:
      return written.uint16 == read.uint16;
    case FWP_UINT32:
      return written.uint32 == read.uint32;
    case FWP_UINT64:
      return *written.uint64 == *read.uint64;
    case FWP_BYTE_BLOB_TYPE:
      return written.byteBlob->size == read.byteBlob->size && written.byteBlob->data == read.byteBlob->data;
    case FWP_V4_ADDR_MASK:
      return std::memcmp(written.v4AddrMask, read.v4AddrMask, sizeof(FWP_V4_ADDR_AND_MASK)) == 0;
    case FWP_V6_ADDR_MASK:
      return std::memcmp(written.v6AddrMask, read.v6AddrMask, sizeof(FWP_V6_ADDR_AND_MASK)) == 0;
    default:
      return false;
  }
}

FWP_MATCH_TYPE ReadBackAs(FWP_MATCH_TYPE type) {
  return type == FWP_MATCH_GREATER ? FWP_MATCH_NOT_EQUAL : type;
}

void RequireSame(const FWPM_FILTER0& read, const FWPM_FILTER0& written) {
  Require(written.layerKey == read.layerKey, "a filter stays in its layer");
  Require((written.action.type == FWP_ACTION_BLOCK) == (read.action.type == FWP_ACTION_BLOCK),
          "only a block stays a block");
  Require((written.flags == 8) == (read.flags == 8) && (written.flags == 0 || written.flags == 8),
          "the override flag is the only one kept, and only when alone");
  Require(written.weight.type == (read.weight.uint8 == 0 ? FWP_EMPTY : FWP_UINT8) &&
              written.weight.uint8 == read.weight.uint8,
          "a weight is one byte, and none when that is zero");
  Require(written.numFilterConditions == read.numFilterConditions, "no condition is lost");
  for (UINT32 i = 0; i < read.numFilterConditions; ++i) {
    const FWPM_FILTER_CONDITION0& before = read.filterCondition[i];
    const FWPM_FILTER_CONDITION0& after = written.filterCondition[i];
    Require(after.fieldKey == before.fieldKey, "a condition keeps its field");
    Require(after.matchType == ReadBackAs(before.matchType), "a condition keeps its match type");
    Require(SameValue(before.conditionValue, after.conditionValue), "a condition keeps its value");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  NativeFilter native(input);
  try {
    Filter filter = Filter::BuildFromNative(&native.Record());
    filter.ToNativeFilter();
    RequireSame(native.Record(), filter.ToNativeFilter());
  } catch (const FirewallException& error) {
    Require(std::ranges::find(kRefusals, error.what()) != std::end(kRefusals), "a refusal has a known text");
    Require(error.GetErrorCode() == 1, "a refusal has no code of the engine");
  }
  return 0;
}
