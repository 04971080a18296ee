// What the engine under test, and the emulator, answer to wrong calls. Each is made in a transaction that is
// given up, in a dynamic session; what it tries to add would concern one port of this program's own.
#include <WfpPlatform.h>
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <functional>
#include <ostream>
#include <stdexcept>
#include <string>

#include "live/LiveRun.h"
#include "support/EngineKeys.h"
#include "windows/LoadedModule.h"

namespace {

constexpr GUID kUnknown{0x5b6e0f11, 0x7d0a, 0x4c9c, {0x8e, 0x35, 0x1f, 0x9e, 0x27, 0x41, 0x60, 0x0d}};
constexpr GUID kSublayer{0x5b6e0f12, 0x7d0a, 0x4c9c, {0x8e, 0x35, 0x1f, 0x9e, 0x27, 0x41, 0x60, 0x0d}};
constexpr GUID kRemotePort{0xc35a604d, 0xd22b, 0x4e1a, {0x91, 0xb4, 0x68, 0xf6, 0x74, 0xee, 0x67, 0x4b}};

/// The functions of one client library.
class Client {
 public:
  explicit Client(const std::filesystem::path& path) : module_(LoadModule(path)) {
    FWPM_SESSION0 session{};
    session.flags = FWPM_SESSION_FLAG_DYNAMIC;
    session.txnWaitTimeoutInMSec = 5000;
    const DWORD result = Call<decltype(&::FwpmEngineOpen0)>("FwpmEngineOpen0")(nullptr, RPC_C_AUTHN_WINNT,
                                                                               nullptr, &session, &engine);
    if (result != ERROR_SUCCESS) {
      throw std::runtime_error("FwpmEngineOpen0 gave code " + std::to_string(result));
    }
  }
  ~Client() { Call<decltype(&::FwpmEngineClose0)>("FwpmEngineClose0")(engine); }
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

  template <class Function>
  [[nodiscard]] Function Call(const char* name) const {
    return FindFunction<Function>(module_.get(), name);
  }

 private:
  ModuleHandle module_;

 public:
  HANDLE engine = nullptr;
};

#define CALL(client, function) (client).Call<decltype(&::function)>(#function)

/// A filter that blocks nobody: it is for one port of this program.
struct HarmlessFilter {
  HarmlessFilter() {
    conditions[0].fieldKey = kRemotePort;
    conditions[0].conditionValue.type = FWP_UINT16;
    conditions[0].conditionValue.uint16 = 9;
    conditions[1].fieldKey = kAppId;
    conditions[1].conditionValue.type = FWP_BYTE_BLOB_TYPE;
    conditions[1].conditionValue.byteBlob = &application;
    record.displayData.name = name;
    record.layerKey = kConnectV4;
    record.action.type = FWP_ACTION_BLOCK;
    record.numFilterConditions = 2;
    record.filterCondition = conditions.data();
  }

