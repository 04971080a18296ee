/**
 * @file
 * Deep copies of the engine's native records, each in a single block of memory.
 */
#pragma once

#include <WfpPlatform.h>

#include <cstddef>
#include <cstring>
#include <cwchar>
#include <memory>
#include <type_traits>
#include <vector>

namespace EngineEmulator {

/// Lays copies of native data one after the other into a block, or only measures how much room they need.
class Packer {
 public:
  /// @param block null to measure: copies are then null pointers.
  explicit Packer(std::byte* block) : block_(block) {}

  /// The copy inside the block. Null for a null source and for no elements.
  template <class T>
  T* Copy(const T* source, std::size_t count = 1) {
    static_assert(std::is_trivially_copyable_v<T>);
    if (source == nullptr || count == 0) {
      return nullptr;
    }
    // Bytes can stand for anything.
    constexpr std::size_t kAlignment = alignof(T) == 1 ? alignof(std::max_align_t) : alignof(T);
    return static_cast<T*>(CopyBytes(source, sizeof(T) * count, kAlignment));
  }

  /// Bytes used so far.
  [[nodiscard]] std::size_t Size() const { return size_; }

 private:
  void* CopyBytes(const void* source, std::size_t size, std::size_t alignment);

  std::byte* block_;
  std::size_t size_ = 0;
};

/// Null for null.
SID* PackSid(Packer& packer, const void* sid);

/// Null for null.
template <class Char>
Char* PackString(Packer& packer, const Char* text) {
  return text == nullptr ? nullptr : packer.Copy(text, std::wcslen(text) + 1);
}

// Each copies what hangs off a record and gives the record with its pointers set to the copies.
FWP_BYTE_BLOB Pack(Packer& packer, FWP_BYTE_BLOB blob);
FWPM_PROVIDER0 Pack(Packer& packer, FWPM_PROVIDER0 provider);
FWPM_SUBLAYER0 Pack(Packer& packer, FWPM_SUBLAYER0 sublayer);
FWPM_CALLOUT0 Pack(Packer& packer, FWPM_CALLOUT0 callout);
/// Of what hangs off a context by its type, only the blob of FWPM_GENERAL_CONTEXT is copied; else the pointer
/// is null.
FWPM_PROVIDER_CONTEXT0 Pack(Packer& packer, FWPM_PROVIDER_CONTEXT0 context);
FWPM_FILTER0 Pack(Packer& packer, FWPM_FILTER0 filter);
FWPM_LAYER0 Pack(Packer& packer, FWPM_LAYER0 layer);
FWPM_SESSION0 Pack(Packer& packer, FWPM_SESSION0 session);
FWPM_PROVIDER_SUBSCRIPTION0 Pack(Packer& packer, FWPM_PROVIDER_SUBSCRIPTION0 subscription);
FWPM_SUBLAYER_SUBSCRIPTION0 Pack(Packer& packer, FWPM_SUBLAYER_SUBSCRIPTION0 subscription);
FWPM_CALLOUT_SUBSCRIPTION0 Pack(Packer& packer, FWPM_CALLOUT_SUBSCRIPTION0 subscription);
FWPM_PROVIDER_CONTEXT_SUBSCRIPTION0 Pack(Packer& packer, FWPM_PROVIDER_CONTEXT_SUBSCRIPTION0 subscription);
FWPM_FILTER_SUBSCRIPTION0 Pack(Packer& packer, FWPM_FILTER_SUBSCRIPTION0 subscription);
FWPM_NET_EVENT_SUBSCRIPTION0 Pack(Packer& packer, FWPM_NET_EVENT_SUBSCRIPTION0 subscription);
FWP_VALUE0 Pack(Packer& packer, FWP_VALUE0 value);

/// Copies a record with all that hangs off it.
template <class Native>
Native* PackRecord(Packer& packer, const Native& record) {
  const Native packed = Pack(packer, record);
  return packer.Copy(&packed);
}

/// Copies an array of records, each with all that hangs off it. No elements are a null pointer.
template <class Native, class Records>
Native** PackRecords(Packer& packer, const Records& records) {
  std::vector<Native*> packed;
  packed.reserve(records.size());
  for (const Native& record : records) {
    packed.push_back(PackRecord(packer, record));
  }
  return packer.Copy(packed.data(), packed.size());
}

/// A block that holds native data, and the place in it that stands for the whole.
template <class Root>
struct Block {
  std::unique_ptr<std::byte[]> bytes;
  Root* root;
};

/// Runs a packing function twice: to measure, then to fill a block of that size.
/// @param pack takes a Packer&, gives a pointer to the root.
template <class PackRoot>
auto MakeBlock(PackRoot pack) {
  Packer measure(nullptr);
  pack(measure);
  auto bytes = std::make_unique<std::byte[]>(measure.Size());
  Packer packer(bytes.get());
  auto* root = pack(packer);
  return Block<std::remove_pointer_t<decltype(root)>>{std::move(bytes), root};
}

/// The same in a block that goes with its last owner.
/// @return the root.
template <class PackRoot>
auto MakeSharedBlock(PackRoot pack) {
  struct Unit {
    alignas(std::max_align_t) std::byte bytes[alignof(std::max_align_t)];
  };
  Packer measure(nullptr);
  pack(measure);
  auto units = std::make_shared_for_overwrite<Unit[]>((measure.Size() + sizeof(Unit) - 1) / sizeof(Unit));
  Packer packer(reinterpret_cast<std::byte*>(units.get()));
  auto* root = pack(packer);
  return std::shared_ptr<std::remove_pointer_t<decltype(root)>>(std::move(units), root);
}

}  // namespace EngineEmulator
