#include "UnreadableIpV6Texts.h"

#include <WfpPlatform.h>

#if !defined(_WIN32)
#include <dlfcn.h>
#endif

namespace {

bool unreadable = false;

using ReadAddress = int (*)(int family, const char* text, void* address);

ReadAddress PlatformsOwn() {
#if defined(_WIN32)
  return reinterpret_cast<ReadAddress>(
      reinterpret_cast<void (*)()>(GetProcAddress(LoadLibraryW(L"ws2_32.dll"), "inet_pton")));
#else
  return reinterpret_cast<ReadAddress>(dlsym(RTLD_NEXT, "inet_pton"));
#endif
}

int Read(int family, const char* text, void* address) {
  static const ReadAddress platformsOwn = PlatformsOwn();
  return unreadable && family == AF_INET6 ? 0 : platformsOwn(family, text, address);
}

}  // namespace

UnreadableIpV6Texts::UnreadableIpV6Texts() { unreadable = true; }

UnreadableIpV6Texts::~UnreadableIpV6Texts() { unreadable = false; }

// Replaces the platform's function.
extern "C" {

#if defined(_WIN32)
static int WSAAPI ReadForWindows(int family, const char* text, void* address) {
  return Read(family, text, address);
}
// Callers use this pointer; see FakePlatform.
decltype(&inet_pton) __imp_inet_pton = &ReadForWindows;
#else
int inet_pton(int family, const char* text, void* address) noexcept { return Read(family, text, address); }
#endif

}  // extern "C"
