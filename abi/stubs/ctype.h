/// @file
/// Wine's header, and what it lacks of the platform's.
#pragma once

#include_next <ctype.h>

#ifdef __cplusplus
extern "C"
{
#endif
    int __cdecl _islower_l(int ch, _locale_t locale);
    int __cdecl _isupper_l(int ch, _locale_t locale);
#ifdef __cplusplus
}
#endif
