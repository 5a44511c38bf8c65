#pragma once

/// @file afxtls_.h
/// A list that its elements are linked into by a member of their own.

#include "afxver_.h"
#include <type_traits>

/// A singly linked list of objects that hold their own link, so that linking needs no memory. It owns nothing and takes
/// no lock. `TYPE` is the pointer type of the objects.
template <class TYPE>
class CTypedSimpleList
{
public:
    using Link = TYPE std::remove_pointer_t<TYPE>::*;

    /// @param pNext the member of an object that holds the pointer to its successor
    explicit CTypedSimpleList(Link pNext) : m_pHead(nullptr), m_pNext(pNext) {}

    BOOL IsEmpty() const { return m_pHead == nullptr; }
    TYPE GetHead() const { return m_pHead; }
    operator TYPE() const { return m_pHead; }
    TYPE GetNext(TYPE p) const { return p->*m_pNext; }
    void AddHead(TYPE p)
    {
        p->*m_pNext = m_pHead;
        m_pHead = p;
    }
    /// @return FALSE when the object is not in the list
    BOOL Remove(TYPE p)
    {
        for (TYPE* pLink = &m_pHead; *pLink != nullptr; pLink = &((*pLink)->*m_pNext))
        {
            if (*pLink == p)
            {
                *pLink = p->*m_pNext;
                p->*m_pNext = nullptr;
                return TRUE;
            }
        }
        return FALSE;
    }
    void RemoveAll() { m_pHead = nullptr; }

private:
    TYPE m_pHead;
    Link m_pNext;
};
