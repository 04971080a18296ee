#include <gmock/gmock.h>

#include <fstream>

#include "EmulatedTool.h"

namespace {

using testing::HasSubstr;

std::string Condition(const std::string& field, const std::string& type, const std::string& value) {
  return "<item><fieldKey>FWPM_CONDITION_" + field +
         "</fieldKey><matchType>FWP_MATCH_EQUAL</matchType><conditionValue><type>" + type + "</type>" +
         value + "</conditionValue></item>";
}

std::string Users(const std::string& sddl) {
  return Condition("ALE_USER_ID", "FWP_SECURITY_DESCRIPTOR_TYPE", "<sd>" + sddl + "</sd>");
}

std::string Number(const std::string& field, const std::string& number) {
  return Condition(field, "FWP_UINT32", "<uint32>" + number + "</uint32>");
}

/// A filter that blocks outbound connections to a port if a condition holds, too.
std::string BlockTo(const std::string& port, const std::string& condition) {
  return "<item><filterKey>{00000000-0000-0000-0000-0000000" + port + "}</filterKey><displayData><name>To " +
         port +
         "</name><description/></displayData><flags/><providerKey/><providerData/>"
         "<layerKey>FWPM_LAYER_ALE_AUTH_CONNECT_V4</layerKey>"
         "<subLayerKey>{aaaaaaaa-0000-0000-0000-000000000001}</subLayerKey>"
         "<weight><type>FWP_UINT64</type><uint64>7</uint64></weight><filterCondition numItems=\"2\">" +
         Condition("IP_REMOTE_PORT", "FWP_UINT16", "<uint16>" + port + "</uint16>") + condition +
         "</filterCondition><action><type>FWP_ACTION_BLOCK</type><filterType/></action>"
         "<rawContext>0</rawContext><reserved/><filterId>" +
         port +
         "</filterId><effectiveWeight><type>FWP_UINT64</type><uint64>7</uint64></effectiveWeight></item>\n";
}

// The ports of the filters, each with a condition of its own.
constexpr const wchar_t* kAlice = L"10.0.0.1:10001";
constexpr const wchar_t* kBob = L"10.0.0.1:10002";
constexpr const wchar_t* kSystem = L"10.0.0.1:10003";
constexpr const wchar_t* kNameService = L"10.0.0.1:10004";
constexpr const wchar_t* kNetworkServices = L"10.0.0.1:10005";
constexpr const wchar_t* kPackage = L"10.0.0.1:10006";
constexpr const wchar_t* kCapability = L"10.0.0.1:10007";
constexpr const wchar_t* kPrivate = L"10.0.0.1:10008";
constexpr const wchar_t* kWireless = L"10.0.0.1:10009";
constexpr const wchar_t* kTeredo = L"10.0.0.1:10010";
constexpr const wchar_t* kAnew = L"10.0.0.1:10011";
constexpr const wchar_t* kOtherCompartment = L"10.0.0.1:10012";

/// @param bob whether a filter names a second account.
std::string Dump(bool bob = false) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n<wfpdiag><filters>\n" +
         BlockTo("10001", Users("D:(A;;CC;;;S-1-5-21-1-2-3-1001)")) +
         (bob ? BlockTo("10002", Users("D:(A;;CC;;;S-1-5-21-1-2-3-1002)")) : "") +
         BlockTo("10003", Users("D:(A;;CC;;;SY)")) +
         BlockTo("10004", Users("D:(A;;CC;;;S-1-5-80-859482183-879914841-863379149-1145462774-2388618682)")) +
         BlockTo("10005", Users("D:(A;;CC;;;NS)")) +
         BlockTo("10006", Condition("ALE_PACKAGE_ID", "FWP_SID",
                                    "<sid>S-1-15-2-4163697451-3176919390-1155390458-2883473650-3020241727-"
                                    "522149888-4067122936</sid>")) +
         BlockTo("10007", Users("D:(A;;CC;;;WD)(A;;CC;;;S-1-15-3-1)")) +
         BlockTo("10008", Number("CURRENT_PROFILE_ID", "2")) +
         BlockTo("10009", Number("INTERFACE_TYPE", "71")) + BlockTo("10010", Number("TUNNEL_TYPE", "14")) +
         BlockTo("10011", Number("FLAGS", "4")) + BlockTo("10012", Number("COMPARTMENT_ID", "2")) +
         "</filters></wfpdiag>\n";
}

class WhoAndWhere : public testing::Test {
 protected:
  [[nodiscard]] ToolRun Run(std::vector<std::wstring> arguments, const std::string& content = Dump()) const {
    const std::filesystem::path file = folder_.Path() / "machine.xml";
    std::ofstream(file, std::ios::binary) << content;
    arguments.insert(arguments.begin(), {L"--engine", file.wstring()});
    return RunTool(arguments);
  }

