/// @file
/// A point string that is built from point numbers and written in ascending order.
#pragma once

#include <afx.h>

#include "points/QuonPointMarker.h"
#include "points/QuonPointString.h"

#include <memory>

#if defined(_MSC_VER)
#pragma warning(push)
#pragma warning(disable : 4251)  // the member is private: no client touches it
#endif

/// Collects point numbers as a set and writes them in ascending order without duplicates, runs as ranges:
/// {1, 2, 3, 5, 7, 8} is "1-3,5,7-8".
///
/// Call AddPoint any number of times, then UpdateText, then read the text or walk it. The set stays until Clear or
/// RemovePoint; Assign and SetText replace the text and leave the set alone. Numbers that QuonPointMarker cannot hold
/// (0 and those from 4294966272 up) are ignored, and so is a number for which there is no memory.
class QUON_API QuonSortedPointString : public QuonPointString
{
public:
    /// An empty set and an empty text.
    QuonSortedPointString();
    QuonSortedPointString(const QuonSortedPointString&) = delete;
    QuonSortedPointString& operator=(const QuonSortedPointString&) = delete;
    ~QuonSortedPointString() override;

    // The first overload's slot is the one for text. Microsoft's rule puts overloaded virtual functions into the table
    // in reverse order of declaration, at the place of the first one; everybody else keeps the order of declaration.
#if defined(_MSC_VER)
    /// Adds `point`.
    virtual void AddPoint(unsigned long point);
    /// Adds the number that `text` begins with, as `_wtol` reads it: "5-7" adds 5. Text without a number, and null,
    /// give 0, which is ignored.
    virtual void AddPoint(const wchar_t* text);
#else
    /// Adds the number that `text` begins with, as `_wtol` reads it: "5-7" adds 5. Text without a number, and null,
    /// give 0, which is ignored.
    virtual void AddPoint(const wchar_t* text);
    /// Adds `point`.
    virtual void AddPoint(unsigned long point);
#endif

    /// Rewrites the text from the whole set. Numbers from 2^31 up are printed as negative ones.
    virtual void UpdateText();

    /// Empties the set and the text.
    virtual void Clear();

    /// Takes `point` out of the set; the text follows with the next UpdateText. A number beyond those held grows the
    /// set as adding it would.
    virtual void RemovePoint(unsigned long point);

private:
    std::unique_ptr<QuonPointMarker> m_points;
};

#if defined(_MSC_VER)
#pragma warning(pop)
#endif
