#pragma once

#include <WfpPlatform.h>

#include <cstdint>
#include <string>
#include <vector>

#include "Export.h"
#include "engine/Provider.h"
#include "filtering/Filter.h"

namespace WfpFirewall {

/// A sublayer of the engine with its filters: the base of every rule set. A rule set's constructor adds
/// its filters; after that a copy of this base is as good as the rule set.
/// The only place where filters enter or leave the engine.
class WFPFIREWALL_API Sublayer {
 public:
  /// @param name, description shown for the sublayer and for each of its filters.
  Sublayer(GUID guid, std::wstring name, std::wstring description);
  Sublayer(const Sublayer&) = default;
  Sublayer(Sublayer&&) = default;
  Sublayer& operator=(const Sublayer&) = default;
  Sublayer& operator=(Sublayer&&) = default;
  /// Makes no engine call: what was applied stays in the engine.
  virtual ~Sublayer() = default;

  [[nodiscard]] GUID GetGuid() const;
  Sublayer& AddFilter(Filter filter);
  Sublayer& AddFilters(std::vector<Filter> filters);
  /// A copy, in the order of adding.
  [[nodiscard]] std::vector<Filter> GetFilters() const;
  [[nodiscard]] bool IsEmpty() const;
  /// @param weight the sublayer's place among all sublayers, higher first; its low 16 bits reach the
  ///        engine.
  void SetWeight(std::uint64_t weight);
  /// Lets the sublayer survive the session and a restart.
  void SurviveRestart();

  /// Whether the engine has a sublayer of this key. Any failure answers no.
  /// @param engine an open session's handle, or null.
  [[nodiscard]] bool IsApplied(HANDLE engine) const;
  /// Adds the sublayer and its filters, unless the engine has the sublayer already. Begins no
  /// transaction: after a failure, what was added stays, with its filter ids recorded.
  /// @throws FirewallException "Error creating sublayer.", "Failed to add filter to firewall.", or as
  ///         Filter::ToNativeFilter.
  void Apply(HANDLE engine, const Provider& provider);
  /// Deletes the filters that this object added, and the sublayer. Does nothing when the engine does
  /// not have the sublayer. Failures to delete a filter are ignored.
  /// @throws FirewallException "Failed to remove provider." when the sublayer cannot be deleted.
  void Destroy(HANDLE engine);

 protected:
  /// The filters themselves, for rule sets that change them after copying.
  [[nodiscard]] std::vector<Filter>& Filters();

 private:
  friend class Firewall;

  void AddToEngine(HANDLE engine);
  /// Those that this object added. Failures are ignored, and the ids are kept.
  void DeleteFilters(HANDLE engine) const;
  /// @throws FirewallException as Destroy.
  void DeleteFromEngine(HANDLE engine) const;

  GUID guid_;
  std::wstring name_;
  std::wstring description_;
  std::uint64_t weight_ = 0;
  std::vector<Filter> filters_;
  bool persistent_ = false;
  std::vector<std::uint64_t> filterIds_;
};

}  // namespace WfpFirewall
