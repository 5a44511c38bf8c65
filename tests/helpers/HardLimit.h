// Ends the test program when something takes too long.
#pragma once

#include <afx.h>

#include <cstdio>

namespace quon_test
{

/// Only what hangs takes so long, on any machine and beside any load. Below the time that CTest gives a program.
constexpr DWORD kHangLimit = 300000;

/// For tests of what could wait for ever: kills the program, with a line that says why, when the object lives longer
/// than its limit.
class HardLimit
{
public:
    explicit HardLimit(DWORD milliseconds = kHangLimit)
        : m_milliseconds(milliseconds),
          m_done(::CreateEventW(nullptr, TRUE, FALSE, nullptr)),
          m_thread(::CreateThread(nullptr, 0, &Watch, this, 0, nullptr))
    {
    }

    ~HardLimit()
    {
        ::SetEvent(m_done);
        ::WaitForSingleObject(m_thread, INFINITE);
        ::CloseHandle(m_thread);
        ::CloseHandle(m_done);
    }

    HardLimit(const HardLimit&) = delete;
    HardLimit& operator=(const HardLimit&) = delete;

private:
    static DWORD WINAPI Watch(void* self)
    {
        const auto* limit = static_cast<const HardLimit*>(self);
        if (::WaitForSingleObject(limit->m_done, limit->m_milliseconds) != WAIT_OBJECT_0)
        {
            std::printf("still running after %lu ms: killed\n", limit->m_milliseconds);
            std::fflush(stdout);
            ::TerminateProcess(::GetCurrentProcess(), 98);
        }
        return 0;
    }

    DWORD m_milliseconds;
    HANDLE m_done;
    HANDLE m_thread;
};

}  // namespace quon_test
