#include "points/PointBitsInternal.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace QuonPointDetails
{
namespace
{

constexpr std::uint64_t kWordBytes = sizeof(std::uint64_t);
constexpr std::uint64_t kWordBits = 8 * kWordBytes;

// The bits of a byte from bit `from` on, and those before bit `to`.
constexpr unsigned char MaskFrom(std::uint64_t from)
{
    return static_cast<unsigned char>(0xFFu << from);
}
constexpr unsigned char MaskBefore(std::uint64_t to)
{
    return static_cast<unsigned char>(~(0xFFu << to));
}

template <bool set>
void Put(unsigned char& byte, unsigned char mask)
{
    byte = static_cast<unsigned char>(set ? byte | mask : byte & ~mask);
}

template <bool set>
void PutWord(unsigned char* bytes, std::uint64_t index, std::uint64_t mask)
{
    std::uint64_t word;
    std::memcpy(&word, bytes + kWordBytes * index, sizeof(word));
    word = set ? word | mask : word & ~mask;
    std::memcpy(bytes + kWordBytes * index, &word, sizeof(word));
}

template <bool set>
void Fill(unsigned char* bytes, std::uint64_t firstByte, std::uint64_t endByte)
{
    if (firstByte < endByte)
    {
        std::memset(bytes + firstByte, set ? 0xFF : 0, static_cast<std::size_t>(endByte - firstByte));
    }
}

// Word by word, which ranges of some dozen points fill one of.
template <bool set>
void FillWords(unsigned char* bytes, std::uint64_t from, std::uint64_t to)
{
    const std::uint64_t first = from / kWordBits;
    const std::uint64_t last = (to - 1) / kWordBits;
    const std::uint64_t maskFrom = ~std::uint64_t{0} << from % kWordBits;
    const std::uint64_t maskTo = ~std::uint64_t{0} >> (kWordBits - 1 - (to - 1) % kWordBits);
    if (first == last)
    {
        PutWord<set>(bytes, first, maskFrom & maskTo);
        return;
    }
    PutWord<set>(bytes, first, maskFrom);
    Fill<set>(bytes, kWordBytes * (first + 1), kWordBytes * last);
    PutWord<set>(bytes, last, maskTo);
}

template <bool set>
void FillBytes(unsigned char* bytes, std::uint64_t from, std::uint64_t to)
{
    const std::uint64_t firstByte = from / 8;
    const std::uint64_t endByte = to / 8;
    if (firstByte == endByte)
    {
        Put<set>(bytes[firstByte], MaskFrom(from % 8) & MaskBefore(to % 8));
        return;
    }
    Put<set>(bytes[firstByte], MaskFrom(from % 8));
    Fill<set>(bytes, firstByte + 1, endByte);
    if (to % 8 != 0)
    {
        Put<set>(bytes[endByte], MaskBefore(to % 8));
    }
}

template <bool set>
void FillBits(unsigned char* bytes, std::uint64_t size, std::uint64_t from, std::uint64_t to)
{
    if (from >= to)
    {
        return;
    }
    if ((to + kWordBits - 1) / kWordBits * kWordBytes <= size)
    {
        FillWords<set>(bytes, from, to);
    }
    else
    {
        FillBytes<set>(bytes, from, to);
    }
}

// With wanted == false the bits are flipped, so that a clear bit is found as a set one.
template <bool wanted>
std::uint64_t Load(const unsigned char* bytes, std::uint64_t count)
{
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, static_cast<std::size_t>(count));
    return wanted ? word : ~word;
}

// Moves over blocks of four words that hold no wanted bit.
template <bool wanted>
std::uint64_t SkipBlocks(const unsigned char* bytes, std::uint64_t byte, std::uint64_t endByte)
{
    for (; byte + 4 * kWordBytes <= endByte; byte += 4 * kWordBytes)
    {
        const unsigned char* const block = bytes + byte;
        if ((Load<wanted>(block, kWordBytes) | Load<wanted>(block + kWordBytes, kWordBytes) |
             Load<wanted>(block + 2 * kWordBytes, kWordBytes) | Load<wanted>(block + 3 * kWordBytes, kWordBytes)) != 0)
        {
            break;
        }
    }
    return byte;
}

template <bool wanted>
std::uint64_t FindForward(const unsigned char* bytes, std::uint64_t from, std::uint64_t to)
{
    if (from >= to)
    {
        return to;
    }
    const std::uint64_t endByte = (to + 7) / 8;
    std::uint64_t byte = from / 8;
    std::uint64_t ignored = ~std::uint64_t{0} << from % 8;
    // A found bit past `to` stands for none: it lies in the last byte, or in the flipped zeros of a short load.
    for (; byte + kWordBytes <= endByte; byte += kWordBytes, ignored = ~std::uint64_t{0})
    {
        if (const std::uint64_t word = Load<wanted>(bytes + byte, kWordBytes) & ignored; word != 0)
        {
            return std::min(8 * byte + static_cast<std::uint64_t>(std::countr_zero(word)), to);
        }
        byte = SkipBlocks<wanted>(bytes, byte + kWordBytes, endByte) - kWordBytes;
    }
    if (byte < endByte)
    {
        const std::uint64_t word = Load<wanted>(bytes + byte, endByte - byte) & ignored;
        return std::min(8 * byte + static_cast<std::uint64_t>(std::countr_zero(word)), to);
    }
    return to;
}

template <bool wanted>
std::uint64_t FindBackward(const unsigned char* bytes, std::uint64_t from, std::uint64_t to)
{
    if (from >= to)
    {
        return from;
    }
    const std::uint64_t firstByte = from / 8;
    std::uint64_t endByte = (to + 7) / 8;
    std::uint64_t ignored = ~std::uint64_t{0} >> (8 * endByte - to);
    for (; endByte >= firstByte + kWordBytes; endByte -= kWordBytes, ignored = ~std::uint64_t{0})
    {
        if (const std::uint64_t word = Load<wanted>(bytes + endByte - kWordBytes, kWordBytes) & ignored; word != 0)
        {
            return std::max(8 * endByte - static_cast<std::uint64_t>(std::countl_zero(word)), from);
        }
    }
    const std::uint64_t rest = endByte - firstByte;
    if (rest == 0)
    {
        return from;
    }
    // The short load fills the word from below: its bits past the loaded ones are none of the range.
    ignored >>= kWordBits - 8 * rest;
    const std::uint64_t word = Load<wanted>(bytes + firstByte, rest) & ignored;
    return std::max(8 * firstByte + static_cast<std::uint64_t>(std::bit_width(word)), from);
}

}  // namespace

void SetBits(unsigned char* bytes, std::uint64_t size, std::uint64_t from, std::uint64_t to)
{
    FillBits<true>(bytes, size, from, to);
}

void ClearBits(unsigned char* bytes, std::uint64_t size, std::uint64_t from, std::uint64_t to)
{
    FillBits<false>(bytes, size, from, to);
}

std::uint64_t FindSetBit(const unsigned char* bytes, std::uint64_t from, std::uint64_t to)
{
    return FindForward<true>(bytes, from, to);
}

std::uint64_t FindClearBit(const unsigned char* bytes, std::uint64_t from, std::uint64_t to)
{
    return FindForward<false>(bytes, from, to);
}

std::uint64_t FindSetBitEnd(const unsigned char* bytes, std::uint64_t from, std::uint64_t to)
{
    return FindBackward<true>(bytes, from, to);
}

std::uint64_t FindClearBitEnd(const unsigned char* bytes, std::uint64_t from, std::uint64_t to)
{
    return FindBackward<false>(bytes, from, to);
}

}  // namespace QuonPointDetails
