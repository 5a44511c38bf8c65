/// @file
/// Wine's header, and what it lacks of the platform's.
#pragma once

#include_next <stdlib.h>

#ifndef MB_CUR_MAX
#define MB_CUR_MAX ___mb_cur_max_func()
#endif
#ifdef __cplusplus
extern "C"
{
#endif
    int __cdecl ___mb_cur_max_func(void);
    float __cdecl _strtof_l(const char* text, char** end, _locale_t locale);
    double __cdecl _strtod_l(const char* text, char** end, _locale_t locale);
    errno_t __cdecl _dupenv_s(char** buffer, size_t* size, const char* name);
#ifdef __cplusplus
}
#endif
