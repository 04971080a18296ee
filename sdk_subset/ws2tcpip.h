/**
 * @file
 * Conversion of address texts, which the system's headers declare; winsock2.h includes them.
 */
#pragma once

#include <winsock2.h>
