/**
 * @file
 * Lists of fields in tables.
 */
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "catalog/Fields.h"

namespace Catalog {

/// Fields of kFields, written as their names with a space between. An unknown name does not compile.
class FieldList {
 public:
  // NOLINTNEXTLINE(google-explicit-constructor): tables have the names themselves.
  consteval FieldList(const char* names) {
    std::string_view rest(names);
    while (!rest.empty()) {
      const std::string_view name = rest.substr(0, rest.find(' '));
      rest.remove_prefix(name.size() == rest.size() ? name.size() : name.size() + 1);
      places_[count_++] = PlaceOf(name);
    }
  }

  [[nodiscard]] constexpr std::size_t Count() const { return count_; }
  constexpr const Field& operator[](std::size_t index) const { return kFields[places_[index]]; }
  [[nodiscard]] constexpr bool Has(const Field& field) const {
    for (std::size_t i = 0; i < count_; ++i) {
      if (&(*this)[i] == &field) {
        return true;
      }
    }
    return false;
  }

 private:
  static consteval UINT8 PlaceOf(std::string_view name) {
    for (std::size_t i = 0; i < kFields.size(); ++i) {
      if (kFields[i].name == name) {
        return static_cast<UINT8>(i);
      }
    }
    throw "no field of this name";
  }

  static constexpr std::size_t kMost = 40;
  static_assert(kFields.size() <= 256);

  std::array<UINT8, kMost> places_{};
  std::size_t count_ = 0;
};

}  // namespace Catalog
