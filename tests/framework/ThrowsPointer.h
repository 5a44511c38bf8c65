// The framework throws pointers: what a test says about that.
#pragma once

#include <afx.h>

#include <utility>

namespace quon_test
{

/// True when `action` throws an `Exception*`, which is then deleted. Any other exception passes through.
template <typename Exception, typename Action>
bool ThrowsPointer(Action action)
{
    try
    {
        action();
    }
    catch (Exception* error)
    {
        error->Delete();
        return true;
    }
    return false;
}

/// Cause and system error of the CFileException that `action` throws; cause -1 when it does not throw.
template <typename Action>
std::pair<int, LONG> FileErrorOf(Action action)
{
    try
    {
        action();
    }
    catch (CFileException* error)
    {
        const std::pair<int, LONG> result(error->m_cause, error->m_lOsError);
        error->Delete();
        return result;
    }
    return {-1, 0};
}

}  // namespace quon_test
