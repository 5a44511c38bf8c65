// The layout of point strings: numbers in, text out.
#pragma once

#include <afx.h>

#include "points/PointTextInternal.h"
#include "points/QuonPointMarker.h"

#include <cstddef>

namespace QuonPointDetails
{

/// The most characters that a number takes.
inline constexpr std::size_t kMaxNumberLength = 11;

/// The number that `text` begins with, as `_wtol` reads it (saturating, negative ones wrapping to 32 bits); 0 when
/// there is none or `text` is null.
unsigned long ReadLeadingNumber(const wchar_t* text);

/// Writes `number` as the signed 32-bit number that "%ld" prints: from 2^31 on it is negative. No terminating zero.
/// @return the end of what was written, at most kMaxNumberLength characters behind `out`
wchar_t* WriteNumber(wchar_t* out, unsigned long number);

/// Appends to a string, which grows geometrically. The string may not be used otherwise until the writer's life ends;
/// when memory runs out (an exception of the framework) it holds what was written before.
class PointTextWriter
{
public:
    /// `expectedLength` characters are likely to be written; room for them is made at once.
    explicit PointTextWriter(CString& text, int expectedLength = 0);
    ~PointTextWriter();
    PointTextWriter(const PointTextWriter&) = delete;
    PointTextWriter& operator=(const PointTextWriter&) = delete;

    /// Starts a new item: a comma, unless the text is empty, and the number.
    void WriteItem(unsigned long number);

    /// Ends the item as a range.
    void WriteRangeEnd(unsigned long number);

    /// Writes the item of first, ..., last: a number when they are the same.
    void WriteRange(PointRange range);

    /// Stores the text of the last number, zero-terminated, in `buffer`, which has room for kMaxNumberLength characters
    /// more; without a number the buffer stays as it is.
    void CopyLastNumber(wchar_t* buffer) const;

private:
    void Reserve();
    void Write(unsigned long number);
    wchar_t* WriteNear(wchar_t* out, unsigned long number);

    CString& m_text;
    wchar_t* m_buffer = nullptr;  // null until something is written, and after a failed growth
    int m_length;
    int m_expectedLength;
    int m_capacity = 0;
    unsigned long m_lastNumber = 0;
    // All but the last four digits of the number before, which the next one mostly has too.
    wchar_t m_leading[8] = {};
    unsigned long m_leadingNumber = 0;
    int m_leadingLength = 0;
    bool m_hasWritten = false;
};

/// Trims white space at the right; unlike the string's own function it does not read the whole text for that.
void TrimRight(CString& text);

/// Writes the points of a set: ascending, each once, runs of two and more as ranges.
void WriteSortedPoints(const QuonPointMarker& points, PointTextWriter& writer);

/// Writes points in the order they are added, ascending and descending runs of two and more as ranges.
/// The numbers wrap at 32 bits: 0 continues an ascending run that has reached 4294967295.
class UnsortedPointLayout
{
public:
    explicit UnsortedPointLayout(PointTextWriter& writer) : m_writer(writer) {}

    void Add(unsigned long point);

    /// Adds first, ..., last, which descend when first > last.
    void AddRange(PointRange range);

    /// Closes the run that is still open.
    void Finish();

private:
    enum class Run
    {
        None,
        Ascending,
        Descending,
    };

    PointTextWriter& m_writer;
    unsigned long m_previous = 0;
    Run m_run = Run::None;
    bool m_isEmpty = true;
};

}  // namespace QuonPointDetails
