// Starts another program and waits for its end, within a limit.
#pragma once

#include <afx.h>

#include <string>

namespace quon_test
{

/// What became of a program.
struct ChildResult
{
    bool ended;  ///< False when it could not be started, or had to be killed.
    DWORD code;  ///< Its exit code.
};

/// Runs a command line with this process's standard handles. A program that does not end within the limit is killed.
inline ChildResult RunChild(std::wstring commandLine, DWORD limitMilliseconds = 120000)
{
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process = {};
    if (::CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                         &process) == FALSE)
    {
        return {false, ::GetLastError()};
    }
    ChildResult result = {::WaitForSingleObject(process.hProcess, limitMilliseconds) == WAIT_OBJECT_0, 0};
    if (!result.ended)
    {
        ::TerminateProcess(process.hProcess, 99);
        ::WaitForSingleObject(process.hProcess, limitMilliseconds);
    }
    ::GetExitCodeProcess(process.hProcess, &result.code);
    ::CloseHandle(process.hThread);
    ::CloseHandle(process.hProcess);
    return result;
}

/// @return the path of this program's file
inline std::wstring OwnProgram()
{
    wchar_t path[MAX_PATH] = {};
    ::GetModuleFileNameW(nullptr, path, MAX_PATH);
    return path;
}

}  // namespace quon_test
