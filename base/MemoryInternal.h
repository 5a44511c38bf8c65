/// @file
/// The answer to "memory is short", whichever way the allocator reports it.
#pragma once

#include <afx.h>

#include <memory>
#include <new>
#include <stdexcept>
#include <utility>

// Memory runs out in three ways. `new` throws CMemoryException* in a module that links the framework, and
// std::bad_alloc in one that does not: both exist, so both are caught. A standard container that is asked for more
// elements than it can ever hold throws std::length_error.

/// Runs `action` and stops the three exceptions that report short memory. A caught CMemoryException is deleted. Any
/// other exception passes through.
/// @return true when `action` ran to its end; false when memory was short: what it did before that stays done
template <typename Action>
bool RunsInMemory(Action&& action)
{
    try
    {
        std::forward<Action>(action)();
        return true;
    }
    catch (CMemoryException* exception)
    {
        exception->Delete();
    }
    catch (const std::bad_alloc&)
    {
    }
    catch (const std::length_error&)
    {
    }
    return false;
}

/// Allocates and constructs an object. Exceptions of its constructor that do not report short memory pass through.
/// @return the object; null when memory was short, for the object or in its constructor
template <typename Object, typename... Arguments>
std::unique_ptr<Object> MakeInMemory(Arguments&&... arguments)
{
    std::unique_ptr<Object> object;
    RunsInMemory([&] { object = std::make_unique<Object>(std::forward<Arguments>(arguments)...); });
    return object;
}