  /// "permit", "block" or "depends".
  [[nodiscard]] std::string Asked(const wchar_t* remote, const std::vector<std::wstring>& options,
                                  const std::string& content = Dump()) const {
    std::vector<std::wstring> arguments{L"--json", L"explain", L"--remote", remote};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return DocumentOf(Run(arguments, content))["steps"][0]["explanations"][0]["verdict"]["verdict"];
  }

 private:
  const TemporaryFolder folder_;
};

TEST_F(WhoAndWhere, ASignedInUserConnectsUnlessAnotherIsNamed) {
  EXPECT_EQ(Asked(kSystem, {}), "permit");
  EXPECT_EQ(Asked(kSystem, {L"--as", L"user"}), "permit");
  EXPECT_EQ(Asked(kSystem, {L"--as", L"system"}), "block");
}

TEST_F(WhoAndWhere, TheSystemIsTheApplicationOfItsName) {
  const auto application = [this](const std::vector<std::wstring>& options) {
    std::vector<std::wstring> arguments{L"--json", L"explain", L"--remote", L"10.0.0.1"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return std::string(
        DocumentOf(Run(arguments))["steps"][0]["explanations"][0]["connection"]["application"]);
  };
  EXPECT_EQ(application({L"--as", L"system"}), "530079007300740065006d000000");
  EXPECT_EQ(application({L"--as", L"system", L"--app", L"\\device\\harddiskvolume1\\a"}),
            "5c006400650076006900630065005c0068006100720064006400690073006b0076006f006c0075006d00650031005c00"
            "61000000");
  EXPECT_EQ(application({}), "6f0074006800650072002e006500780065000000");
}

TEST_F(WhoAndWhere, TheUserIsTheOneThatFiltersName) {
  EXPECT_EQ(Asked(kAlice, {}), "block");
  EXPECT_EQ(Asked(kAlice, {}, Dump(true)), "depends");
  EXPECT_EQ(Asked(kAlice, {L"--user", L"S-1-5-21-1-2-3-1001"}, Dump(true)), "block");
  EXPECT_EQ(Asked(kBob, {L"--user", L"S-1-5-21-1-2-3-1002"}, Dump(true)), "block");
}

TEST_F(WhoAndWhere, AServiceHasTheSidOfItsNameAndItsUsualAccount) {
  EXPECT_EQ(Asked(kNameService, {L"--as", L"service", L"dnscache"}), "block");
  EXPECT_EQ(Asked(kNetworkServices, {L"--as", L"service", L"dnscache"}), "block");
  EXPECT_EQ(Asked(kNameService, {L"--as", L"service", L"W32Time"}), "permit");
  EXPECT_EQ(Asked(kNetworkServices, {L"--as", L"service", L"W32Time"}), "permit");
  EXPECT_EQ(Asked(kNetworkServices, {L"--as", L"service", L"Unheard", L"--account", L"network-service"}),
            "block");
  EXPECT_EQ(Asked(kNetworkServices, {L"--as", L"service", L"Unheard"}), "depends");
}

TEST_F(WhoAndWhere, AnAppContainerIsNamedByItsFamilyOrItsSid) {
  constexpr const wchar_t* kFamily = L"af692bff-6779-424f-870e-f6e59c502349_5c037jar5839r";
  EXPECT_EQ(Asked(kPackage, {L"--as", L"package", kFamily}), "block");
  EXPECT_EQ(Asked(kPackage, {L"--as", L"package",
                             L"S-1-15-2-4163697451-3176919390-1155390458-2883473650-3020241727-522149888-"
                             L"4067122936"}),
            "block");
  EXPECT_EQ(Asked(kPackage, {L"--as", L"package", L"Other_0123456789abc"}), "permit");
  EXPECT_EQ(Asked(kPackage, {}), "permit");
  EXPECT_EQ(Asked(kCapability, {L"--as", L"package", kFamily}), "permit");
  EXPECT_EQ(Asked(kCapability, {L"--as", L"package", kFamily, L"--capability", L"internetClient"}), "block");
  EXPECT_EQ(Asked(kCapability, {L"--as", L"package", kFamily, L"--capability", L"S-1-15-3-1"}), "block");
}

TEST_F(WhoAndWhere, TheProfileIsOpenUnlessGiven) {
  EXPECT_EQ(Asked(kPrivate, {}), "depends");
  EXPECT_EQ(Asked(kPrivate, {L"--profile", L"private"}), "block");
  EXPECT_EQ(Asked(kPrivate, {L"--profile", L"public"}), "permit");
  EXPECT_EQ(Asked(kPrivate, {L"--profile", L"domain"}), "permit");
}

TEST_F(WhoAndWhere, APlaceIsMadeOfAdapterTunnelAndCompartment) {
  EXPECT_EQ(Asked(kWireless, {L"--interface-type", L"wifi"}), "block");
  EXPECT_EQ(Asked(kWireless, {L"--interface-type", L"71"}), "block");
  EXPECT_EQ(Asked(kWireless, {L"--interface", L"19984723346456576"}), "block");  // 71 << 48
  EXPECT_EQ(Asked(kWireless, {L"--interface-type", L"ethernet"}), "permit");
  EXPECT_EQ(Asked(kTeredo, {}), "permit");
  EXPECT_EQ(Asked(kTeredo, {L"--tunnel-type", L"teredo"}), "block");
  EXPECT_EQ(Asked(kOtherCompartment, {}), "permit");
  EXPECT_EQ(Asked(kOtherCompartment, {L"--compartment", L"2"}), "block");
}

TEST_F(WhoAndWhere, AConnectionMayBeJudgedAnew) {
  EXPECT_EQ(Asked(kAnew, {}), "permit");
  EXPECT_EQ(Asked(kAnew, {L"--reauthorized"}), "block");
}

TEST_F(WhoAndWhere, AConnectionToTheMachineItselfIsLoopback) {
  const ParsedJson connection = DocumentOf(Run(
      {L"--json", L"explain", L"--remote", L"127.0.0.1:8080"}))["steps"][0]["explanations"][0]["connection"];
  EXPECT_EQ(connection["flags"], 1);
  EXPECT_EQ(connection["localAddress"], "127.0.0.1");
  EXPECT_EQ(connection["interface"], "6755399441055744");
}

TEST_F(WhoAndWhere, ALoopbackConnectionIsJudgedAtBothEnds) {
  const ParsedJson explanations =
      DocumentOf(Run({L"--json", L"explain", L"--remote", L"127.0.0.1:8080"}))["steps"][0]["explanations"];
  ASSERT_EQ(explanations.size(), 2u);
  EXPECT_EQ(explanations[0]["connection"]["direction"], "outbound");
  const ParsedJson& accepting = explanations[1]["connection"];
  EXPECT_EQ(accepting["direction"], "inbound");
  EXPECT_EQ(accepting["localPort"], 8080);
  EXPECT_EQ(accepting["remotePort"], 50000);
  EXPECT_EQ(accepting["arrivalInterface"], "6755399441055744");
  EXPECT_TRUE(accepting["nextHopInterface"].is_null());
  const ParsedJson oneEnd = DocumentOf(
      Run({L"--json", L"explain", L"--inbound", L"--remote", L"127.0.0.1:8080"}))["steps"][0]["explanations"];
  EXPECT_EQ(oneEnd.size(), 1u);
}

TEST_F(WhoAndWhere, MapAndReportAreMadeForOneWhoAndWhere) {
  EXPECT_THAT(Run({L"map"}).output, HasSubstr("depends on filters that only the engine can judge"));
  const std::string map = Run({L"map", L"--profile", L"public", L"--user", L"S-1-5-21-1-2-3-1001"}).output;
  EXPECT_THAT(map, testing::Not(HasSubstr("depends on filters that only the engine can judge")));
}

TEST_F(WhoAndWhere, SayWhatIsWrong) {
  const auto error = [this](std::vector<std::wstring> options) {
    options.insert(options.begin(), {L"explain", L"--remote", L"10.0.0.1"});
    return Run(std::move(options)).errors;
  };
  EXPECT_THAT(error({L"--as", L"nobody"}),
              HasSubstr("nobody is none of user, system, service NAME and package NAME"));
  EXPECT_THAT(error({L"--as", L"service"}),
              HasSubstr("service is none of user, system, service NAME and package NAME"));
  EXPECT_THAT(error({L"--user", L"alice"}), HasSubstr("alice is no SID such as S-1-5-18"));
  EXPECT_THAT(error({L"--as", L"system", L"--user", L"S-1-5-18"}),
              HasSubstr("Neither the system nor a service is a user"));
  EXPECT_THAT(error({L"--account", L"system"}), HasSubstr("Only a service has an account of its own"));
  EXPECT_THAT(error({L"--capability", L"internetClient"}),
              HasSubstr("Only an app container has capabilities"));
  EXPECT_THAT(error({L"--profile", L"home"}), HasSubstr("home is none of private, public and domain"));
  EXPECT_THAT(error({L"--interface-type", L"65536"}), HasSubstr("65536 is none of ethernet, wifi"));
  EXPECT_THAT(error({L"--interface", L"7", L"--interface-type", L"6"}),
              HasSubstr("An adapter has its type already"));
  EXPECT_THAT(error({L"--tunnel-type", L"x"}), HasSubstr("x is none of none, other, direct"));
  EXPECT_THAT(error({L"--compartment", L"4294967296"}),
              HasSubstr("4294967296 is no number up to 4294967295"));
  EXPECT_THAT(error({L"--epoch", L"-1"}), HasSubstr("-1 is no number"));
}

}  // namespace
