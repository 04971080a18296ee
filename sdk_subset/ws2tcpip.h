/**
 * @file
 * Conversion of address texts: the host's headers, which winsock2.h includes, declare it.
 */
#pragma once

#include <winsock2.h>
