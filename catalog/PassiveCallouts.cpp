#include "catalog/PassiveCallouts.h"

#include <array>

#include "catalog/KeyIndex.h"

namespace Catalog {
namespace {

/// First those that are built in, then those of services: Windows Firewall and usage statistics.
constexpr auto kPassiveCallouts = std::to_array<PassiveCallout>({
    {"6ac141fc-f75d-4203-b9c8-48e6149c2712"_guid, "applies IPsec settings to clients"},
    {"4c0dda05-e31f-4666-90b0-b3dfad34129a"_guid, "applies IPsec settings to clients"},
    {"eda08606-2494-4d78-89bc-67837c03b969"_guid, "drops in silence what has no receiver"},
    {"8693cc74-a075-4156-b476-9286eece814e"_guid, "drops in silence what has no receiver"},
    {"f3e10ab3-2c25-4279-ac36-c30fc181bec4"_guid, "turns offload on or off"},
    {"39e22085-a341-42fc-a279-aec94e689c56"_guid, "turns offload on or off"},
    {"e183ecb2-3a7f-4b54-8ad9-76050ed880ca"_guid, "turns offload on or off"},
    {"0378cf41-bf98-4603-81f2-7f12586079f6"_guid, "turns offload on or off"},
    {"bc582280-1677-41e9-94ab-c2fcb15c2eeb"_guid, "sets options"},
    {"98e5373c-b884-490f-b65f-2f6a4a575195"_guid, "sets options"},
    {"2d55f008-0c01-4f92-b26e-a08a94569b8d"_guid, "sets options"},
    {"63018537-f281-4dc4-83d3-8dec18b7ade2"_guid, "sets options"},
    {"079b1010-f1c5-4fcd-ae05-da41107abd0b"_guid, "reports edge traversal"},
    {"31b95392-066e-42a2-b7db-92f8acdd56f9"_guid, "reports edge traversal"},
    {"33486ab5-6d5e-4e65-a00b-a7afed0ba9a1"_guid, "reports edge traversal"},
    {"81a434e7-f60c-4378-bab8-c625a30f0197"_guid, "reports edge traversal"},
    {"215a0b39-4b7e-4eda-8ce4-179679df6224"_guid, "chooses a template of TCP settings"},
    {"838b37a1-5c12-4d34-8b38-078728b2d25c"_guid, "chooses a template of TCP settings"},
    {"2f23f5d0-40c4-4c41-a254-46d8dba8957c"_guid, "chooses a template of TCP settings"},
    {"b25152f0-991c-4f53-bbe7-d24b45fe632c"_guid, "chooses a template of TCP settings"},
    {"288b524d-0566-4e19-b612-8f441a2e5949"_guid, "marks loopback of app containers"},
    {"00b84b92-2b5e-4b71-ab0e-aaca43e387e6"_guid, "marks loopback of app containers"},
    {"5fbfc31d-a51c-44dc-acb6-0624a030a700"_guid, "audits what a policy would do"},
    {"5fbfc31d-a51c-44dc-acb6-0624a030a701"_guid, "audits what a policy would do"},
    {"5fbfc31d-a51c-44dc-acb6-0624a030a702"_guid, "audits what a policy would do"},
    {"5fbfc31d-a51c-44dc-acb6-0624a030a703"_guid, "audits what a policy would do"},
    {"18729c7a-2f62-4be0-966f-974b21b86df1"_guid, "marks connections of a proxy"},
    {"6c3fb801-daff-40e9-91e6-f7ff7e52f7d9"_guid, "marks connections of a proxy"},
    {"c3dbed20-0bb6-4bf3-828d-96732e1e0024"_guid, "notifies the user"},
    {"c3dbed20-0bb6-4bf3-828d-96732e1e0026"_guid, "notifies the user"},
    {"c3dbed20-0bb6-4bf3-828d-96732e1e0028"_guid, "notifies the user"},
    {"c3dbed20-0bb6-4bf3-828d-96732e1e002a"_guid, "notifies the user"},
    {"c3dbed20-0bb6-4bf3-828d-96732e1e011d"_guid, "performs logging"},
    {"c3dbed20-0bb6-4bf3-828d-96732e1e011f"_guid, "performs logging"},
    {"c3dbed20-0bb6-4bf3-828d-96732e1e0121"_guid, "performs logging"},
    {"c3dbed20-0bb6-4bf3-828d-96732e1e0123"_guid, "performs logging"},
    {"c3dbed20-0bb6-4bf3-828d-96732e1e012d"_guid, "performs logging"},
    {"c3dbed20-0bb6-4bf3-828d-96732e1e012f"_guid, "performs logging"},
    {"c3dbed20-0bb6-4bf3-828d-96732e1e0131"_guid, "performs logging"},
    {"c3dbed20-0bb6-4bf3-828d-96732e1e0133"_guid, "performs logging"},
    {"c3dbed20-0bb6-4bf3-828d-96732e1e0134"_guid, "performs logging"},
    {"c3dbed20-0bb6-4bf3-828d-96732e1e0136"_guid, "performs logging"},
    {"c3dbed20-0bb6-4bf3-828d-96732e1e022c"_guid, "permits secondary connections"},
    {"c3dbed20-0bb6-4bf3-828d-96732e1e022e"_guid, "permits secondary connections"},
    {"c3dbed20-0bb6-4bf3-828d-96732e1e0230"_guid, "permits secondary connections"},
    {"c3dbed20-0bb6-4bf3-828d-96732e1e0232"_guid, "permits secondary connections"},
    {"c3dbed20-0bb6-4bf3-828d-96732e1e0334"_guid, "begins deep inspection"},
    {"c3dbed20-0bb6-4bf3-828d-96732e1e0336"_guid, "begins deep inspection"},
    {"8e44982b-f477-11df-85ce-78e7d1810190"_guid, "counts usage"},
    {"8e44982d-f477-11df-85ce-78e7d1810190"_guid, "counts usage"},
    {"8e44982f-f477-11df-85ce-78e7d1810190"_guid, "counts usage"},
    {"8e449833-f477-11df-85ce-78e7d1810190"_guid, "counts usage"},
    {"8e449837-f477-11df-85ce-78e7d1810190"_guid, "counts usage"},
    {"8e449839-f477-11df-85ce-78e7d1810190"_guid, "counts usage"},
});

}  // namespace

const PassiveCallout* FindPassiveCallout(const GUID& key) {
  static constexpr KeyIndex kIndex(kPassiveCallouts);
  return kIndex.Find(key);
}

}  // namespace Catalog
