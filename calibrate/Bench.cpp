#include "calibrate/Bench.h"

#include <algorithm>
#include <array>
#include <utility>

#include "calibrate/FilterRecord.h"
#include "catalog/Names.h"
#include "policy/Snapshot.h"

namespace Calibrate {
namespace {

/// How long others may keep the engine's lock: they hold it for milliseconds.
constexpr UINT32 kLockWaitMilliseconds = 5000;

void Check(DWORD result, const char* function) {
  if (result != ERROR_SUCCESS) {
    throw EngineError(result, function);
  }
}

HANDLE Open(const EngineCalls& engine) {
  static wchar_t name[] = L"corvane-firewall calibrate";
  FWPM_SESSION0 session{};
  session.displayData.name = name;
  session.flags = FWPM_SESSION_FLAG_DYNAMIC;
  session.txnWaitTimeoutInMSec = kLockWaitMilliseconds;
  HANDLE handle = nullptr;
  Check(engine.reading.FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, &session, &handle),
        "FwpmEngineOpen0");
  return handle;
}

}  // namespace

EngineError::EngineError(DWORD code, const std::string& function)
    : std::runtime_error(function + " failed: " + Catalog::ErrorName(code)), code_(code) {}

/// Undoes what was not committed.
class Bench::Transaction {
 public:
  Transaction(const EngineCalls& engine, HANDLE session)
      : engine_(engine), open_(nullptr, engine.reading.FwpmTransactionAbort0) {
    Check(engine.reading.FwpmTransactionBegin0(session, 0), "FwpmTransactionBegin0");
    open_.reset(session);
  }

  void Commit() {
    // Whether it succeeds or not, the transaction is over.
    Check(engine_.FwpmTransactionCommit0(open_.release()), "FwpmTransactionCommit0");
  }

 private:
  const EngineCalls& engine_;
  std::unique_ptr<void, decltype(Policy::EngineCalls::FwpmTransactionAbort0)> open_;
};

Bench::Bench(const EngineCalls& engine, std::string application)
    : engine_(engine),
      application_(std::move(application)),
      session_(Open(engine), engine.reading.FwpmEngineClose0) {
  AddSublayers();
}

void Bench::AddSublayers() {
  static wchar_t providerName[] = L"corvane-firewall calibrate";
  static wchar_t sublayerName[] = L"Experiments of corvane-firewall calibrate";
  Transaction transaction(engine_, Handle());
  FWPM_PROVIDER0 provider{};
  provider.providerKey = kProviderKey;
  provider.displayData.name = providerName;
  Check(engine_.FwpmProviderAdd0(Handle(), &provider, nullptr), "FwpmProviderAdd0");
  UINT16 weight = 0xFFFF;
  for (const GUID& key : {kUpperKey, kLowerKey}) {
    GUID providerKey = kProviderKey;
    FWPM_SUBLAYER0 sublayer{};
    sublayer.subLayerKey = key;
    sublayer.displayData.name = sublayerName;
    sublayer.providerKey = &providerKey;
    sublayer.weight = weight--;
    Check(engine_.FwpmSubLayerAdd0(Handle(), &sublayer, nullptr), "FwpmSubLayerAdd0");
  }
  transaction.Commit();
  // The engine changes weights that others have already.
  const Policy::Snapshot snapshot = Policy::ReadEngine(engine_.reading);
  const auto weightOf = [&snapshot](const GUID& key) {
    const auto found = std::ranges::find(snapshot.sublayers, key, &Policy::Sublayer::key);
    return found == snapshot.sublayers.end() ? UINT16{0} : found->weight;
  };
  isSwapped_ = weightOf(kUpperKey) < weightOf(kLowerKey);
}

UINT64 Bench::Add(const Rule& rule, const Target& target) const {
  const bool isUpper = (rule.level == Level::Upper) != isSwapped_;
  const FilterRecord record(rule, target, isUpper ? kUpperKey : kLowerKey);
  UINT64 id = 0;
  Check(engine_.FwpmFilterAdd0(Handle(), &record.Get(), nullptr, &id), "FwpmFilterAdd0");
  return id;
}

void Bench::Remove(UINT64 id) const {
  Check(engine_.FwpmFilterDeleteById0(Handle(), id), "FwpmFilterDeleteById0");
}

Bench::Installed Bench::Install(std::span<const Rule> rules, const Path& path, UINT16 port,
                                const Adding& adding) const {
  const Target target{application_, path, port};
  Installed installed(*this);
  std::optional<Transaction> transaction;
  if (adding.together) {
    transaction.emplace(engine_, Handle());
  }
  for (const Rule& rule : rules) {
    installed.ids_.push_back(Add(rule, target));
  }
  if (transaction) {
    transaction->Commit();
  }
  if (adding.again) {
    UINT64& id = installed.ids_[*adding.again];
    Remove(std::exchange(id, 0));
    id = Add(rules[*adding.again], target);
  }
  return installed;
}

Bench::Installed::Installed(Installed&& other) noexcept
    : bench_(other.bench_), ids_(std::exchange(other.ids_, {})) {}

Bench::Installed::~Installed() {
  // What cannot be removed now goes with the session.
  for (const UINT64 id : ids_) {
    if (id != 0) {
      static_cast<void>(bench_->engine_.FwpmFilterDeleteById0(bench_->Handle(), id));
    }
  }
}

}  // namespace Calibrate
