#pragma once

/// @file afxplex_.h
/// The blocks from which the collections take their nodes.

#include "afx.h"

/// One block of equally large elements, in a chain of blocks. The collection that made the blocks owns the chain; an
/// element that it does not need any more waits in the collection's own free list until the whole chain is freed.
struct QUON_FRAMEWORK_API CPlex
{
    // Its alignment is that of the first element behind it.
    alignas(MEMORY_ALLOCATION_ALIGNMENT) CPlex* pNext;

    /// The first element, uninitialised.
    void* data();

    /// Allocates a block and puts it at the head of the chain.
    /// Throws the invalid-argument exception when a size is 0 and the memory exception when there is no memory.
    static CPlex* PASCAL Create(CPlex*& head, UINT_PTR nMax, UINT_PTR cbElement);

    /// Frees this block and all that follow; the elements must have been destroyed.
    void FreeDataChain();
};
