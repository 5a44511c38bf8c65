// Ranges of bits in a byte buffer, by whole words. Bit i is bit (i mod 8) of byte i/8, least significant bit first; on
// this platform that makes it bit (i mod 64) of the 64-bit word i/64 as well.
#pragma once

#include <cstdint>

namespace QuonPointDetails
{

// Every range is [from, to) with from <= to; bytes that hold no bit of the range are not touched.

void SetBits(unsigned char* bytes, std::uint64_t from, std::uint64_t to);
void ClearBits(unsigned char* bytes, std::uint64_t from, std::uint64_t to);

/// The first set (clear) bit of the range, or `to` when there is none.
std::uint64_t FindSetBit(const unsigned char* bytes, std::uint64_t from, std::uint64_t to);
std::uint64_t FindClearBit(const unsigned char* bytes, std::uint64_t from, std::uint64_t to);

/// One past the last set (clear) bit of the range, or `from` when there is none.
std::uint64_t FindSetBitEnd(const unsigned char* bytes, std::uint64_t from, std::uint64_t to);
std::uint64_t FindClearBitEnd(const unsigned char* bytes, std::uint64_t from, std::uint64_t to);

}  // namespace QuonPointDetails
