/// @file
/// The block pool for elements of one type.
#pragma once

#include <afx.h>

#include "support/BlockPool.h"

#include <cassert>
#include <cstddef>
#include <new>
#include <utility>

/// Hands out elements of type `T` from the process's block pool, through a free list of its own.
///
/// The newest page is kept while the allocator lives (one element of it is held back for that): taking and giving back
/// at a page's border would otherwise carve and return a page each time. The element that came back last may be kept
/// too, for the next request: taking one element and giving it back, again and again, does not reach the pool. All
/// elements must have come back when the allocator ends; a debug build asserts that.
///
/// ```cpp
/// QuonPoolAllocator<Node> nodes;
/// Node* node = nodes.Construct(1, L"first");
/// nodes.Destroy(node);
/// ```
/// For one thread at a time, together with all other users of the block pool.
template <typename T>
class QuonPoolAllocator
{
    static constexpr std::size_t kLinksSize = 2 * sizeof(void*);
    static constexpr std::size_t kRoundedSize = (sizeof(T) + sizeof(void*) - 1) / sizeof(void*) * sizeof(void*);
    static constexpr std::size_t kSmallestPage = 4096;
    static constexpr std::size_t kPageHeader = 24;

public:
    /// Bytes that one element takes in its page.
    static constexpr std::size_t kElementSize = kRoundedSize < kLinksSize ? kLinksSize : kRoundedSize;

    static_assert(alignof(T) <= sizeof(void*), "elements of the block pool are aligned like pointers, not more");
    static_assert(kElementSize <= (kSmallestPage - kPageHeader) / 2, "the type is too large for elements of a page");

    QuonPoolAllocator() = default;
    QuonPoolAllocator(const QuonPoolAllocator&) = delete;
    QuonPoolAllocator& operator=(const QuonPoolAllocator&) = delete;

    ~QuonPoolAllocator()
    {
        assert(m_count == 0 && "elements are still in use");
        if (m_spare != nullptr)
        {
            PoolFree(&m_freeElements, m_spare);
        }
        if (m_anchor != nullptr)
        {
            PoolFree(&m_freeElements, m_anchor);
        }
    }

    /// @return memory for one `T`, not constructed. Throws std::bad_alloc when the system has no page, and
    /// what PoolAddPage() throws.
    T* Allocate()
    {
        void* element = std::exchange(m_spare, nullptr);
        if (element == nullptr)
        {
            if (m_freeElements == nullptr)
            {
                AddPage();
            }
            element = PoolAllocate(&m_freeElements);
        }
        ++m_count;
        return static_cast<T*>(element);
    }

    /// Gives back what Allocate() of this allocator returned; nothing for null. The `T` must have been destroyed.
    void Free(T* element) noexcept
    {
        if (element == nullptr)
        {
            return;
        }
        --m_count;
        if (m_spare == nullptr)
        {
            m_spare = element;
            return;
        }
        PoolFree(&m_freeElements, element);
    }

    /// @return a new `T`, made from `arguments`. What its constructor throws passes through; nothing is lost then.
    template <typename... Arguments>
    T* Construct(Arguments&&... arguments)
    {
        T* const element = Allocate();
        try
        {
            return ::new (static_cast<void*>(element)) T(std::forward<Arguments>(arguments)...);
        }
        catch (...)
        {
            Free(element);
            throw;
        }
    }

    /// Destroys and gives back what Construct() of this allocator returned; nothing for null.
    void Destroy(T* element) noexcept
    {
        if (element != nullptr)
        {
            element->~T();
            Free(element);
        }
    }

    /// @return the number of elements that are handed out.
    std::size_t GetCount() const noexcept { return m_count; }

private:
    void AddPage()
    {
        std::size_t size = kElementSize;
        if (PoolAddPage(&m_freeElements, &size) == nullptr)
        {
            throw std::bad_alloc();
        }
        void* const previousAnchor = std::exchange(m_anchor, PoolAllocate(&m_freeElements));
        if (previousAnchor != nullptr)
        {
            PoolFree(&m_freeElements, previousAnchor);
        }
    }

    void* m_freeElements = nullptr;
    void* m_anchor = nullptr;
    void* m_spare = nullptr;
    std::size_t m_count = 0;
};
