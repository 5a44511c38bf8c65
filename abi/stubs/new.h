/// @file
/// The run-time's name for operator new.
#pragma once

#include <vcruntime_new.h>
