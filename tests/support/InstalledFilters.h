/**
 * @file
 * Filters that a test puts into the engine.
 */
#pragma once

#include <WfpPlatform.h>

#include <memory>
#include <string>

/// Adds sublayers and filters; they are removed when this object is destroyed.
class InstalledFilters {
 public:
  InstalledFilters();

  /// Adds a sublayer with filters, one in each line, as Catalog::DescribeFilter shows them. Also adds the
  /// callouts that they name.
  /// @throws std::runtime_error with the line and the engine's reason if the engine refuses a filter.
  void Install(const std::wstring& name, UINT16 weight, const std::string& filters);

 private:
  void AddFilter(const std::string& line, const GUID& sublayer);

  std::unique_ptr<void, decltype(&::FwpmEngineClose0)> session_;
  UINT16 sublayers_ = 0;
};
