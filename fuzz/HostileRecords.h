/**
 * @file
 * Invalid and extreme records of the engine.
 */
#pragma once

#include <NetEvents.h>

#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

#include "fuzz/Input.h"

namespace Fuzz {

/// Makes records from the bytes of a case and owns the data that they point at. Pointers are null or valid;
/// all other members may have any value. A count or size is right or far too large.
class HostileRecords {
 public:
  explicit HostileRecords(Input& input) : input_(input) {}

  /// One of a few keys for all kinds of records, so that records often refer to each other.
  GUID Key();
  GUID* KeyPointer();
  wchar_t* Text();

  FWP_VALUE0 Value();
  /// Null, or a SID in memory for the longest one that its count can claim.
  SID* Sid();
  /// Null, or a list in memory for the longest one that its size can claim.
  ACL* AccessList();
  /// Null, or a self-relative descriptor whose parts are inside its memory.
  PSECURITY_DESCRIPTOR SecurityDescriptor();

  /// Null or a record. Its type must be one that a private function Fill takes.
  template <class Record>
  Record* Pointer() {
    if (!input_.TakeFlag()) {
      return nullptr;
    }
    auto* record = Keep(Record{});
    Fill(*record);
    return record;
  }

 private:
  template <class T>
  T* Keep(T value) {
    auto kept = std::make_shared<T>(std::move(value));
    kept_.push_back(kept);
    return kept.get();
  }

  /// A pointer to a number, or null.
  template <class Plain>
  Plain* PlainPointer() {
    return input_.TakeFlag() ? Keep(input_.Take<Plain>()) : nullptr;
  }

  /// `count`, or a count that is far too large.
  UINT32 Count(std::size_t count) {
    return input_.TakeIndex(8) == 7 ? 0xFFFFFFFF : static_cast<UINT32>(count);
  }

  GUID LayerKey();
  FWPM_DISPLAY_DATA0 DisplayData();
  FWP_BYTE_BLOB Blob();
  FWP_BYTE_BLOB* BlobPointer();
  FWP_TOKEN_INFORMATION* Token();
  template <class NativeValue>
  void FillData(NativeValue& value);
  FWP_CONDITION_VALUE0 ConditionValue();
  std::vector<FWPM_FILTER_CONDITION0>& Conditions();

  void Fill(FWPM_SESSION0& session);
  void Fill(FWPM_PROVIDER0& provider);
  void Fill(FWPM_SUBLAYER0& sublayer);
  void Fill(FWPM_CALLOUT0& callout);
  void Fill(FWPM_PROVIDER_CONTEXT0& context);
  void Fill(FWPM_FILTER0& filter);
  void Fill(FWPM_SESSION_ENUM_TEMPLATE0& criteria);
  void Fill(FWPM_LAYER_ENUM_TEMPLATE0& criteria);
  void Fill(FWPM_PROVIDER_ENUM_TEMPLATE0& criteria);
  void Fill(FWPM_SUBLAYER_ENUM_TEMPLATE0& criteria);
  void Fill(FWPM_CALLOUT_ENUM_TEMPLATE0& criteria);
  void Fill(FWPM_PROVIDER_CONTEXT_ENUM_TEMPLATE0& criteria);
  void Fill(FWPM_FILTER_ENUM_TEMPLATE0& criteria);
  void Fill(FWPM_NET_EVENT_ENUM_TEMPLATE0& criteria);
  void Fill(FWPM_NET_EVENT3& event);
  void Fill(FWPM_NET_EVENT_SUBSCRIPTION0& subscription);
  void Fill(FWPM_PROVIDER_SUBSCRIPTION0& subscription);
  void Fill(FWPM_SUBLAYER_SUBSCRIPTION0& subscription);
  void Fill(FWPM_CALLOUT_SUBSCRIPTION0& subscription);
  void Fill(FWPM_PROVIDER_CONTEXT_SUBSCRIPTION0& subscription);
  void Fill(FWPM_FILTER_SUBSCRIPTION0& subscription);

  template <class Subscription>
  void FillSubscription(Subscription& subscription) {
    subscription.enumTemplate = Pointer<std::remove_pointer_t<decltype(subscription.enumTemplate)>>();
    subscription.flags = input_.Take<UINT8>();
    subscription.sessionKey = Key();
  }

  Input& input_;
  std::vector<std::shared_ptr<void>> kept_;
};

}  // namespace Fuzz
