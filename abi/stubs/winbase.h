/// @file
/// Wine's header, with the platform's types where Wine's differ.
#pragma once

#define GetCurrentDirectoryW WineGetCurrentDirectoryW
#include_next <winbase.h>
#undef GetCurrentDirectoryW

EXTERN_C WINBASEAPI DWORD WINAPI GetCurrentDirectoryW(DWORD size, LPWSTR buffer);
