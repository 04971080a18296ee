#pragma once

#include <WfpPlatform.h>

#include <memory>
#include <vector>

#include "Export.h"
#include "engine/Provider.h"
#include "engine/Sublayer.h"

namespace WfpFirewall {

/// One session with the filtering engine, the provider of all that is added through it, and the registry
/// of the rule sets that are switched on. The session opens with the first operation that needs it and
/// is dynamic: when the Firewall goes, the engine forgets everything that was added. Not thread-safe.
///
/// Operations that open the session throw FirewallException "Error opening engine." with the engine's
/// code, or "Failed to add provider" with code 1; after the latter the session stays open.
class WFPFIREWALL_API Firewall {
 public:
  /// Opens nothing.
  explicit Firewall(Provider provider);
  Firewall(const Firewall&) = delete;
  Firewall& operator=(const Firewall&) = delete;
  Firewall(Firewall&&) = delete;
  Firewall& operator=(Firewall&&) = delete;
  ~Firewall() = default;

  /// Appends a copy of the rule set's base to the registry; no engine call, no check for duplicates.
  Firewall& AddSublayer(Sublayer& sublayer);
  [[nodiscard]] bool HasSublayer(Sublayer& sublayer) const;
  [[nodiscard]] bool HasSublayer(GUID guid) const;
  /// Removes every entry of that key from the engine and from the registry. Does not open the session.
  /// @throws FirewallException as Sublayer::Destroy; the registry then stays as it was, filter ids
  ///         included, so that a second attempt deletes what is left.
  void RemoveSublayer(GUID guid);

  /// Installs every entry that the engine does not have yet, in registry order. Begins no transaction.
  /// @throws FirewallException also as Sublayer::Apply; earlier entries then stay installed.
  void Apply();
  /// Removes every entry and the provider from the engine, empties the registry, closes the session.
  /// @throws FirewallException also "Failed to remove provider."; registry and session then stay.
  void Destroy();

  /// @throws FirewallException also "Failed to begin transaction." with the engine's code.
  void TransactionBegin();
  /// @throws FirewallException also "Failed to commit transaction." with the engine's code. There is no
  ///         abort: a transaction left open ends with the session.
  void TransactionCommit();

 private:
  void OpenEngine();
  void EnsureProvider();

  Provider provider_;
  std::shared_ptr<void> engine_;  // the session's handle; null until it is opened
  std::vector<Sublayer> registry_;
};

}  // namespace WfpFirewall
