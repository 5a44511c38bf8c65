// The rules about the text of a path with texts longer than a string may be. No text is that long here: the length is
// refused before a character is read.
#include "paths/PathStringInternal.h"

#include <gtest/gtest.h>

#include <cstddef>

using namespace QuonPathText;

namespace
{

constexpr std::size_t kTooLong[] = {std::size_t{1} << 31, (std::size_t{1} << 31) + 5, (std::size_t{1} << 32) + 1000};

template <typename Work>
bool ThrowsMemoryException(const Work& work)
{
    try
    {
        work();
    }
    catch (CMemoryException* exception)
    {
        exception->Delete();
        return true;
    }
    return false;
}

TEST(PathLength, BeyondAStringsLengthIsLackOfMemoryAndChangesNothing)
{
    for (const std::size_t length : kTooLong)
    {
        SCOPED_TRACE(length);
        const std::wstring_view text(L"a", length);
        CString path(L"C:\\a");
        EXPECT_TRUE(ThrowsMemoryException([&] { MakeString(text); }));
        EXPECT_TRUE(ThrowsMemoryException([&] { SetText(path, text); }));
        EXPECT_TRUE(ThrowsMemoryException([&] { JoinString(path, L'\\', text); }));
        EXPECT_EQ(path, L"C:\\a");
    }
}

}  // namespace
