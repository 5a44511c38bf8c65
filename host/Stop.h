// How the user ends a command that is at work.
#pragma once

#include <afx.h>

#include "host/Console.h"
#include "support/Progress.h"

namespace quonhost
{

/// What a stopped command reports.
inline constexpr std::wstring_view kStopped = L"stopped";

/// Ends the command when the user has asked for that with Ctrl+C. @throws CommandError with `kStopped`
inline void StopIfAsked()
{
    if (ProgressPoll())
    {
        throw CommandError(kStopped);
    }
}

}  // namespace quonhost
