/// @file
/// Progress of long operations: short functions that forward to the one callback that the host has installed.
///
/// The host draws two bars, the main one and a second, inner one, and knows whether the user wants to stop. There is
/// one state per process, without a lock: use it from the thread that runs the long operation, on which the callback is
/// called as well.
///
/// While reporting is switched off, nothing reaches the callback but the polls: `ProgressPoll`, `SubProgressPoll` and
/// the second half of `SubProgressRefresh` call it all the same, so that the user can stop an operation whose bars are
/// hidden. As long as no callback is installed, no function calls anything and the polls return false.
///
/// The functions with two arguments take them in the order b, a, the reverse of the callback's.
#pragma once

#include <afx.h>

#include "base/Export.h"

/// What the host installs: gets the number of a command and the command's two arguments. What it does for each command
/// is the host's affair. Only the result for command 2, the poll, has a meaning: anything but 0 asks to stop.
///
/// | Command | a | b | Sent by |
/// |---|---|---|---|
/// | 1 | position | 0 | `ProgressSetPosition` |
/// | 2 | 0 | 0 | `ProgressPoll`, `SubProgressPoll`, `SubProgressRefresh` |
/// | 3 | the caller's | the caller's | `ProgressBegin` |
/// | 4 | 0 | 0 | `ProgressCommand4` |
/// | 5 | last position of the main bar | the caller's | `ProgressCommand5` |
/// | 6 | 0 | the caller's | `ProgressCommand6` |
/// | 7 | the caller's | the caller's | `SubProgressBegin` |
/// | 8 | position of the inner bar | 0 | `SubProgressSetPosition`, `SubProgressRefresh` |
/// | 9 | 0 | the caller's | `ProgressCommand9` |
/// | 10 | 0 | the caller's | `ProgressCommand10` |
using QuonProgressCallback = int (*)(int command, unsigned int a, LPARAM b);

/// Installs the host's callback and switches reporting on.
/// @param callback must stay callable until another one is installed. Null takes the callback away and also switches
///        reporting on, as far as `IsProgressEnabled` tells.
QUON_API void SetProgressCallback(QuonProgressCallback callback);

/// Switches reporting on or off; does nothing as long as no callback is installed.
/// @return @p on, even when nothing was switched.
QUON_API bool EnableProgress(bool on);

/// @return whether reporting is on; false before the first `SetProgressCallback`.
QUON_API bool IsProgressEnabled();

/// If reporting is on: starts the main bar at position 0 and sends command 3.
/// @param b handed on as b; commonly a text.
/// @param a handed on as a; commonly the position at which the bar is full.
QUON_API void ProgressBegin(LPARAM b, unsigned int a);

/// If reporting is on: remembers the main bar's position and sends command 1 with it.
QUON_API void ProgressSetPosition(UINT position);

/// Sends command 2, also while reporting is off.
/// @return true when the host asks to stop.
QUON_API bool ProgressPoll();

/// If reporting is on: sends command 4.
QUON_API void ProgressCommand4();

/// If reporting is on: sends command 5 with the main bar's last position and @p b.
QUON_API void ProgressCommand5(LPARAM b);

/// If reporting is on: sends command 6 with @p b.
QUON_API void ProgressCommand6(LPARAM b);

/// If reporting is on: starts the inner bar at position 0 and sends command 7.
/// @param b handed on as b.
/// @param a handed on as a.
QUON_API void SubProgressBegin(LPARAM b, unsigned int a);

/// If reporting is on: remembers the inner bar's position and sends command 8 with it.
QUON_API void SubProgressSetPosition(UINT position);

/// Sends command 2, also while reporting is off.
/// @return true when the host asks to stop.
QUON_API bool SubProgressPoll();

/// Shows the inner bar again around a poll: if reporting is on, sends command 8 with the inner bar's last position;
/// then, also while reporting is off, sends command 2 and command 8 once more.
/// @return true when the host asks to stop.
QUON_API bool SubProgressRefresh();

/// If reporting is on: sends command 9 with @p b.
QUON_API void ProgressCommand9(LPARAM b);

/// If reporting is on: sends command 10 with @p b.
QUON_API void ProgressCommand10(LPARAM b);

/// Switches reporting off for as long as it lives and then puts back what it found. Disablers nest.
/// Without an installed callback it changes nothing, neither at the start nor at the end of its life.
class QUON_API QuonProgressDisabler
{
public:
    QuonProgressDisabler();
    virtual ~QuonProgressDisabler();

    QuonProgressDisabler(const QuonProgressDisabler&) = delete;
    QuonProgressDisabler& operator=(const QuonProgressDisabler&) = delete;

private:
    bool m_savedEnabled;
};
