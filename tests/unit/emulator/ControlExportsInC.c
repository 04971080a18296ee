/* Checks that the header compiles in C. */
#include "emulator/ControlExports.h"

size_t CountOpenSessionsInC(void);

size_t CountOpenSessionsInC(void) {
  EngineEmulatorOutstanding outstanding;
  EngineEmulatorCountOutstanding(&outstanding);
  return outstanding.sessions;
}
