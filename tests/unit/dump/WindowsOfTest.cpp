#include "dump/WindowsOf.h"

#include <gmock/gmock.h>

#include "dump/ReadDump.h"
#include "unit/dump/DumpText.h"

namespace {

using Catalog::WindowsVersion;
using testing::ElementsAre;

constexpr std::string_view kPort = "<type>FWP_UINT16</type><uint16>443</uint16>";

std::vector<WindowsVersion> WindowsOf(const std::string& dump) {
  return Dump::WindowsOf(Dump::ReadDump(dump, "test.xml"));
}

const auto kAny =
    ElementsAre(WindowsVersion::Windows10, WindowsVersion::Windows11, WindowsVersion::Windows24H2);

/// kState with another list of fields for its connect layer, and that as the listening layer.
std::string WithListenLayer(std::initializer_list<std::string_view> fields) {
  std::string items;
  for (const std::string_view field : fields) {
    items.append("<item><fieldKey>FWPM_CONDITION_")
        .append(field)
        .append("</fieldKey><type>FWPM_FIELD_RAW_DATA</type>");
    items += "<dataType>FWP_UINT32</dataType></item>";
  }
  std::string dump(kState);
  const std::size_t start = dump.find("<field numItems=\"2\">");
  const std::size_t end = dump.find("</field>", dump.find("FWPM_FIELD_FLAGS"));
  dump.replace(start, end - start, "<field>" + items);
  for (std::size_t i = dump.find("AUTH_CONNECT_V4"); i != std::string::npos;
       i = dump.find("AUTH_CONNECT_V4")) {
    dump.replace(i, 15, "AUTH_LISTEN_V4");
  }
  return dump;
}

TEST(WindowsOf, AStateTellsByTheFieldsOfItsLayers) {
  EXPECT_THAT(WindowsOf(WithListenLayer(
                  {"ALE_APP_ID", "ALE_USER_ID", "IP_LOCAL_ADDRESS", "IP_LOCAL_ADDRESS_TYPE", "IP_LOCAL_PORT",
                   "IP_LOCAL_INTERFACE", "FLAGS", "INTERFACE_TYPE", "TUNNEL_TYPE",
                   "LOCAL_INTERFACE_PROFILE_ID", "ALE_SIO_FIREWALL_SYSTEM_PORT", "ALE_PACKAGE_ID",
                   "ALE_SECURITY_ATTRIBUTE_FQBN_VALUE", "COMPARTMENT_ID", "ALE_PACKAGE_FAMILY_NAME"})),
              ElementsAre(WindowsVersion::Windows24H2));
  EXPECT_THAT(
      WindowsOf(WithListenLayer({"ALE_APP_ID", "ALE_USER_ID", "IP_LOCAL_ADDRESS", "IP_LOCAL_ADDRESS_TYPE",
                                 "IP_LOCAL_PORT", "IP_LOCAL_INTERFACE", "FLAGS", "INTERFACE_TYPE",
                                 "TUNNEL_TYPE", "LOCAL_INTERFACE_PROFILE_ID", "ALE_SIO_FIREWALL_SYSTEM_PORT",
                                 "ALE_PACKAGE_ID", "ALE_SECURITY_ATTRIBUTE_FQBN_VALUE", "COMPARTMENT_ID"})),
      ElementsAre(WindowsVersion::Windows10, WindowsVersion::Windows11));
}

TEST(WindowsOf, AStateOfUnknownLayersDoesNotTell) { EXPECT_THAT(WindowsOf(WithListenLayer({"NEW"})), kAny); }

TEST(WindowsOf, FiltersTellByTheFieldsThatTheyTest) {
  EXPECT_THAT(WindowsOf(std::string(kFilters)), kAny);
  EXPECT_THAT(WindowsOf(WithValue("FWPM_CONDITION_ALE_PACKAGE_FAMILY_NAME", kPort)),
              ElementsAre(WindowsVersion::Windows24H2));
  EXPECT_THAT(WindowsOf(WithValue("FWPM_CONDITION_NEW", kPort)), kAny);
}

TEST(WindowsOf, Windows10DoesNotMarkWhereFiltersComeFrom) {
  for (const std::string& dump : {std::string(kFilters), WithValue("FWPM_CONDITION_NEW", kPort)}) {
    EXPECT_THAT(WindowsOf(Replaced(dump, "FWPM_FILTER_FLAG_INDEXED", "FWPM_FILTER_FLAG_HAS_FILTER_ORIGIN")),
                ElementsAre(WindowsVersion::Windows11, WindowsVersion::Windows24H2));
  }
}

}  // namespace
