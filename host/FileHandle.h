// The owner of an open file.
#pragma once

#include <afx.h>

#include <memory>

namespace quonhost
{

struct CloseFile
{
    void operator()(HANDLE file) const { ::CloseHandle(file); }
};

/// Owns a handle of the system that `CloseHandle` closes; empty when null.
using FileHandle = std::unique_ptr<void, CloseFile>;

/// Takes ownership of what `CreateFileW` returned; empty when that failed.
inline FileHandle OwnFile(HANDLE file)
{
    return FileHandle(file == INVALID_HANDLE_VALUE ? nullptr : file);
}

}  // namespace quonhost
