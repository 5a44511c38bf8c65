#pragma once

#include "afx.h"

/// The full form of a path. @return ERROR_SUCCESS, or why there is none of fewer than _MAX_PATH characters
LONG GetFullPath(LPCTSTR path, wchar_t (&full)[_MAX_PATH]);
