/// @file
/// An owner for the node arrays that the functions of "xml/XmlNodes.h" return.
#pragma once

#include <afx.h>

#include "xml/XmlNodes.h"

#include <memory>

/// Releases the entries of an array and deletes it.
struct QuonNodeArrayDeleter
{
    /// Does nothing for a null array.
    void operator()(QuonNodeArray* nodes) const
    {
        ReleaseNodeArray(nodes);
        delete nodes;
    }
};

/// Owns a node array and the references of its entries. Like the array it belongs to the thread of the document.
/// @code
/// const QuonNodeArrayOwner points(FindNodesByName(nodes, L"CgPoint", true));
/// @endcode
using QuonNodeArrayOwner = std::unique_ptr<QuonNodeArray, QuonNodeArrayDeleter>;
