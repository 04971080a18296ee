/**
 * @file
 * Filters written as Catalog::DescribeFilter shows them.
 */
#pragma once

#include <WfpPlatform.h>

#include <deque>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// A native record made from a text such as "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 14 | CLEAR_ACTION_RIGHT |
/// IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 10.0.0.0/255.0.0.0 & IP_REMOTE_PORT NOT_EQUAL UINT16 53". Blobs hold
/// strings in UTF-16, descriptors the bytes of their SDDL if it begins with "D:"; a callout has the key of
/// its layer. Throws std::invalid_argument with the part of the text that it does not understand.
class FilterText {
 public:
  explicit FilterText(const std::string& text);
  FilterText(const FilterText&) = delete;
  FilterText& operator=(const FilterText&) = delete;

  FWPM_FILTER0& Record() { return record_; }

 private:
  using Datum = std::variant<UINT64, std::string, FWP_BYTE_BLOB, FWP_BYTE_ARRAY16, FWP_V4_ADDR_AND_MASK,
                             FWP_V6_ADDR_AND_MASK, FWP_RANGE0>;

  FWPM_FILTER_CONDITION0 MakeCondition(const std::string& text);
  template <class Value>
  void SetDatum(Value& value, const std::string& type, const std::string& datum);
  FWP_CONDITION_VALUE0 MakeValue(const std::string& text);
  FWP_RANGE0 MakeRange(const std::string& text);
  FWP_BYTE_BLOB* MakeBlob(const std::string& text);
  FWP_BYTE_BLOB* KeepBytes(const std::vector<UINT8>& bytes);
  template <class T>
  T* Keep(T datum) {
    return &std::get<T>(data_.emplace_back(std::move(datum)));
  }

  std::deque<Datum> data_;
  std::vector<FWPM_FILTER_CONDITION0> conditions_;
  FWPM_FILTER0 record_{};
};
