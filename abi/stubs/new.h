/// @file
/// The run-time's name for operator new.
#pragma once

#include <vcruntime_new.h>

#ifndef _PNH_DEFINED
#define _PNH_DEFINED
typedef int(__cdecl* _PNH)(size_t);
#endif
