/**
 * @file
 * Conversion of wide text.
 */
#pragma once

#include <windef.h>

#define CP_UTF8 65001
#define WC_ERR_INVALID_CHARS 0x80

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Wide text to UTF-8. A unit is a character, and so is a pair of surrogates: text that was copied unit by
 * unit from UTF-16 converts as on the platform. A surrogate without its other half becomes U+FFFD, or, with
 * WC_ERR_INVALID_CHARS, makes the call fail.
 * @param codePage CP_UTF8.
 * @param length -1 if the text ends at its zero, which is then converted too.
 * @param buffer not used if size is 0.
 * @param defaultCharacter, usedDefault null, as this code page demands.
 * @return the number of bytes of the result; 0 after a failure, with the last error
 *         ERROR_INVALID_PARAMETER, ERROR_INSUFFICIENT_BUFFER or ERROR_NO_UNICODE_TRANSLATION.
 */
int WINAPI WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR text, int length, LPSTR buffer, int size,
                               LPCSTR defaultCharacter, BOOL* usedDefault);

#ifdef __cplusplus
}
#endif
