#pragma once

#include "afx.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>

/// The rules that the arrays share, working on the fields of one array. Elements [0, size) are alive.
template <class TYPE>
struct ArrayStorage
{
    TYPE*& data;
    INT_PTR& size;
    INT_PTR& maxSize;
    INT_PTR& growBy;

    void SetSize(INT_PTR newSize, INT_PTR newGrowBy)
    {
        ENSURE(newSize >= 0);
        if (newGrowBy >= 0)
        {
            growBy = newGrowBy;
        }
        if (newSize == 0)
        {
            Reallocate(0);
            return;
        }
        if (newSize > maxSize)
        {
            Reallocate(CapacityFor(newSize));
        }
        if (newSize > size)
        {
            std::uninitialized_value_construct(data + size, data + newSize);
        }
        else
        {
            std::destroy(data + newSize, data + size);
        }
        size = newSize;
    }

    void FreeExtra()
    {
        if (size != maxSize)
        {
            Reallocate(size);
        }
    }

    /// Makes room for `count` elements at the index, which the caller assigns.
    void OpenGap(INT_PTR index, INT_PTR count)
    {
        ENSURE(index >= 0 && count > 0);
        ENSURE(std::max(index, size) <= INTPTR_MAX - count);
        if (index >= size)
        {
            SetSize(index + count, -1);
            return;
        }
        const INT_PTR oldSize = size;
        SetSize(oldSize + count, -1);
        std::move_backward(data + index, data + oldSize, data + size);
    }

    void RemoveAt(INT_PTR index, INT_PTR count)
    {
        ENSURE(index >= 0 && count >= 0 && count <= size && index <= size - count);
        if (count == 0)
        {
            return;
        }
        std::move(data + index + count, data + size, data + index);
        std::destroy(data + size - count, data + size);
        size -= count;
    }

private:
    INT_PTR CapacityFor(INT_PTR newSize) const
    {
        if (data == nullptr)
        {
            return newSize;
        }
        const INT_PTR step = growBy != 0 ? growBy : std::clamp<INT_PTR>(size / 8, 4, 1024);
        ENSURE(step <= INTPTR_MAX - maxSize);
        return std::max(newSize, maxSize + step);
    }

    // Moves the elements that fit to storage of exactly this capacity, none for 0.
    void Reallocate(INT_PTR capacity)
    {
        TYPE* newData = nullptr;
        if (capacity > 0)
        {
            newData = static_cast<size_t>(capacity) > SIZE_MAX / sizeof(TYPE)
                          ? nullptr
                          : static_cast<TYPE*>(std::malloc(static_cast<size_t>(capacity) * sizeof(TYPE)));
            if (newData == nullptr)
            {
                AfxThrowMemoryException();
            }
        }
        const INT_PTR kept = std::min(size, capacity);
        if (data != nullptr && newData != nullptr)
        {
            std::uninitialized_move(data, data + kept, newData);
        }
        std::destroy(data, data + size);
        std::free(data);
        data = newData;
        size = kept;
        maxSize = capacity;
    }
};
