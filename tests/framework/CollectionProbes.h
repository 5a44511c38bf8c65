// What the tests of the collections look at them with.
#pragma once

#include <afxtempl.h>

namespace quon_test
{

/// Counts the elements that are alive.
struct Counted
{
    Counted() { ++s_alive; }
    Counted(int initial) : value(initial) { ++s_alive; }
    Counted(const Counted& other) : value(other.value) { ++s_alive; }
    Counted& operator=(const Counted&) = default;
    ~Counted() { --s_alive; }
    bool operator==(const Counted& other) const { return value == other.value; }

    int value = 0;
    static inline int s_alive = 0;
};

inline int CountBlocks(const CPlex* block)
{
    int count = 0;
    for (; block != nullptr; block = block->pNext)
    {
        ++count;
    }
    return count;
}

}  // namespace quon_test
