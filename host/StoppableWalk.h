// A walk that the user can stop.
#pragma once

#include <afx.h>

#include "host/Console.h"
#include "support/Progress.h"

namespace quonhost
{

/// A file tree for the library's operations on matches: tells the progress facade how many files are done, and ends
/// before the next file when the user wants to stop. So an operation that is stopped leaves every file whole.
template <typename Tree>
class StoppableWalk : public Tree
{
public:
    bool FindNext() override
    {
        ProgressSetPosition(++m_done);
        if (ProgressPoll())
        {
            m_isStopped = true;
            Tree::Close();
            return false;
        }
        return Tree::FindNext();
    }

    /// @throws CommandError when the user has ended the walk
    void ThrowIfStopped() const
    {
        if (m_isStopped)
        {
            throw CommandError(std::string("stopped"));
        }
    }

private:
    unsigned int m_done = 0;
    bool m_isStopped = false;
};

}  // namespace quonhost
