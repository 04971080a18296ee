/**
 * @file
 * Filters put into the engine by hand.
 */
#pragma once

#include <WfpPlatform.h>

#include <memory>
#include <string>

/// Adds sublayers and filters as long as it lives.
class InstalledFilters {
 public:
  InstalledFilters();

  /// A sublayer with filters, one a line, as Catalog::DescribeFilter shows them. Callouts that they name are
  /// added as well.
  /// @throws std::runtime_error with the line and the engine's reason if it refuses one.
  void Install(const std::wstring& name, UINT16 weight, const std::string& filters);

 private:
  void AddFilter(const std::string& line, const GUID& sublayer);

  std::unique_ptr<void, decltype(&::FwpmEngineClose0)> session_;
  UINT16 sublayers_ = 0;
};
