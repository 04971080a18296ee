/**
 * @file
 * The platform's base, as much of it as the sources use.
 */
#pragma once

#include <stringapiset.h>
#include <winbase.h>
#include <windef.h>
#include <winerror.h>
#include <winnls.h>
#include <winnt.h>
#include <winreg.h>
