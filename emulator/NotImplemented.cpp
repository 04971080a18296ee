#include <WfpPlatform.h>

// fwpuclnt.def gives it the names of all functions that the emulator lacks.
extern "C" DWORD EngineEmulatorNotImplemented(void);

DWORD EngineEmulatorNotImplemented() { return ERROR_CALL_NOT_IMPLEMENTED; }
