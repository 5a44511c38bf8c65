/// @file
/// Read before every source of the behaviour tests: what LLVM's standard library and the test framework need of the C
/// run-time, which exports it, and which Wine's headers do not declare.
#pragma once

#include <ctype.h>
#include <locale.h>
#include <math.h>
#include <stddef.h>
#include <stdio.h>
#include <stdlib.h>
#include <time.h>
#include <wchar.h>

extern "C"
{
    __declspec(dllimport) int __cdecl _isdigit_l(int, _locale_t);
    __declspec(dllimport) int __cdecl _islower_l(int, _locale_t);
    __declspec(dllimport) int __cdecl _isupper_l(int, _locale_t);
    __declspec(dllimport) int __cdecl _isxdigit_l(int, _locale_t);
    __declspec(dllimport) int __cdecl _iswcntrl_l(wint_t, _locale_t);
    __declspec(dllimport) int __cdecl _iswxdigit_l(wint_t, _locale_t);
    __declspec(dllimport) const unsigned short* __cdecl __pctype_func(void);
    __declspec(dllimport) float __cdecl _strtof_l(const char*, char**, _locale_t);
    __declspec(dllimport) double __cdecl _strtod_l(const char*, char**, _locale_t);
    __declspec(dllimport) size_t __cdecl _strftime_l(char*, size_t, const char*, const struct tm*, _locale_t);
    __declspec(dllimport) int __cdecl ___mb_cur_max_func(void);
    __declspec(dllimport) int __cdecl ___mb_cur_max_l_func(_locale_t);
    __declspec(dllimport) errno_t __cdecl wcrtomb_s(size_t*, char*, size_t, wchar_t, mbstate_t*);
    __declspec(dllimport) int* __cdecl __sys_nerr(void);
    __declspec(dllimport) unsigned __cdecl _set_abort_behavior(unsigned, unsigned);

    // A long double is a double in this ABI.
    inline long double __cdecl wcstold(const wchar_t* text, wchar_t** end)
    {
        return wcstod(text, end);
    }
}

#if !defined(MB_CUR_MAX)
#define MB_CUR_MAX (static_cast<size_t>(___mb_cur_max_func()))
#endif
#if !defined(_sys_nerr)
#define _sys_nerr (*__sys_nerr())
#endif
#if !defined(GetExceptionCode)
#define GetExceptionCode _exception_code
#endif
#define localtime_s(result, time) _localtime64_s(result, time)

// The release run-time has no reports to redirect.
#include <crtdbg.h>
#if !defined(_CRTDBG_FILE_STDERR)
#define _CRTDBG_FILE_STDERR nullptr
#define _CrtSetReportFile(kind, file) static_cast<void>(0)
#endif
