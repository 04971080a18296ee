#pragma once

#include <memory>
#include <utility>

#include "Export.h"

namespace WfpFirewall::Filtering::Values {

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
};

/// A value held as the engine's native type T. Copies share the one T, whose address stays fixed: a
/// native filter record points straight at it.
template <class T>
class Value : public BaseValue {
 public:
  /// The held T, owned by the value and its copies; null when the value was moved from or made without one.
  [[nodiscard]] T* GetValue() const { return value_.get(); }

 protected:
  Value() = default;
  explicit Value(T value) : value_(std::make_shared<T>(std::move(value))) {}
  /// Takes over an object that has its own way of being freed.
  explicit Value(std::shared_ptr<T> value) : value_(std::move(value)) {}

 private:
  std::shared_ptr<T> value_;
};

}  // namespace WfpFirewall::Filtering::Values
