#include "afxplex_.h"

#include <cstdint>
#include <cstdlib>

void* CPlex::data()
{
    return this + 1;
}

CPlex* PASCAL CPlex::Create(CPlex*& head, UINT_PTR nMax, UINT_PTR cbElement)
{
    ENSURE(nMax > 0 && cbElement > 0);
    if (nMax > (SIZE_MAX - sizeof(CPlex)) / cbElement)
    {
        AfxThrowMemoryException();
    }
    auto* const plex = static_cast<CPlex*>(std::malloc(sizeof(CPlex) + nMax * cbElement));
    if (plex == nullptr)
    {
        AfxThrowMemoryException();
    }
    plex->pNext = head;
    head = plex;
    return plex;
}

void CPlex::FreeDataChain()
{
    CPlex* block = this;
    while (block != nullptr)
    {
        CPlex* const next = block->pNext;
        std::free(block);
        block = next;
    }
}
