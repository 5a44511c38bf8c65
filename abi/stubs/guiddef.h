/// @file
/// Makes IsEqualGUID a function, as the platform's is, so that it may be qualified. Meant to be read more than once, so
/// that there is no #pragma once.
#include_next <guiddef.h>
#ifndef QUON_ABI_IS_EQUAL_GUID
#define QUON_ABI_IS_EQUAL_GUID
#undef IsEqualGUID
inline int IsEqualGUID(REFGUID one, REFGUID other)
{
    return one == other;
}
#endif
