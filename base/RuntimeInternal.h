// Functions of the C run-time that reach the run-time itself with every compiler.
//
// MinGW links copies of its own for the plain names. They read and round otherwise than the run-time of the host's
// other modules: its wcstod takes characters of other scripts for digits after a code page's best fit, misses the
// nearest double by one unit now and then and writes through null when memory is short; its modf drops the sign of a
// zero fraction; its swscanf saturates. The run-time's own are imported instead, through the pointers in the import
// table.
#pragma once

#include <cmath>
#include <cwchar>

#if defined(__MINGW32__)

extern double(__cdecl* const RuntimeWcstod)(const wchar_t* text, wchar_t** end) __asm__("__imp_wcstod");
extern double(__cdecl* const RuntimeModf)(double value, double* whole) __asm__("__imp_modf");
extern int(__cdecl* const RuntimeSwscanf)(const wchar_t* text, const wchar_t* format, ...) __asm__("__imp_swscanf");

#else

inline double RuntimeWcstod(const wchar_t* text, wchar_t** end)
{
    return std::wcstod(text, end);
}

inline double RuntimeModf(double value, double* whole)
{
    return std::modf(value, whole);
}

template <typename... Results>
int RuntimeSwscanf(const wchar_t* text, const wchar_t* format, Results*... results)
{
    return std::swscanf(text, format, results...);
}

#endif
