// A text of more characters than 32 bits count, in little memory.
#pragma once

#include <afx.h>

#include <algorithm>
#include <cstddef>
#include <stdexcept>

namespace quon_test
{

/// A zero-terminated text of `length` times "a": one block of memory, seen again and again at consecutive addresses.
class HugeText
{
public:
    explicit HugeText(std::size_t length)
        : m_section(::CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, kBlock, nullptr)),
          m_views((length + 1) * sizeof(wchar_t) / kBlock + 1)
    {
        m_text = static_cast<wchar_t*>(::VirtualAlloc(nullptr, m_views * kBlock, MEM_RESERVE, PAGE_NOACCESS));
        ::VirtualFree(m_text, 0, MEM_RELEASE);
        for (std::size_t view = 0; view < m_views; ++view)
        {
            // The last one is a copy of its own, for the zero.
            const DWORD access = view + 1 == m_views ? FILE_MAP_COPY : FILE_MAP_WRITE;
            if (::MapViewOfFileEx(m_section, access, 0, 0, 0, At(view)) == nullptr)
            {
                throw std::runtime_error("a huge text cannot be mapped");
            }
        }
        std::fill_n(m_text, kBlock / sizeof(wchar_t), L'a');
        m_text[length] = L'\0';
    }
    ~HugeText()
    {
        for (std::size_t view = 0; view < m_views; ++view)
        {
            ::UnmapViewOfFile(At(view));
        }
        ::CloseHandle(m_section);
    }
    HugeText(const HugeText&) = delete;
    HugeText& operator=(const HugeText&) = delete;

    const wchar_t* Get() const { return m_text; }

private:
    static constexpr DWORD kBlock = 64 * 1024 * 1024;

    void* At(std::size_t view) const { return reinterpret_cast<char*>(m_text) + view * kBlock; }

    HANDLE m_section;
    std::size_t m_views;
    wchar_t* m_text = nullptr;
};

}  // namespace quon_test
