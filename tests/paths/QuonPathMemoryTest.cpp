// Paths when there is no memory: the framework's strings are refused theirs. Only the stand-in for the framework takes
// it where the tests can refuse it.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <type_traits>

#include "paths/PathTestSupport.h"
#include "paths/QuonPath.h"
#include "helpers/ImportPatch.h"
#include "helpers/ModuleNames.h"

using quon_test::ImportPatch;
using quon_test::MakeForward;
using quon_test::SeparatorOf;
using quon_test::Text;

namespace
{

using Allocate = void*(__cdecl*)(size_t);
using Reallocate = void*(__cdecl*)(void*, size_t);

// The first request is refused and no other: throwing takes memory too, and the run-time does not survive without.
int g_requests = 0;

void* __cdecl RefuseFirst(size_t size)
{
    return ++g_requests == 1 ? nullptr : ::malloc(size);
}

void* __cdecl RefuseFirstGrowth(void* memory, size_t size)
{
    return ++g_requests == 1 ? nullptr : ::realloc(memory, size);
}

/// While it lives, the next string that asks for memory gets none.
class MemoryExhaustion
{
public:
    MemoryExhaustion() { g_requests = 0; }

private:
    ImportPatch<Allocate> m_malloc{quon_test::kFrameworkModule, "malloc", &RefuseFirst};
    ImportPatch<Reallocate> m_realloc{quon_test::kFrameworkModule, "realloc", &RefuseFirstGrowth};
};

/// Runs `work` without memory and tells whether it threw what the framework throws then.
template <typename Work>
bool Throws(Work work)
{
    try
    {
        const MemoryExhaustion exhaustion;
        work();
    }
    catch (CMemoryException* exception)
    {
        exception->Delete();
        return true;
    }
    return false;
}

// How many characters the text has room for. The text is the first thing in a path.
int RoomOf(const QuonPath& path)
{
    static_assert(std::is_standard_layout_v<QuonPath>, "else the first member has another address");
    return reinterpret_cast<const CString&>(path).GetAllocLength();
}

TEST(QuonPathMemory, CuttingTheEndInPlaceReservesRoomForAWindowsPath)
{
    QuonPath path(L"a\\b\\", 0);
    ASSERT_LT(RoomOf(path), 260);
    path.RemoveTrailingSeparators();
    EXPECT_EQ(Text(path), L"a\\b");
    EXPECT_GE(RoomOf(path), 260);
    path = QuonPath(L"a\\b", 0);
    ASSERT_LT(RoomOf(path), 260);
    path.RemoveLastComponent();
    EXPECT_EQ(Text(path), L"a\\");
    EXPECT_GE(RoomOf(path), 260);
}

TEST(QuonPathWithoutMemory, NormalizeLeavesTheTextAndThrowsNothing)
{
    QuonPath path;
    MakeForward(path, L"a//b");
    const QuonPath sharer(path);
    EXPECT_FALSE(Throws([&] { path.Normalize(); }));
    EXPECT_GT(g_requests, 0);
    EXPECT_EQ(Text(path), L"a//b");
    EXPECT_EQ(SeparatorOf(path), L"/");
    path.Normalize();
    EXPECT_EQ(Text(path), L"a/b");
}

TEST(QuonPathWithoutMemory, JoiningThrowsAndLeavesTheText)
{
    QuonPath path(L"a//b", 0);
    const QuonPath sharer(path);
    EXPECT_TRUE(Throws([&] { path.Append(L"c"); }));
    EXPECT_EQ(Text(path), L"a//b");
    EXPECT_TRUE(Throws([&] { path + L"c"; }));
    EXPECT_TRUE(Throws([&] { path.SetDirectory(L"x"); }));
    EXPECT_TRUE(Throws([&] { path.SetDrive(L"x"); }));
    EXPECT_TRUE(Throws([&] { path.RemoveFirstComponent(); }));
    EXPECT_TRUE(Throws([&] { path.RemoveLastComponent(); }));
    EXPECT_EQ(Text(path), L"a//b");
}

TEST(QuonPathWithoutMemory, CopyingNeedsNone)
{
    const QuonPath path(L"a//b", 0);
    EXPECT_FALSE(Throws([&] {
        const QuonPath copy(path);
        QuonPath assigned;
        assigned = path;
        EXPECT_EQ(static_cast<const wchar_t*>(copy), static_cast<const wchar_t*>(assigned));
    }));
}

}  // namespace
