// Ranges of bits in a byte buffer, by whole words. Bit i is bit (i mod 8) of byte i/8, least significant bit first; on
// this platform that makes it bit (i mod 64) of the 64-bit word i/64 as well.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace QuonPointDetails
{

// Every range is [from, to) with from <= to; the value of all other bits stays.

/// The buffer has `size` bytes. Where it holds the whole words of the range, words are read and written.
void SetBits(unsigned char* bytes, std::uint64_t size, std::uint64_t from, std::uint64_t to);
void ClearBits(unsigned char* bytes, std::uint64_t size, std::uint64_t from, std::uint64_t to);

/// The first set (clear) bit of the range, or `to` when there is none.
std::uint64_t FindSetBit(const unsigned char* bytes, std::uint64_t from, std::uint64_t to);
std::uint64_t FindClearBit(const unsigned char* bytes, std::uint64_t from, std::uint64_t to);

/// One past the last set (clear) bit of the range, or `from` when there is none.
std::uint64_t FindSetBitEnd(const unsigned char* bytes, std::uint64_t from, std::uint64_t to);
std::uint64_t FindClearBitEnd(const unsigned char* bytes, std::uint64_t from, std::uint64_t to);

/// Calls `visit(from, to)` for each run of set bits among the first `count` bits, in ascending order.
template <typename Visit>
void ForEachRun(const unsigned char* bytes, std::uint64_t count, const Visit& visit)
{
    constexpr std::uint64_t kWordBits = 64;
    constexpr std::uint64_t kAllBits = ~std::uint64_t{0};
    std::uint64_t from = FindSetBit(bytes, 0, count);
    while (from < count)
    {
        // Runs that end within a word come out of a register; only the end of one that goes on is searched for.
        const std::uint64_t base = from / kWordBits * kWordBits;
        if (base + kWordBits <= count)
        {
            std::uint64_t word;
            std::memcpy(&word, bytes + base / 8, sizeof(word));
            word &= kAllBits << from % kWordBits;
            while (word != 0 && (word | (word - 1)) != kAllBits)
            {
                const int first = std::countr_zero(word);
                const int end = std::countr_zero(~(word | (word - 1)));
                visit(base + static_cast<unsigned>(first), base + static_cast<unsigned>(end));
                word &= kAllBits << end;
            }
            if (word == 0)
            {
                from = FindSetBit(bytes, base + kWordBits, count);
                continue;
            }
            from = base + static_cast<unsigned>(std::countr_zero(word));
        }
        const std::uint64_t to = FindClearBit(bytes, from, count);
        visit(from, to);
        from = FindSetBit(bytes, to, count);
    }
}

}  // namespace QuonPointDetails
