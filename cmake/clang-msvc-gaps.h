/**
 * @file
 * What libc++ expects of Visual Studio's C library and MinGW-w64's headers lack. Only declared, because
 * nothing is linked.
 */
#pragma once

#ifdef __cplusplus
#include <locale.h>
#include <stdlib.h>

extern "C" {
float __cdecl _strtof_l(const char*, char**, _locale_t);
long double __cdecl _strtold_l(const char*, char**, _locale_t);
}

// MinGW-w64 has macros of these names, which libc++ removes.
extern "C++" {
template <class T>
constexpr bool isnan(T) {
  return false;
}
template <class T>
constexpr bool isinf(T) {
  return false;
}
template <class T>
constexpr bool isfinite(T) {
  return true;
}
#define _USE_SIGNBIT
bool signbit(double);
}

// libc++ 19 reads no real numbers.
#if _MSVC_LANG >= 202002L
#include <charconv>
namespace std {
from_chars_result from_chars(const char*, const char*, float&);
from_chars_result from_chars(const char*, const char*, double&);
}  // namespace std
#endif
#endif
