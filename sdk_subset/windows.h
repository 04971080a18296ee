/**
 * @file
 * The part of the platform's base header that the sources use.
 */
#pragma once

#include <stringapiset.h>
#include <winbase.h>
#include <windef.h>
#include <winerror.h>
#include <winnls.h>
#include <winnt.h>
#include <winreg.h>
