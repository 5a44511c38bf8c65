/// @file
/// A process-wide pool of small elements of equal size.
///
/// Memory comes from the system in regions of 16 pages and is handed out page by page; a page is carved into elements
/// of one size, which sit on a free list. The list's head belongs to the caller: one head, null at first, for each
/// element size and each user of its own.
///
/// ```cpp
/// void* freeNodes = nullptr;
/// std::size_t size = sizeof(Node);
/// if (freeNodes == nullptr && PoolAddPage(&freeNodes, &size) == nullptr) { throw std::bad_alloc(); }
/// void* node = PoolAllocate(&freeNodes);
/// ...
/// PoolFree(&freeNodes, node);
/// ```
/// A page all of whose elements are free leaves its list and returns to the pool at once, and a region of 16 free pages
/// returns to the system, unless it is the last one. support/QuonPoolAllocator.h wraps all this for one type.
///
/// Elements are aligned to 8 bytes when their size is a multiple of 8. Nothing is locked: one thread at a time, for all
/// heads together.
#pragma once

#include <afx.h>

#include "base/Export.h"

#include <cstddef>

/// Takes a page from the pool, carves it into elements and puts them in front of the list, in address order.
/// @param listHead the list that the elements join
/// @param elementSize bytes of one element; read, not written. Less than 16 counts as 16. When it is larger than the
///                    page less 24 bytes, the page is taken for good but holds no element and the list stays.
/// @return the page's address; null when the system has no memory, the list then stays.
/// Throws what operator new throws when there is no memory for the record of a new region: the framework's
/// CMemoryException* or std::bad_alloc.
QUON_API void* PoolAddPage(void** listHead, std::size_t* elementSize);

/// Takes the first element off the list, which must not be empty.
/// @return the element, whose contents are undefined.
QUON_API void* PoolAllocate(void** listHead);

/// Gives an element back, in front of the list that it came from. When it is the last one of its page that was in use,
/// all elements of that page leave the list.
QUON_API void PoolFree(void** listHead, void* element);

/// Writes `value` into `count` bytes from `start` on; nothing for a count of 0. The arguments stay as they are.
/// @return `start`
QUON_API BYTE* FillBytes(BYTE*& start, std::size_t& count, const BYTE& value);
