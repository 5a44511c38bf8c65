/// @file
/// A growable set of point numbers, one bit each.
#pragma once

#include <afx.h>

#include "base/Export.h"

struct QuonPointMarkerAccess;

/// A set of point numbers, held as one bit for every number from the first number (1) up.
///
/// Representable are the numbers from the first number up to 4294966271; all others (0 and those from 2^32 - 1024 up)
/// are ignored by marking and testing alike. Memory is proportional to the highest number marked: one bit for each, and
/// up to 1024 bits of slack. Nothing is reported when memory runs out: the single mark is dropped.
///
/// An object is used by one thread at a time; it takes no lock. It is not copyable.
class QUON_API QuonPointMarker
{
public:
    /// An empty set that holds no memory; its first number is 1.
    QuonPointMarker();
    QuonPointMarker(const QuonPointMarker&) = delete;
    QuonPointMarker& operator=(const QuonPointMarker&) = delete;
    virtual ~QuonPointMarker();

    /// Puts `point` into the set. Beyond the numbers held, the set grows to 1024 bits past the needed one.
    /// A number that is not representable, or for which there is no memory, is ignored.
    void MarkPoint(unsigned long point);

    /// Takes `point` out of the set. Grows the set exactly as MarkPoint does, although only a bit is cleared.
    void UnmarkPoint(unsigned long point);

    /// @return TRUE when `point` is in the set; FALSE also for numbers that are not held or not representable.
    BOOL IsPointMarked(unsigned long point) const;

    /// Sets the raw bit `index`, counted from 0 and not shifted by the first number. The set does not grow and the
    /// index is not checked: it must be below the number of bits held.
    void SetBit(unsigned long long index);

    /// Clears the raw bit `index`; the index must be below the number of bits held.
    void ClearBit(unsigned long long index);

    /// @return TRUE when the raw bit `index` is set; the index must be below the number of bits held.
    BOOL TestBit(unsigned long long index) const;

    /// Makes the set hold `bits` bits. New bytes are zero; a last byte that stays keeps all of its bits, also those
    /// past `bits`, which are back when the set grows over them again. With 0 bits the memory is freed.
    /// @return FALSE, with nothing changed, when the first number + `bits` exceeds 4294967295 or memory runs out.
    BOOL Resize(unsigned long long bits);

    /// Empties the set and frees its memory.
    void Clear();

    /// The point number that bit 0 stands for.
    unsigned long GetFirstNumber() const;

    /// One past the highest point number held: the first number + the number of bits.
    unsigned long GetEndNumber() const;

private:
    friend struct QuonPointMarkerAccess;

    unsigned char* m_bits;          // from realloc; null while empty
    unsigned long long m_bitCount;  // bits, not bytes
    unsigned long m_firstNumber;
};
