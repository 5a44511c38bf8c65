/// @file
/// A small value from the machine's part of the registry.
#pragma once

#include <afx.h>

#include "base/Export.h"

/// Reads a value of up to 4 bytes below `HKEY_LOCAL_MACHINE`.
///
/// The key stays open for the rest of the process: each successful opening costs one registry handle. Read once and
/// keep the result.
/// @param keyPath the key below `HKEY_LOCAL_MACHINE`, such as "SOFTWARE\\Vendor\\Product".
/// @param valueName name of the value; empty for the key's default value.
/// @param data room for 4 bytes, owned by the caller. The value's bytes are copied as they are, whatever its type. A
///        shorter value leaves the other bytes untouched. With null only the presence of the value is found out.
/// @return true when the value was read. False when the key or the value is missing or may not be read, @p data being
///         untouched then, or when the value is longer than 4 bytes, which leaves @p data undefined.
QUON_API bool ReadMachineRegistryValue(const CString& keyPath, CString valueName, void* data);
