// The steps of a long piece of work, reported to the library's progress facade.
#pragma once

#include <afx.h>

#include "host/Stop.h"
#include "support/Progress.h"

namespace quonhost
{

/// Reports how far a piece of work is, and ends it when the user asks for that.
class Steps
{
public:
    explicit Steps(size_t total) { ProgressBegin(0, static_cast<unsigned int>(total)); }

    /// One step is done. @throws CommandError when the user wants to stop
    void Advance()
    {
        // Drawing costs more than a step.
        constexpr unsigned int kStride = 512;
        if (++m_done % kStride == 0)
        {
            Report();
        }
    }

    /// So many steps are done in all. @throws CommandError when the user wants to stop
    void MoveTo(size_t done)
    {
        constexpr unsigned int kStride = 1 << 16;
        const bool isFar = done - m_done >= kStride;
        if (isFar)
        {
            m_done = static_cast<unsigned int>(done);
            Report();
        }
        m_last = static_cast<unsigned int>(done);
    }

    /// All steps are done. @throws CommandError when the user wants to stop
    void Finish()
    {
        m_done = m_last > m_done ? m_last : m_done;
        Report();
    }

    static void StopIfAsked() { quonhost::StopIfAsked(); }

private:
    void Report() const
    {
        ProgressSetPosition(m_done);
        StopIfAsked();
    }

    unsigned int m_done = 0;  // as reported
    unsigned int m_last = 0;
};

}  // namespace quonhost
