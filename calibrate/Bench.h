/**
 * @file
 * What experiments have in an engine.
 */
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "calibrate/EngineCalls.h"
#include "calibrate/Rule.h"

namespace Calibrate {

/// How the filters of an experiment come into the engine.
struct Adding {
  bool together = false;               ///< in one transaction; else each in its own
  std::optional<std::size_t> again{};  ///< this one is deleted in the end, and added once more
};

/// A dynamic session with a provider and two sublayers, and at times filters. The engine removes all of it
/// with the session, also if the program ends in another way.
class Bench {
 public:
  /// @param engine must live longer.
  /// @param application the bytes of this program's id.
  /// @throws EngineError: ERROR_ACCESS_DENIED when rights are missing.
  Bench(const EngineCalls& engine, std::string application);
  Bench(const Bench&) = delete;
  Bench& operator=(const Bench&) = delete;

  /// Filters that are removed with this object.
  class Installed {
   public:
    Installed(Installed&& other) noexcept;
    Installed& operator=(Installed&&) = delete;
    Installed(const Installed&) = delete;
    Installed& operator=(const Installed&) = delete;
    ~Installed();

   private:
    friend class Bench;
    explicit Installed(const Bench& bench) : bench_(&bench) {}

    const Bench* bench_;
    std::vector<UINT64> ids_;
  };

  /// @throws EngineError; then none of them remains.
  [[nodiscard]] Installed Install(std::span<const Rule> rules, const Path& path, UINT16 port,
                                  const Adding& adding = {}) const;

 private:
  class Transaction;

  [[nodiscard]] HANDLE Handle() const { return session_.get(); }
  void AddSublayers();
  [[nodiscard]] UINT64 Add(const Rule& rule, const Target& target) const;
  void Remove(UINT64 id) const;

  const EngineCalls& engine_;
  std::string application_;
  std::unique_ptr<void, decltype(Policy::EngineCalls::FwpmEngineClose0)> session_;
  bool isSwapped_ = false;  ///< the sublayer that was to be the upper one is the lower one
};

}  // namespace Calibrate
