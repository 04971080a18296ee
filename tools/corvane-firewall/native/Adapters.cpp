#include "Adapters.h"

std::vector<ListedAdapter> ListAdapters() { return {}; }
