// The framework throws pointers: what a test says about that.
#pragma once

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

}  // namespace quon_test
