// What the tests of threads and messages share: an event, a journal, and where a virtual function stands.
#pragma once

#include <afx.h>

#include <cstddef>
#include <cstring>
#include <mutex>
#include <string>
#include <vector>

namespace quon_test
{

constexpr wchar_t kLibrary[] = L"QuonWin32Utils.dll";

/// Long enough for anything that is going to happen at all, on any machine and beside any load.
constexpr DWORD kPatience = 60000;

/// An event of its own, manual-reset unless told otherwise.
class Event
{
public:
    explicit Event(bool manualReset = true)
        : m_handle(::CreateEventW(nullptr, manualReset ? TRUE : FALSE, FALSE, nullptr))
    {
    }
    ~Event() { ::CloseHandle(m_handle); }
    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;

    HANDLE Handle() const { return m_handle; }
    void Set() const { ::SetEvent(m_handle); }
    void Reset() const { ::ResetEvent(m_handle); }
    bool IsSet() const { return ::WaitForSingleObject(m_handle, 0) == WAIT_OBJECT_0; }
    bool Wait() const { return ::WaitForSingleObject(m_handle, kPatience) == WAIT_OBJECT_0; }

private:
    HANDLE m_handle;
};

/// What happened, in order, on any thread.
class Journal
{
public:
    void Write(const std::string& line)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_lines.push_back(line);
    }

    std::vector<std::string> Lines() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_lines;
    }

private:
    mutable std::mutex m_mutex;
    std::vector<std::string> m_lines;
};

#if !defined(_MSC_VER)
/// The place of a virtual function in its class's table; a virtual destructor takes two places with this compiler.
template <typename Member>
std::size_t SlotOf(Member member)
{
    std::size_t offset = 0;
    std::memcpy(&offset, &member, sizeof(offset));
    return (offset - 1) / sizeof(void*);
}
#endif

/// The field at an offset of an object.
template <typename Field, typename Object>
Field FieldAt(const Object& object, std::size_t offset)
{
    Field field = {};
    std::memcpy(&field, reinterpret_cast<const unsigned char*>(&object) + offset, sizeof(field));
    return field;
}

}  // namespace quon_test