  wchar_t name[24] = L"Corvane live tests";
  UINT8 path[8] = {'t', 0, 'e', 0, 's', 0, 0, 0};
  FWP_BYTE_BLOB application{sizeof path, path};
  FWP_RANGE0 range{};
  std::array<FWPM_FILTER_CONDITION0, 2> conditions{};
  FWPM_FILTER0 record{};
};

DWORD AddFilter(const Client& client, const std::function<void(HarmlessFilter&)>& spoil) {
  HarmlessFilter filter;
  spoil(filter);
  return CALL(client, FwpmFilterAdd0)(client.engine, &filter.record, nullptr, nullptr);
}

DWORD AddSublayer(const Client& client) {
  wchar_t name[] = L"Corvane live tests";
  FWPM_SUBLAYER0 sublayer{};
  sublayer.subLayerKey = kSublayer;
  sublayer.displayData.name = name;
  return CALL(client, FwpmSubLayerAdd0)(client.engine, &sublayer, nullptr);
}

struct WrongCall {
  const char* name;
  DWORD (*call)(const Client& client);
  DWORD answer;
};

void PrintTo(const WrongCall& wrong, std::ostream* out) { *out << wrong.name; }

constexpr DWORD Code(HRESULT error) { return static_cast<DWORD>(error); }

const WrongCall kWrongCalls[]{
    {"FilterOfAnUnknownLayer",
     [](const Client& client) {
       return AddFilter(client, [](HarmlessFilter& filter) { filter.record.layerKey = kUnknown; });
     },
     Code(FWP_E_LAYER_NOT_FOUND)},
    {"FilterOfAnUnknownSublayer",
     [](const Client& client) {
       return AddFilter(client, [](HarmlessFilter& filter) { filter.record.subLayerKey = kUnknown; });
     },
     Code(FWP_E_SUBLAYER_NOT_FOUND)},
    {"FilterOfAnUnknownProvider",
     [](const Client& client) {
       GUID provider = kUnknown;
       return AddFilter(client, [&](HarmlessFilter& filter) { filter.record.providerKey = &provider; });
     },
     Code(FWP_E_PROVIDER_NOT_FOUND)},
    {"FieldThatTheLayerLacks",
     [](const Client& client) {
       return AddFilter(client, [](HarmlessFilter& filter) { filter.conditions[0].fieldKey = kUnknown; });
     },
     Code(FWP_E_CONDITION_NOT_FOUND)},
    {"ValueOfAnotherType",
     [](const Client& client) {
       return AddFilter(client, [](HarmlessFilter& filter) {
         filter.conditions[0].conditionValue.type = FWP_UINT32;
         filter.conditions[0].conditionValue.uint32 = 9;
       });
     },
     Code(FWP_E_TYPE_MISMATCH)},
    {"RangeThatEndsBeforeItBegins",
     [](const Client& client) {
       return AddFilter(client, [](HarmlessFilter& filter) {
         filter.range.valueLow.type = FWP_UINT16;
         filter.range.valueLow.uint16 = 9;
         filter.range.valueHigh.type = FWP_UINT16;
         filter.range.valueHigh.uint16 = 8;
         filter.conditions[0].matchType = FWP_MATCH_RANGE;
         filter.conditions[0].conditionValue.type = FWP_RANGE_TYPE;
         filter.conditions[0].conditionValue.rangeValue = &filter.range;
       });
     },
     Code(FWP_E_INVALID_RANGE)},
    {"WeightClassAboveFifteen",
     [](const Client& client) {
       return AddFilter(client, [](HarmlessFilter& filter) {
         filter.record.weight.type = FWP_UINT8;
         filter.record.weight.uint8 = 16;
       });
     },
     Code(FWP_E_INVALID_WEIGHT)},
    {"FlagsOfANumberThatIsNoFlags",
     [](const Client& client) {
       return AddFilter(
           client, [](HarmlessFilter& filter) { filter.conditions[1].matchType = FWP_MATCH_FLAGS_ALL_SET; });
     },
     Code(FWP_E_MATCH_TYPE_MISMATCH)},
    {"SublayerThatIsThereAlready",
     [](const Client& client) {
       EXPECT_EQ(AddSublayer(client), DWORD{ERROR_SUCCESS});
       return AddSublayer(client);
     },
     Code(FWP_E_ALREADY_EXISTS)},
    {"SublayerToDeleteThatIsNotThere",
     [](const Client& client) { return CALL(client, FwpmSubLayerDeleteByKey0)(client.engine, &kUnknown); },
     Code(FWP_E_SUBLAYER_NOT_FOUND)},
    {"FilterToDeleteThatIsNotThere",
     [](const Client& client) { return CALL(client, FwpmFilterDeleteByKey0)(client.engine, &kUnknown); },
     Code(FWP_E_FILTER_NOT_FOUND)},
    {"SublayerToDeleteThatHasAFilter",
     [](const Client& client) {
       EXPECT_EQ(AddSublayer(client), DWORD{ERROR_SUCCESS});
       EXPECT_EQ(AddFilter(client, [](HarmlessFilter& filter) { filter.record.subLayerKey = kSublayer; }),
                 DWORD{ERROR_SUCCESS});
       return CALL(client, FwpmSubLayerDeleteByKey0)(client.engine, &kSublayer);
     },
     Code(FWP_E_IN_USE)},
    {"TransactionWithinATransaction",
     [](const Client& client) { return CALL(client, FwpmTransactionBegin0)(client.engine, 0); },
     Code(FWP_E_TXN_IN_PROGRESS)},
};

DWORD AnswerOf(const std::filesystem::path& library, const WrongCall& wrong) {
  const Client client(library);
  EXPECT_EQ(CALL(client, FwpmTransactionBegin0)(client.engine, 0), DWORD{ERROR_SUCCESS});
  const DWORD answer = wrong.call(client);
  EXPECT_EQ(CALL(client, FwpmTransactionAbort0)(client.engine), DWORD{ERROR_SUCCESS});
  return answer;
}

class WrongCalls : public testing::TestWithParam<WrongCall> {};

TEST_P(WrongCalls, AreRefusedByTheEngine) {
  EXPECT_EQ(AnswerOf(LiveRun::Get().ClientLibrary(), GetParam()), GetParam().answer);
}

TEST_P(WrongCalls, AreRefusedByTheEmulator) {
  EXPECT_EQ(AnswerOf(LiveRun::EmulatedClientLibrary(), GetParam()), GetParam().answer);
}

TEST(WrongCall, ToCommitOutsideATransactionIsRefused) {
  const Client client(LiveRun::Get().ClientLibrary());
  EXPECT_EQ(CALL(client, FwpmTransactionCommit0)(client.engine), Code(FWP_E_NO_TXN_IN_PROGRESS));
}

INSTANTIATE_TEST_SUITE_P(OnThisMachine, WrongCalls, testing::ValuesIn(kWrongCalls),
                         [](const auto& instance) { return instance.param.name; });

}  // namespace
