/// @file
/// A point string that is built from point numbers and written in the order in which they were added.
#pragma once

#include <afxtempl.h>

#include "points/QuonPointString.h"

#if defined(_MSC_VER)
#pragma warning(push)
#pragma warning(disable : 4251)  // the member is private: no client touches it
#endif

/// Collects point numbers in order, duplicates included, and appends them to the text, runs as ranges:
/// 1, 2, 3, 10, 9, 8, 8, 4 is "1-3,10-8,8,4".
///
/// Call AddPoint any number of times, then UpdateText, then read the text or walk it. UpdateText appends what was added
/// since the last one: the text accumulates until Clear. Assign and SetText replace the text and leave the list alone.
/// When the list gets no memory for a node, that is the list's own exception.
class QUON_API QuonUnsortedPointString : public QuonPointString
{
public:
    /// An empty list and an empty text.
    QuonUnsortedPointString();
    QuonUnsortedPointString(const QuonUnsortedPointString&) = delete;
    QuonUnsortedPointString& operator=(const QuonUnsortedPointString&) = delete;
    ~QuonUnsortedPointString() override;

    // The first overload's slot is the one for text. Microsoft's rule puts overloaded virtual functions into the table
    // in reverse order of declaration, at the place of the first one; everybody else keeps the order of declaration.
#if defined(_MSC_VER)
    /// Appends `point`.
    virtual void AddPoint(unsigned long point);
    /// Appends the number that `text` begins with, as `_wtol` reads it: "5-7" appends 5. Text without a number, and
    /// null, append 0.
    virtual void AddPoint(const wchar_t* text);
#else
    /// Appends the number that `text` begins with, as `_wtol` reads it: "5-7" appends 5. Text without a number, and
    /// null, append 0.
    virtual void AddPoint(const wchar_t* text);
    /// Appends `point`.
    virtual void AddPoint(unsigned long point);
#endif

    /// Trims the text at the right, appends the listed points to it and empties the list. The new points are not merged
    /// into the ranges that stand there: "1,2" and then 3 is "1-2,3". Numbers from 2^31 up are printed as negative
    /// ones.
    virtual void UpdateText();

    /// Empties the list and the text.
    virtual void Clear();

private:
    CList<unsigned long, unsigned long&> m_points;
};

#if defined(_MSC_VER)
#pragma warning(pop)
#endif
