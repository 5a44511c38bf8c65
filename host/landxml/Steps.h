// The steps of a long piece of work, told to whoever watches.
#pragma once

#include <afx.h>

#include "host/Stop.h"
#include "support/Progress.h"

namespace quonhost
{

/// Tells the library's progress facade how far the work has come, and stops the work when the user wants it.
class Steps
{
public:
    explicit Steps(size_t total) { ProgressBegin(0, static_cast<unsigned int>(total)); }

    /// One step is done. @throws CommandError when the user wants to stop
    void Advance()
    {
        // The bar moves every so many steps: drawing costs more than a step.
        constexpr unsigned int kStride = 512;
        if (++m_done % kStride == 0)
        {
            ProgressSetPosition(m_done);
            StopIfAsked();
        }
    }

    /// All steps are done. @throws CommandError when the user wants to stop
    void Finish() const
    {
        ProgressSetPosition(m_done);
        StopIfAsked();
    }

    static void StopIfAsked() { quonhost::StopIfAsked(); }

private:
    unsigned int m_done = 0;
};

}  // namespace quonhost
