#include "base/LengthInternal.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace
{

bool IsTooLong(std::size_t length)
{
    try
    {
        static_cast<void>(ToStringLength(length));
    }
    catch (CMemoryException* exception)
    {
        exception->Delete();
        return true;
    }
    return false;
}

TEST(StringLength, IsTheLengthItself)
{
    for (const int length : {0, 1, 263, 65536, INT_MAX / 2, INT_MAX - 1, INT_MAX})
    {
        EXPECT_EQ(ToStringLength(static_cast<std::size_t>(length)), length);
    }
    const wchar_t text[] = L"abc";
    EXPECT_EQ(ToStringLength(text, text), 0);
    EXPECT_EQ(ToStringLength(text, text + 3), 3);
}

// Cut to 32 bits, each of these would be a small or a negative length.
TEST(StringLength, BeyondThirtyOneBitsIsLackOfMemory)
{
    constexpr std::size_t kTwoTo31 = std::size_t{1} << 31;
    constexpr std::size_t kTwoTo32 = std::size_t{1} << 32;
    for (const std::size_t length :
         {kTwoTo31, kTwoTo31 + 5, kTwoTo32 - 1, kTwoTo32, kTwoTo32 + 1000, SIZE_MAX / 2, SIZE_MAX})
    {
        EXPECT_TRUE(IsTooLong(length)) << length;
    }
}

}  // namespace
