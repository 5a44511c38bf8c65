/// @file
/// The storage of a fibre, which Wine declares with everything else.
#pragma once

#include <windows.h>
