#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <type_traits>
#include <utility>
#include <variant>

#include "Export.h"

namespace WfpFirewall::Filtering::Values {

class ValueOwner;

/// What a condition compares a field with. The most derived class says which field: Values::LocalPort, for
/// example, the local port. A class that is marked "base" names no field, and is refused when a filter is
/// made native.
class WFPFIREWALL_API BaseValue {
 public:
  virtual ~BaseValue() = default;

 protected:
  BaseValue() = default;
  BaseValue(const BaseValue&) = default;
  BaseValue(BaseValue&&) = default;
  BaseValue& operator=(const BaseValue&) = default;
  BaseValue& operator=(BaseValue&&) = default;

 private:
  friend class ValueOwner;

  /// The number of owners belongs to the object: a copy begins without any.
  struct OwnerCount {
    OwnerCount() = default;
    OwnerCount(const OwnerCount&) {}
    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): there is nothing to assign.
    OwnerCount& operator=(const OwnerCount&) { return *this; }
    ~OwnerCount() = default;

    std::atomic<std::uint32_t> number{0};
  };

  mutable OwnerCount owners_;
};

/// One of the owners of a value that was made with new. The last one deletes it.
class ValueOwner {
 public:
  ValueOwner() = default;
  /// @param value may be null.
  explicit ValueOwner(BaseValue* value) : value_(value) { Add(); }
  ValueOwner(const ValueOwner& other) : value_(other.value_) { Add(); }
  ValueOwner(ValueOwner&& other) noexcept : value_(std::exchange(other.value_, nullptr)) {}
  ValueOwner& operator=(ValueOwner other) noexcept {
    std::swap(value_, other.value_);
    return *this;
  }
  ~ValueOwner() {
    if (value_ != nullptr && IsLast()) {
      delete value_;
    }
  }

  [[nodiscard]] BaseValue* Get() const { return value_; }
  /// One more owner. Null for null.
  [[nodiscard]] std::shared_ptr<BaseValue> Share() const {
    return value_ == nullptr ? nullptr : std::shared_ptr<BaseValue>(value_, [owner = *this](BaseValue*) {});
  }
  static bool IsOwned(const BaseValue& value) {
    return value.owners_.number.load(std::memory_order_relaxed) != 0;
  }

 private:
  // A value without owners, or with this one alone, is nobody else's: it takes no locked operation then.
  void Add() const {
    if (value_ == nullptr) {
      return;
    }
    std::atomic<std::uint32_t>& owners = value_->owners_.number;
    if (owners.load(std::memory_order_relaxed) == 0) {
      owners.store(1, std::memory_order_relaxed);
    } else {
      owners.fetch_add(1, std::memory_order_relaxed);
    }
  }
  [[nodiscard]] bool IsLast() const {
    std::atomic<std::uint32_t>& owners = value_->owners_.number;
    return owners.load(std::memory_order_acquire) == 1 || owners.fetch_sub(1, std::memory_order_acq_rel) == 1;
  }

  BaseValue* value_ = nullptr;
};

/// A value held as the engine's native type T. Copies share the one T, whose address stays fixed: a
/// native filter record points straight at it.
template <class T>
class Value : public BaseValue {
 public:
  Value(const Value& other) : BaseValue(other), shared_(Box(other.Share()).release()) {}
  // NOLINTNEXTLINE(performance-noexcept-move-constructor): T may need a place of its own first.
  Value(Value&& other) : Value() { *this = std::move(other); }
  // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): Hold handles it.
  Value& operator=(const Value& other) {
    Hold(other.Share());
    return *this;
  }
  // NOLINTNEXTLINE(performance-noexcept-move-constructor): as above.
  Value& operator=(Value&& other) {
    std::shared_ptr<T> held = other.Share();
    other.Hold(nullptr);
    Hold(std::move(held));
    return *this;
  }
  ~Value() override { Replace(nullptr); }

  /// The held T, owned by the value and its copies; null when the value was moved from or made without one.
  [[nodiscard]] T* GetValue() const {
    // What nobody owns yet may be copied and go, so that T needs a place of its own.
    return ValueOwner::IsOwned(*this) ? Data() : Share().get();
  }

 protected:
  Value() : shared_(Box(nullptr).release()) {}
  explicit Value(T value) {
    if constexpr (kIsInside) {
      inside_ = value;
    } else {
      Hold(std::make_shared<T>(std::move(value)));
    }
  }
  /// Takes over an object that has its own way of being freed.
  explicit Value(std::shared_ptr<T> value) : shared_(Box(std::move(value)).release()) {}

 private:
  using Boxed = std::unique_ptr<std::shared_ptr<T>>;

  static constexpr bool kIsInside = std::is_trivially_copyable_v<T> && std::is_default_constructible_v<T>;

  static Boxed Box(std::shared_ptr<T> shared) {
    return std::make_unique<std::shared_ptr<T>>(std::move(shared));
  }
  void Replace(Boxed shared) {
    const Boxed last(shared_.load(std::memory_order_relaxed));
    shared_.store(shared.release(), std::memory_order_relaxed);
  }
  void Hold(std::shared_ptr<T> shared) {
    if constexpr (kIsInside) {
      if (shared.get() == &inside_) {
        // Taken back from a copy. The value would own itself.
        Replace(nullptr);
        return;
      }
    }
    Replace(Box(std::move(shared)));
  }

  [[nodiscard]] T* Data() const {
    const std::shared_ptr<T>* shared = shared_.load(std::memory_order_acquire);
    if constexpr (kIsInside) {
      if (shared == nullptr) {
        return &inside_;
      }
    }
    return shared->get();
  }

  /// T for one more value.
  [[nodiscard]] std::shared_ptr<T> Share() const {
    std::shared_ptr<T>* shared = shared_.load(std::memory_order_acquire);
    if constexpr (kIsInside) {
      if (shared == nullptr && ValueOwner::IsOwned(*this)) {
        // It is not const: it was made with new, for a condition.
        return {ValueOwner(const_cast<Value*>(this)).Share(), &inside_};
      }
      if (shared == nullptr) {
        // Threads may read one value at once. The first one gives T its place.
        Boxed own = Box(std::make_shared<T>(inside_));
        if (shared_.compare_exchange_strong(shared, own.get(), std::memory_order_acq_rel)) {
          shared = own.release();
        }
      }
    }
    return *shared;
  }

  // Nearly every value is made for one condition, which owns it, and is never copied. So T stands in it, and
  // has a place of its own only if the value is looked at or copied before. A pointer to a shared pointer is
  // half as large as one.
  mutable std::conditional_t<kIsInside, T, std::monostate> inside_{};
  mutable std::atomic<std::shared_ptr<T>*> shared_ = nullptr;
};

}  // namespace WfpFirewall::Filtering::Values
