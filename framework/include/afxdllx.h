#pragma once

/// @file afxdllx.h
/// Included once in an extension module, by the source that holds DllMain. The framework's own header also brings code
/// of its own into the module here; the stand-in needs none.

#include "afxwin.h"
