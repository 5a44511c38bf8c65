#include "host/ProgressBar.h"

#include <afx.h>

#include "support/Progress.h"

#include <io.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <string>

namespace quonhost
{
namespace
{

// The command numbers of the library's callback that the bar answers.
constexpr int kSetPosition = 1;
constexpr int kPoll = 2;
constexpr int kBegin = 3;

constexpr unsigned int kWidth = 40;

std::atomic<bool> stopAsked = false;
unsigned int total = 0;
bool isDrawing = false;
bool hasDrawn = false;  // since the bar began

BOOL WINAPI OnConsoleEvent(DWORD event)
{
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT)
    {
        return FALSE;
    }
    stopAsked = true;
    return TRUE;
}

void Draw(unsigned int position)
{
    unsigned int filled = kWidth;
    if (total > 0)
    {
        filled = static_cast<unsigned int>(static_cast<unsigned long long>(std::min(position, total)) * kWidth / total);
    }
    const std::string line = "\r[" + std::string(filled, '#') + std::string(kWidth - filled, ' ') + "] " +
                             std::to_string(position) + " of " + std::to_string(total);
    std::fwrite(line.data(), 1, line.size(), stderr);
    hasDrawn = true;
}

// Work in several parts has a bar for each, on a line of its own.
void Begin(unsigned int newTotal)
{
    total = newTotal;
    if (hasDrawn)
    {
        std::fputs("\n", stderr);
        hasDrawn = false;
    }
}

int OnProgress(int command, unsigned int a, LPARAM)
{
    switch (command)
    {
        case kPoll:
            return stopAsked ? 1 : 0;
        case kBegin:
            Begin(a);
            break;
        case kSetPosition:
            if (isDrawing)
            {
                Draw(a);
            }
            break;
        default:
            break;
    }
    return 0;
}

}  // namespace

bool IsProgressVisible()
{
    return ::_isatty(::_fileno(stderr)) != 0 && ::_isatty(::_fileno(stdout)) == 0;
}

ProgressBar::ProgressBar(bool draw)
{
    stopAsked = false;
    total = 0;
    isDrawing = draw;
    hasDrawn = false;
    ::SetConsoleCtrlHandler(&OnConsoleEvent, TRUE);
    SetProgressCallback(&OnProgress);
}

ProgressBar::~ProgressBar()
{
    EnableProgress(false);
    ::SetConsoleCtrlHandler(&OnConsoleEvent, FALSE);
    if (isDrawing)
    {
        std::fputs("\n", stderr);
    }
}

}  // namespace quonhost
