/// @file
/// Read before every source: what the headers of Wine need to pass for the platform's own.
#pragma once

// A builtin of the compiler, which a header declares once more.
#define _InterlockedCompareExchange128 WineInterlockedCompareExchange128

// A header makes a macro of this keyword.
#include <windef.h>
#undef inline
