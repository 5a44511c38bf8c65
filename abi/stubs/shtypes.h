/// @file
/// A name for item-ID lists that Wine's header leaves out.
#pragma once

#include_next <shtypes.h>

typedef LPITEMIDLIST PIDLIST_RELATIVE;
