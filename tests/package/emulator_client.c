/* Uses the installed emulator. The keys that MinGW-w64 does not have come from the installed header of the
 * catalog; the emulator's import library has its control functions and those of the platform. */
#define INITGUID
#include <catalog/FwpmKeys.h>
#include <emulator/ControlExports.h>
#include <stdio.h>

int main(void) {
  char text[2000];
  HANDLE engine = NULL;
  wchar_t name[] = L"No name look-ups";
  FWPM_FILTER_CONDITION0 port = {.fieldKey = FWPM_CONDITION_IP_REMOTE_PORT, .matchType = FWP_MATCH_EQUAL};
  FWPM_FILTER0 filter = {.displayData.name = name, .layerKey = FWPM_LAYER_ALE_AUTH_CONNECT_V4};
  port.conditionValue.type = FWP_UINT16;
  port.conditionValue.uint16 = 53;
  filter.subLayerKey = FWPM_SUBLAYER_UNIVERSAL;
  filter.action.type = FWP_ACTION_BLOCK;
  filter.numFilterConditions = 1;
  filter.filterCondition = &port;
  if (FwpmEngineOpen0(NULL, RPC_C_AUTHN_WINNT, NULL, NULL, &engine) == ERROR_SUCCESS) {
    FwpmFilterAdd0(engine, &filter, NULL, NULL);
    FwpmEngineClose0(engine);
  }
  EngineEmulatorJournalText(text, sizeof text);
  fputs(text, stdout);
  return 0;
}
