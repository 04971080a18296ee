/**
 * @file
 * The ids of applications.
 */
#pragma once

#include <map>

#include "policy/FieldTable.h"

namespace Policy {

/// Ids that a condition names, one by one, and all others by the longest ending that conditions test.
class ApplicationTable : public FieldTable {
 public:
  ApplicationTable(const StateLayout& layout, std::vector<TestGroup> groups);

  [[nodiscard]] std::size_t SignatureOf(const Connection& connection) const override;
  [[nodiscard]] ValueClass Collect(const std::vector<bool>& signatures,
                                   const Connection& ordinary) const override;

 private:
  struct Ending {
    std::string bytes;
    std::string example;
    std::size_t signature;
  };

  void AddNames();
  void AddEndings();
  void AddOthers();
  [[nodiscard]] const Ending* LongestEnding(const std::string& id) const;
  /// An id with an ending that no name and no longer ending fits.
  [[nodiscard]] std::optional<std::string> ExampleOf(const std::string& ending) const;
  std::size_t InternId(const std::string& id);
  [[nodiscard]] std::size_t SignatureOfId(const std::string& id) const;

  std::map<std::string, std::size_t> names_;
  std::vector<Ending> endings_;  ///< longest first
  std::optional<Ending> others_;
  std::size_t unset_ = 0;
};

}  // namespace Policy
