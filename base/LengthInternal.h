// Lengths of texts, from the 64-bit ones of views and pointers to the `int` that the framework's strings count with.
#pragma once

#include <afx.h>

#include <climits>
#include <cstddef>

/// Returns `length` as the framework's strings count it. Throws the framework's memory exception for a length that none
/// of them can have; a string may refuse a smaller one by the same exception.
inline int ToStringLength(std::size_t length)
{
    if (length > INT_MAX)
    {
        AfxThrowMemoryException();
    }
    return static_cast<int>(length);
}

/// Returns the length of the text from `first` to `last`, with the same exception.
inline int ToStringLength(const wchar_t* first, const wchar_t* last)
{
    return ToStringLength(static_cast<std::size_t>(last - first));
}
