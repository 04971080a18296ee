/* A host in C that loads the library at run time by its full path, and prints a message if that fails. */
#include <corvane/native_firewall.h>
#include <stdio.h>
#include <windows.h>

/* The library is beside the program. Install both in a folder where only administrators can write. */
static HMODULE LoadFirewall(void) {
  wchar_t path[MAX_PATH + 40];
  const DWORD length = GetModuleFileNameW(NULL, path, MAX_PATH);
  wchar_t* name = wcsrchr(path, L'\\');
  if (length == 0 || length == MAX_PATH || name == NULL) {
    fprintf(stderr, "The path of this program is too long.\n");
    return NULL;
  }
  wcscpy(name + 1, L"Corvane.Native.Firewall.dll");
  /* Libraries that it needs are searched only in its own folder and in the system's folder. */
  HMODULE module =
      LoadLibraryExW(path, NULL, LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
  if (module == NULL) {
    const DWORD code = GetLastError();
    fprintf(stderr, "%ls cannot be loaded: code %lu%s\n", path, code,
            code == ERROR_MOD_NOT_FOUND ? ", it or a library that it needs is not there" : "");
  }
  return module;
}

static FARPROC Find(HMODULE module, const char* name) {
  const FARPROC function = GetProcAddress(module, name);
  if (function == NULL) {
    fprintf(stderr, "The library lacks %s: it is of another version than its header.\n", name);
  }
  return function;
}

int main(void) {
  HMODULE firewall = LoadFirewall();
  if (firewall == NULL) {
    return 1;
  }
  const IsInternetEnabledFunction isInternetEnabled =
      (IsInternetEnabledFunction)(void (*)(void))Find(firewall, "IsInternetEnabled");
  if (isInternetEnabled == NULL) {
    return 1;
  }
  printf("internet enabled: %d\n", (int)isInternetEnabled());
  /* If there were a session, Initialize should come first, to close it in an ordinary call. Here is none. */
  FreeLibrary(firewall);
  return 0;
}
