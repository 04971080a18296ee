#pragma once

/// Marks a class of the object model as part of the library's binary interface. Whoever links the
/// sources statically defines WFPFIREWALL_STATIC.
#if defined(WFPFIREWALL_STATIC)
#define WFPFIREWALL_API
#elif defined(WFPFIREWALL_BUILDING)
#define WFPFIREWALL_API __declspec(dllexport)
#else
#define WFPFIREWALL_API __declspec(dllimport)
#endif
