#include "points/PointFormatInternal.h"

#include "points/PointBitsInternal.h"
#include "points/PointMarkerInternal.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace QuonPointDetails
{
namespace
{

// The two digits of every number below 100.
struct DigitPairs
{
    wchar_t pairs[200];

    constexpr DigitPairs() : pairs()
    {
        for (int number = 0; number < 100; ++number)
        {
            pairs[2 * number] = static_cast<wchar_t>(L'0' + number / 10);
            pairs[2 * number + 1] = static_cast<wchar_t>(L'0' + number % 10);
        }
    }
};

constexpr DigitPairs kDigitPairs;

constexpr int CountDigits(std::uint32_t number)
{
    int digits = 1;
    for (; number >= 10000; number /= 10000)
    {
        digits += 4;
    }
    return digits + (number >= 10) + (number >= 100) + (number >= 1000);
}

// Two numbers, each with a separator.
constexpr int kMaxWrite = 2 * (1 + static_cast<int>(kMaxNumberLength));

constexpr int kFirstCapacity = 128;

}  // namespace

unsigned long ReadLeadingNumber(const wchar_t* text)
{
    return text != nullptr ? static_cast<unsigned long>(_wtol(text)) : 0;
}

wchar_t* WriteNumber(wchar_t* out, unsigned long number)
{
    std::uint32_t rest = number;
    if (rest > INT32_MAX)
    {
        *out++ = L'-';
        rest = 0u - rest;
    }
    wchar_t* const end = out + CountDigits(rest);
    wchar_t* at = end;
    for (; rest >= 100; rest /= 100)
    {
        at -= 2;
        std::memcpy(at, kDigitPairs.pairs + 2 * (rest % 100), 2 * sizeof(wchar_t));
    }
    if (rest >= 10)
    {
        std::memcpy(at - 2, kDigitPairs.pairs + 2 * rest, 2 * sizeof(wchar_t));
    }
    else
    {
        at[-1] = static_cast<wchar_t>(L'0' + rest);
    }
    return end;
}

PointTextWriter::PointTextWriter(CString& text, int expectedLength)
    : m_text(text), m_length(text.GetLength()), m_expectedLength(std::min(expectedLength, INT_MAX - kMaxWrite))
{
}

PointTextWriter::~PointTextWriter()
{
    if (m_buffer != nullptr)
    {
        m_text.ReleaseBufferSetLength(m_length);
    }
}

void PointTextWriter::WriteItem(unsigned long number)
{
    Reserve();
    if (m_length != 0)
    {
        m_buffer[m_length++] = L',';
    }
    Write(number);
}

void PointTextWriter::WriteRangeEnd(unsigned long number)
{
    Reserve();
    m_buffer[m_length++] = L'-';
    Write(number);
}

void PointTextWriter::WriteRange(PointRange range)
{
    Reserve();
    if (m_length != 0)
    {
        m_buffer[m_length++] = L',';
    }
    wchar_t* const firstEnd = WriteNear(m_buffer + m_length, range.first);
    // The end is written in any case, and counts when there is one: a branch would be a guess for each item.
    *firstEnd = L'-';
    wchar_t* const lastEnd = WriteNear(firstEnd + 1, range.last);
    const std::ptrdiff_t isRange = range.first != range.last;
    m_length = static_cast<int>(firstEnd - m_buffer + (lastEnd - firstEnd) * isRange);
    m_lastNumber = range.last;
    m_hasWritten = true;
}

void PointTextWriter::Reserve()
{
    if (m_capacity - m_length >= kMaxWrite)
    {
        return;
    }
    if (m_buffer != nullptr)
    {
        m_buffer = nullptr;
        m_text.ReleaseBufferSetLength(m_length);
    }
    if (m_length > INT_MAX - kMaxWrite)
    {
        AfxThrowMemoryException();
    }
    // Room that an earlier writer left is used up first, so that many small additions cost no more than one large one.
    const int needed = m_length + kMaxWrite;
    const int doubled = m_length <= INT_MAX / 2 ? 2 * m_length : needed;
    m_buffer = m_text.GetBuffer(m_text.GetAllocLength() >= needed
                                    ? needed
                                    : std::max({kFirstCapacity, m_expectedLength + kMaxWrite, needed, doubled}));
    m_capacity = m_text.GetAllocLength();
}

void PointTextWriter::Write(unsigned long number)
{
    m_length = static_cast<int>(WriteNear(m_buffer + m_length, number) - m_buffer);
    m_lastNumber = number;
    m_hasWritten = true;
}

wchar_t* PointTextWriter::WriteNear(wchar_t* out, unsigned long number)
{
    constexpr unsigned long kLow = 10000;
    if (number < kLow || number > INT32_MAX)
    {
        return WriteNumber(out, number);
    }
    const unsigned long leading = number / kLow;
    if (leading != m_leadingNumber)
    {
        m_leadingNumber = leading;
        m_leadingLength = static_cast<int>(WriteNumber(m_leading, leading) - m_leading);
    }
    std::memcpy(out, m_leading, sizeof(m_leading));
    out += m_leadingLength;
    const unsigned long low = number - leading * kLow;
    std::memcpy(out, kDigitPairs.pairs + 2 * (low / 100), 2 * sizeof(wchar_t));
    std::memcpy(out + 2, kDigitPairs.pairs + 2 * (low % 100), 2 * sizeof(wchar_t));
    return out + 4;
}

void PointTextWriter::CopyLastNumber(wchar_t* buffer) const
{
    if (m_hasWritten)
    {
        *WriteNumber(buffer, m_lastNumber) = L'\0';
    }
}

void TrimRight(CString& text)
{
    const int length = text.GetLength();
    if (length != 0 && IsWhiteSpace(text[length - 1]))
    {
        text.TrimRight();
    }
}

void WriteSortedPoints(const QuonPointMarker& points, PointTextWriter& writer)
{
    const unsigned char* const bits = QuonPointMarkerAccess::Bytes(points);
    const std::uint64_t count = QuonPointMarkerAccess::CountBits(points);
    const unsigned long first = points.GetFirstNumber();
    ForEachRun(bits, count, [&writer, first](std::uint64_t from, std::uint64_t to) {
        writer.WriteRange({first + static_cast<unsigned long>(from), first + static_cast<unsigned long>(to - 1)});
    });
}

void UnsortedPointLayout::Add(unsigned long point)
{
    const unsigned long step = point - m_previous;
    const unsigned long wanted = m_run == Run::Ascending ? 1 : ULONG_MAX;
    if (m_isEmpty)
    {
        m_writer.WriteItem(point);
        m_isEmpty = false;
    }
    else if (m_run != Run::None)
    {
        if (step != wanted)
        {
            m_writer.WriteRangeEnd(m_previous);
            m_writer.WriteItem(point);
            m_run = Run::None;
        }
    }
    else if (step == 1)
    {
        m_run = Run::Ascending;
    }
    else if (step == ULONG_MAX)
    {
        m_run = Run::Descending;
    }
    else
    {
        m_writer.WriteItem(point);
    }
    m_previous = point;
}

void UnsortedPointLayout::AddRange(PointRange range)
{
    // The third point of a run is in an open run whatever stood before: from then on only the last one matters.
    const unsigned long step = range.first <= range.last ? 1 : ULONG_MAX;
    unsigned long point = range.first;
    Add(point);
    for (int added = 1; added < 3 && point != range.last; ++added)
    {
        point += step;
        Add(point);
    }
    m_previous = range.last;
}

void UnsortedPointLayout::Finish()
{
    if (m_run != Run::None)
    {
        m_writer.WriteRangeEnd(m_previous);
        m_run = Run::None;
    }
}

}  // namespace QuonPointDetails
