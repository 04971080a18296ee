/**
 * @file
 * Mapping of letters.
 */
#pragma once

#include <windef.h>

#define LOCALE_NAME_INVARIANT L""
#define LCMAP_LOWERCASE 0x100

typedef struct NLSVERSIONINFO_* LPNLSVERSIONINFO;

#ifdef __cplusplus
extern "C" {
#endif

/**
 * The lower case of a text, letter by letter. As on the platform, a letter stays as it is when its lower case
 * has another upper case: U+0130, whose lower case is "i", and U+212A, the sign for kelvin. Letters beyond
 * the basic plane also stay.
 * @param locale LOCALE_NAME_INVARIANT.
 * @param flags LCMAP_LOWERCASE.
 * @param length at least 1.
 * @param buffer not used if size is 0.
 * @param version, reserved null.
 * @param sortHandle 0.
 * @return the length of the result, which is that of the text; 0 after a failure, with the last error
 *         ERROR_INVALID_PARAMETER or ERROR_INSUFFICIENT_BUFFER.
 */
int WINAPI LCMapStringEx(LPCWSTR locale, DWORD flags, LPCWSTR text, int length, LPWSTR buffer, int size,
                         LPNLSVERSIONINFO version, LPVOID reserved, LPARAM sortHandle);

#ifdef __cplusplus
}
#endif
