/// @file
/// Wine's header, and what it lacks of the platform's.
#pragma once

#include_next <malloc.h>

#ifdef __cplusplus
extern "C"
#endif
    intptr_t __cdecl _get_heap_handle(void);
