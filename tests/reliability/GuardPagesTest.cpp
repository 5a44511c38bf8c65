// That the guard pages of a thorough run notice what they are there for.
#include <afx.h>

#include "helpers/GuardPages.h"

#include <gtest/gtest.h>

#include "points/QuonPointMarker.h"
#include "helpers/ChildProcess.h"

namespace
{

constexpr int kBlocksTogether = 100;

class Environment
{
public:
    Environment() { ::SetEnvironmentVariableW(L"QUON_GUARD_PAGES", L"1"); }
    ~Environment()
    {
        if (m_length == 0)
        {
            ::SetEnvironmentVariableW(L"QUON_GUARD_PAGES", nullptr);
        }
    }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

private:
    DWORD m_length = ::GetEnvironmentVariableW(L"QUON_GUARD_PAGES", nullptr, 0);
};

quon_test::ChildResult RunGuarded(const wchar_t* test)
{
    const Environment environment;
    // A crash is to end the program, with any compiler, and not to be told as a failed test.
    return quon_test::RunChild(L"\"" + quon_test::OwnProgram() +
                               L"\" --gtest_also_run_disabled_tests --gtest_catch_exceptions=0 --gtest_filter=" + test);
}

// Run by the tests below, in a program of their own.
TEST(GuardPagesChild, DISABLED_StaysInside)
{
    for (int i = 0; i < kBlocksTogether; ++i)
    {
        QuonPointMarker marker;
        marker.MarkPoint(1);
        marker.SetBit(1);
    }
    EXPECT_GE(quon_test::GuardedBlocks(), static_cast<unsigned>(kBlocksTogether));
}

// No check of the raw bits' indexes is promised.
TEST(GuardPagesChild, DISABLED_StepsFarPastTheEnd)
{
    QuonPointMarker marker;
    marker.MarkPoint(1);
    marker.SetBit(8ull * 4096);
}

TEST(GuardPagesChild, DISABLED_StepsOneBytePastTheEnd)
{
    QuonPointMarker marker;
    marker.Resize(8 * 33);
    // Not the lowest bit: what lies behind the block has that one set.
    marker.SetBit(8 * 33 + 1);
}

TEST(GuardPages, LetAnHonestProgramPass)
{
    const quon_test::ChildResult result = RunGuarded(L"GuardPagesChild.DISABLED_StaysInside");
    EXPECT_TRUE(result.ended);
    EXPECT_EQ(result.code, 0u);
}

TEST(GuardPages, EndAProgramThatStepsOverThem)
{
    const struct
    {
        const wchar_t* test;
        DWORD code;
    } rows[] = {{L"GuardPagesChild.DISABLED_StepsFarPastTheEnd", EXCEPTION_ACCESS_VIOLATION},
                // Within the last sixteen bytes: seen when the block is freed.
                {L"GuardPagesChild.DISABLED_StepsOneBytePastTheEnd", quon_test::kStepDetected}};
    for (const auto& row : rows)
    {
        SCOPED_TRACE(testing::PrintToString(row.test));
        const quon_test::ChildResult result = RunGuarded(row.test);
        EXPECT_TRUE(result.ended);
        EXPECT_EQ(result.code, row.code);
    }
}

}  // namespace
