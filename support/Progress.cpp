#include "support/Progress.h"

namespace
{

// What the host's callback understands. The commands from 4 to 6, 9 and 10 have no meaning here.
enum ProgressCommand
{
    kSetPosition = 1,
    kPoll = 2,
    kBegin = 3,
    kSubBegin = 7,
    kSubSetPosition = 8,
};

// Times of the last calls, in the milliseconds of GetTickCount. Nothing in the library reads them; volatile, so that
// they are there for a debugger all the same.
struct TickStamps
{
    volatile DWORD update = 0;
    volatile DWORD poll = 0;
};

struct ProgressState
{
    QuonProgressCallback callback = nullptr;
    bool enabled = false;
    unsigned int position = 0;
    unsigned int subPosition = 0;
    TickStamps mainStamps;
    TickStamps subStamps;
};

ProgressState g_progress;

// Reporting can be on without a callback (SetProgressCallback(nullptr)): such a call goes nowhere.
int Send(int command, unsigned int a, LPARAM b)
{
    return g_progress.callback != nullptr ? g_progress.callback(command, a, b) : 0;
}

void SendIfEnabled(int command, unsigned int a, LPARAM b)
{
    if (g_progress.enabled)
    {
        Send(command, a, b);
    }
}

void Begin(int command, unsigned int a, LPARAM b, unsigned int& position, TickStamps& stamps)
{
    if (!g_progress.enabled)
    {
        return;
    }
    position = 0;
    Send(command, a, b);
    const DWORD now = ::GetTickCount();
    stamps.update = now;
    stamps.poll = now;
}

void SetPosition(int command, unsigned int newPosition, unsigned int& position, TickStamps& stamps)
{
    if (!g_progress.enabled)
    {
        return;
    }
    position = newPosition;
    Send(command, newPosition, 0);
    stamps.update = ::GetTickCount();
}

// Polls whether or not reporting is on: hiding the bars must not take the user's way to stop.
bool Poll(TickStamps& stamps)
{
    const int result = Send(kPoll, 0, 0);
    stamps.poll = ::GetTickCount();
    return result != 0;
}

}  // namespace

void SetProgressCallback(QuonProgressCallback callback)
{
    g_progress.callback = callback;
    g_progress.enabled = true;
}

bool EnableProgress(bool on)
{
    if (g_progress.callback != nullptr)
    {
        g_progress.enabled = on;
    }
    return on;
}

bool IsProgressEnabled()
{
    return g_progress.enabled;
}

void ProgressBegin(LPARAM b, unsigned int a)
{
    Begin(kBegin, a, b, g_progress.position, g_progress.mainStamps);
}

void ProgressSetPosition(UINT position)
{
    SetPosition(kSetPosition, position, g_progress.position, g_progress.mainStamps);
}

bool ProgressPoll()
{
    return Poll(g_progress.mainStamps);
}

void ProgressCommand4()
{
    SendIfEnabled(4, 0, 0);
}

void ProgressCommand5(LPARAM b)
{
    SendIfEnabled(5, g_progress.position, b);
}

void ProgressCommand6(LPARAM b)
{
    SendIfEnabled(6, 0, b);
}

void SubProgressBegin(LPARAM b, unsigned int a)
{
    Begin(kSubBegin, a, b, g_progress.subPosition, g_progress.subStamps);
}

void SubProgressSetPosition(UINT position)
{
    SetPosition(kSubSetPosition, position, g_progress.subPosition, g_progress.subStamps);
}

bool SubProgressPoll()
{
    return Poll(g_progress.subStamps);
}

bool SubProgressRefresh()
{
    if (g_progress.enabled)
    {
        Send(kSubSetPosition, g_progress.subPosition, 0);
        g_progress.subStamps.update = ::GetTickCount();
    }
    const int result = Send(kPoll, 0, 0);
    Send(kSubSetPosition, g_progress.subPosition, 0);
    const DWORD now = ::GetTickCount();
    g_progress.subStamps.update = now;
    g_progress.subStamps.poll = now;
    return result != 0;
}

void ProgressCommand9(LPARAM b)
{
    SendIfEnabled(9, 0, b);
}

void ProgressCommand10(LPARAM b)
{
    SendIfEnabled(10, 0, b);
}

QuonProgressDisabler::QuonProgressDisabler() : m_savedEnabled(g_progress.enabled)
{
    if (g_progress.callback != nullptr)
    {
        g_progress.enabled = false;
    }
}

QuonProgressDisabler::~QuonProgressDisabler()
{
    if (g_progress.callback != nullptr)
    {
        g_progress.enabled = m_savedEnabled;
    }
}
