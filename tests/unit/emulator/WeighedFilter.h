/**
 * @file
 * Filters whose weight the engine chooses, with conditions written as in ObservedWeights.h.
 */
#pragma once

#include <algorithm>
#include <cmath>
#include <deque>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "EngineClient.h"
#include "catalog/Layers.h"

/// A filter's layer and conditions, with the data that they point at.
class WeighedFilter {
 public:
  /// @param build of Windows; some fields have another type in other builds.
  WeighedFilter(std::string_view layer, UINT32 build, const std::string& conditions)
      : layer_(*Catalog::FindLayer(layer, Catalog::VersionOfBuild(build))) {
    std::istringstream stream(conditions);
    for (std::string text; stream >> text;) {
      conditions_.push_back(Parse(text));
    }
  }

  /// The effective weight that the engine gives to the filter.
  /// @param range the 8-bit weight asked for; -1 for none.
  UINT64 Weight(int range = -1) {
    const TestSession session(kDynamic);
    FWPM_FILTER0 filter = FilterRecord();
    filter.layerKey = layer_.key;
    filter.weight.type = range < 0 ? FWP_EMPTY : FWP_UINT8;
    filter.weight.uint8 = static_cast<UINT8>(std::max(range, 0));
    filter.numFilterConditions = static_cast<UINT32>(conditions_.size());
    filter.filterCondition = conditions_.data();
    EXPECT_EQ(Add(session, filter), kSuccess) << EngineEmulator::LastRefusal();
    FWPM_FILTER0* found = nullptr;
    EXPECT_EQ(FwpmFilterGetByKey0(session, &kFilterKey, &found), kSuccess);
    const UINT64 effective = found == nullptr ? 0 : *found->effectiveWeight.uint64;
    Free(found);
    return effective;
  }

 private:
  FWPM_FILTER_CONDITION0 Parse(const std::string& text) {
    const std::size_t end = text.find_first_of("!&~=/#");
    const Catalog::Field* field = Catalog::FindField(std::string_view(text).substr(0, end));
    const Catalog::LayerField* fieldAt = field == nullptr ? nullptr : Catalog::FieldAt(layer_, *field);
    if (fieldAt == nullptr) {
      ADD_FAILURE() << text << " at " << layer_.name;
      return {};
    }
    const char sign = end == std::string::npos ? ' ' : text[end];
    FWPM_FILTER_CONDITION0 condition{};
    condition.fieldKey = field->key;
    condition.matchType = MatchOf(sign);
    if (sign == '/' || sign == '#') {
      SetRange(condition, fieldAt->dataType, CountOf(text.substr(end), fieldAt->dataType));
    } else {
      SetValue(condition.conditionValue, fieldAt->dataType);
    }
    return condition;
  }

  static FWP_MATCH_TYPE MatchOf(char sign) {
    switch (sign) {
      case '!':
        return FWP_MATCH_NOT_EQUAL;
      case '&':
        return FWP_MATCH_FLAGS_ALL_SET;
      case '~':
        return FWP_MATCH_FLAGS_NONE_SET;
      default:
        return FWP_MATCH_EQUAL;
    }
  }

  static int BitsOf(FWP_DATA_TYPE type) {
    switch (type) {
      case FWP_UINT8:
        return 8;
      case FWP_UINT16:
        return 16;
      case FWP_UINT32:
        return 32;
      default:
        return 128;
    }
  }

  /// The number of values in a range, exact to 53 bits.
  static double CountOf(const std::string& width, FWP_DATA_TYPE type) {
    if (width.starts_with("/")) {
      return std::exp2(BitsOf(type) - std::stoi(width.substr(1)));
    }
    return width.starts_with("#2^") ? std::floor(std::exp2(std::stod(width.substr(3))))
                                    : std::stod(width.substr(1));
  }

  void SetRange(FWPM_FILTER_CONDITION0& condition, FWP_DATA_TYPE type, double count) {
    FWP_RANGE0& range = ranges_.emplace_back();
    range.valueLow.type = range.valueHigh.type = type;
    if (type == FWP_BYTE_ARRAY16_TYPE) {
      range.valueLow.byteArray16 = &addresses_.emplace_back();
      range.valueHigh.byteArray16 = &addresses_.emplace_back(HighestOf(count));
    } else {
      const auto high = static_cast<UINT32>(count - 1);
      if (type == FWP_UINT8) {
        range.valueHigh.uint8 = static_cast<UINT8>(high);
      }
      if (type == FWP_UINT16) {
        range.valueHigh.uint16 = static_cast<UINT16>(high);
      }
      if (type == FWP_UINT32) {
        range.valueHigh.uint32 = high;
      }
    }
    condition.matchType = FWP_MATCH_RANGE;
    condition.conditionValue.type = FWP_RANGE_TYPE;
    condition.conditionValue.rangeValue = &range;
  }

  /// The last of `count` addresses, of which the first is "::".
  static FWP_BYTE_ARRAY16 HighestOf(double count) {
    FWP_BYTE_ARRAY16 address{};
    for (int i = 0; i < 16; ++i) {
      const double unit = std::ldexp(1, 8 * (15 - i));
      const double digit = std::min(std::floor(count / unit), 255.0 + (i == 0 ? 1 : 0));
      count -= digit * unit;
      address.byteArray16[i] = static_cast<UINT8>(digit);
    }
    // Subtract 1, because the first address is 0.
    for (int i = 15; i >= 0 && address.byteArray16[i]-- == 0; --i) {
    }
    return address;
  }

  void SetValue(FWP_CONDITION_VALUE0& value, FWP_DATA_TYPE type) {
    value.type = type;
    switch (type) {
      case FWP_UINT64:
        value.uint64 = &number_;
        break;
      case FWP_BYTE_ARRAY16_TYPE:
        value.byteArray16 = &addresses_.emplace_back(FWP_BYTE_ARRAY16{{0xFE, 0x80}});
        break;
      case FWP_BYTE_BLOB_TYPE:
        value.byteBlob = &blob_;
        break;
      case FWP_SID:
        value.sid = &sid_;
        break;
      case FWP_TOKEN_INFORMATION_TYPE:
      case FWP_TOKEN_ACCESS_INFORMATION_TYPE:
        value.type = FWP_SECURITY_DESCRIPTOR_TYPE;
        value.sd = &descriptor_;
        break;
      default:
        value.uint32 = 1;
        break;
    }
  }

  const Catalog::Layer& layer_;
  std::vector<FWPM_FILTER_CONDITION0> conditions_;
  std::deque<FWP_RANGE0> ranges_;
  std::deque<FWP_BYTE_ARRAY16> addresses_;
  UINT64 number_ = 7;
  UINT8 bytes_[2]{'a', 0};
  FWP_BYTE_BLOB blob_{sizeof(bytes_), bytes_};
  SID sid_{1, 1, {{0, 0, 0, 0, 0, 5}}, {18}};
  UINT8 descriptorBytes_[20]{1, 0, 0, 0x80};  // self-relative, without an owner
  FWP_BYTE_BLOB descriptor_{sizeof(descriptorBytes_), descriptorBytes_};
};
