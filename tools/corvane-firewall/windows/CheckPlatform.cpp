#include "CheckPlatform.h"

void CheckPlatform(const Plan&) {}
