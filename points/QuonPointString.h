/// @file
/// The text form in which sets of survey point numbers are named, such as "1-5, 9, 20-12".
#pragma once

#include <afx.h>

#include "base/Export.h"

namespace QuonPointString_details
{
struct Walk;
}

/// A list of point numbers and ranges as text, and a walk over the points that it names.
///
/// The text is a list of items separated by ",". White space around an item and empty items are skipped. An item is
/// - a number: digits;
/// - a range: number "-" number, with blanks allowed around the "-". First > last is a descending range: "20-12" stands
///   for 20, 19, ..., 12;
/// - a comparison: "<" and ">" in any number, then at most one "=", then a number, which may be missing. It is valid,
///   and whatever its number is, it stands for the single point number 0.
///
/// Anything else is invalid, and so is a number or range with a bound of 0. Numbers above 2147483647 read as
/// 2147483647. Duplicates and overlaps are kept: the walk hands points out as often as they are named. A walk stops
/// silently at the first invalid item.
///
/// ```cpp
/// unsigned long point = 0;
/// for (string.GetFirstPoint(&point); !string.IsDone(); string.GetNextPoint(&point)) { Use(point); }
/// ```
/// GetFirstRange and GetNextRange walk in the same way, range by range. No operation throws for bad text; memory
/// exhaustion is the framework's (or the standard library's) exception. An object is used by one thread at a time; it
/// takes no lock.
class QUON_API QuonPointString
{
public:
    /// An empty text.
    QuonPointString();

    /// Takes `text` as it is; null counts as empty.
    explicit QuonPointString(const wchar_t* text);

    /// Copies everything: the text, the label and the state of the walk.
    QuonPointString(const QuonPointString& other);

    /// Copies everything, as the copy constructor does; Assign takes the text alone.
    QuonPointString& operator=(const QuonPointString& other);

    virtual ~QuonPointString();

    /// Takes the text of `other`, empties the label and resets the walk. Assigning an object to itself does nothing.
    virtual void Assign(const QuonPointString& other);

    /// Takes the points that the text `points` names out of this text, and rewrites it: ascending and without
    /// duplicates when `sorted`, else in the order of the walk with the duplicates left in; runs of consecutive numbers
    /// become ranges in both. From an invalid item in this text on everything is lost. The label is emptied, the walk
    /// reset. When `points` holds an invalid item nothing at all happens; when it is empty or null the text is
    /// rewritten.
    ///
    /// Takes memory for one bit for each number up to the highest one, and time in proportion to the points that the
    /// items of both texts name, duplicates included: an item of 2^31 points costs 10 to 20 ms each time it is named.
    virtual void RemovePoints(const wchar_t* points, BOOL sorted);

    /// Rewrites the text with every point once: ascending when `sorted`, else in the order of first occurrence. Ranges,
    /// invalid items, label, walk and cost as with RemovePoints. The point 0 of a comparison is no duplicate of itself.
    virtual void RemoveDuplicates(BOOL sorted);

    /// Begins a walk and stores its first point in `*point`, which must not be null. For an empty or blank text nothing
    /// is stored. When IsDone() is TRUE afterwards, what was stored is no point.
    virtual void GetFirstPoint(unsigned long* point);

    /// Goes on to the next point of the walk, likewise.
    virtual void GetNextPoint(unsigned long* point);

    /// Begins a walk and stores the bounds of its first item, descending ones with *first > *last. The pointers must
    /// not be null. For an empty or blank text nothing is stored.
    virtual void GetFirstRange(unsigned long* first, unsigned long* last);

    /// Goes on to the next item of the walk, likewise.
    virtual void GetNextRange(unsigned long* first, unsigned long* last);

    /// @return TRUE when the walk has no further item or has stopped at an invalid one.
    virtual BOOL IsDone() const;

    /// Attaches a text of the caller's own, which has no meaning here; null empties it.
    virtual void SetLabel(const wchar_t* label);

    /// @return whether the label is not empty.
    virtual bool HasLabel() const;

    /// @return the label, which stays valid until it is changed; never null.
    virtual const wchar_t* GetLabel() const;

    /// Checks the whole text with a walk of its own, and leaves the object at the end of it. An empty text is valid.
    /// When the last walk has stopped at an invalid item, that answers the next call: it returns FALSE without looking.
    virtual BOOL IsValid();

    /// Counts the points with a walk of its own, and leaves the object at the end of it; an invalid item ends the
    /// count. Each item counts last - first + 1 in 32 bits, so the count is meant for ascending ranges: `5-1` counts
    /// `4294967293`.
    virtual unsigned long GetPointCount();

    /// The text as it was set or last written.
    const CString& GetText() const;

    /// Replaces the text (null counts as empty) and resets the walk; the label stays. The set or list of a derived
    /// class is not touched.
    void SetText(const wchar_t* text);

protected:
    /// As set by the caller or as last written.
    CString m_text;
    /// 1 once the text was set or rewritten; never read here.
    int m_changed;

private:
    // The steps of a walk. They are not members: every member of an exported class is exported.
    friend struct QuonPointString_details::Walk;

    CString m_workText;  // what the walk has not consumed, behind m_consumed characters that it has
    CString m_label;
    CString m_token;  // the last item that was not plain: if the walk stopped at an invalid one, that one
    unsigned long m_rangeFirst;
    unsigned long m_rangeLast;
    unsigned long m_cursor;
    int m_isDone;
    int m_isDescending;
    int m_hasError;
    unsigned long m_count;

protected:
    /// The number printed last.
    wchar_t m_format[128];

private:
    // How much of the work text is consumed already. The field stands last, where 64-bit builds have padding: all
    // others, and those of derived classes, are where they would be without it.
    unsigned long m_consumed;
};
