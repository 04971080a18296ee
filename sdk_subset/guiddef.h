/**
 * @file
 * Globally unique identifiers.
 */
#pragma once

#include <stdint.h>
#include <string.h>

typedef struct GUID_ {
  uint32_t Data1;
  uint16_t Data2;
  uint16_t Data3;
  uint8_t Data4[8];
} GUID;

#ifdef __cplusplus
typedef const GUID& REFGUID;

inline bool operator==(const GUID& left, const GUID& right) {
  return memcmp(&left, &right, sizeof(GUID)) == 0;
}
inline bool IsEqualGUID(const GUID& left, const GUID& right) { return left == right; }
#else
typedef const GUID* REFGUID;

#define IsEqualGUID(left, right) (memcmp(left, right, sizeof(GUID)) == 0)
#endif
