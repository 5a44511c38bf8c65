#include "support/Progress.h"

#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <type_traits>
#include <vector>

#include "helpers/ImportPatch.h"

namespace
{

using quon_test::ImportPatch;

static_assert(std::is_same_v<QuonProgressCallback, int (*)(int, unsigned int, LPARAM)>);
static_assert(sizeof(LPARAM) == sizeof(void*));
static_assert(std::has_virtual_destructor_v<QuonProgressDisabler>);
static_assert(sizeof(QuonProgressDisabler) == 2 * sizeof(void*), "the table of virtual operations and one flag");

// One call of the callback; command 0 stands for a reading of the tick count.
struct Call
{
    int command;
    unsigned int a;
    LPARAM b;

    bool operator==(const Call& other) const { return command == other.command && a == other.a && b == other.b; }
    friend std::ostream& operator<<(std::ostream& out, const Call& call)
    {
        return out << "(" << call.command << ", " << call.a << ", " << call.b << ")";
    }
};
using Calls = std::vector<Call>;
const Call kTick{0, 0, 0};

Calls g_calls;
int g_answer;

int RecordingCallback(int command, unsigned int a, LPARAM b)
{
    g_calls.push_back({command, a, b});
    return g_answer;
}

DWORD WINAPI RecordingTickCount()
{
    g_calls.push_back(kTick);
    return 0xFFFFFFF0U;
}

// The state is one per process: each test starts from an installed callback and reporting switched on.
class Progress : public testing::Test
{
protected:
    Progress() : m_ticks(L"QuonWin32Utils.dll", "GetTickCount", &RecordingTickCount)
    {
        SetProgressCallback(&RecordingCallback);
        ProgressSetPosition(0);
        SubProgressSetPosition(0);
        g_calls.clear();
        g_answer = 0;
    }

    static Calls Take()
    {
        Calls calls;
        calls.swap(g_calls);
        return calls;
    }

private:
    ImportPatch<decltype(&::GetTickCount)> m_ticks;
};

TEST_F(Progress, SwitchesOnWithTheCallbackAndOffByRequest)
{
    EXPECT_TRUE(IsProgressEnabled());
    EXPECT_FALSE(EnableProgress(false));
    EXPECT_FALSE(IsProgressEnabled());
    EXPECT_TRUE(EnableProgress(true));
    EXPECT_TRUE(IsProgressEnabled());
    EnableProgress(false);
    SetProgressCallback(&RecordingCallback);
    EXPECT_TRUE(IsProgressEnabled());
}

TEST_F(Progress, SendsCommandsWithTheirArguments)
{
    ProgressBegin(7, 100);
    EXPECT_EQ(Take(), (Calls{{3, 100, 7}, kTick}));
    ProgressSetPosition(42);
    EXPECT_EQ(Take(), (Calls{{1, 42, 0}, kTick}));
    EXPECT_FALSE(ProgressPoll());
    EXPECT_EQ(Take(), (Calls{{2, 0, 0}, kTick}));
    ProgressCommand4();
    EXPECT_EQ(Take(), (Calls{{4, 0, 0}}));
    ProgressCommand5(9);
    EXPECT_EQ(Take(), (Calls{{5, 42, 9}}));
    ProgressCommand6(-3);
    EXPECT_EQ(Take(), (Calls{{6, 0, -3}}));
    SubProgressBegin(8, 50);
    EXPECT_EQ(Take(), (Calls{{7, 50, 8}, kTick}));
    SubProgressSetPosition(17);
    EXPECT_EQ(Take(), (Calls{{8, 17, 0}, kTick}));
    EXPECT_FALSE(SubProgressPoll());
    EXPECT_EQ(Take(), (Calls{{2, 0, 0}, kTick}));
    EXPECT_FALSE(SubProgressRefresh());
    EXPECT_EQ(Take(), (Calls{{8, 17, 0}, kTick, {2, 0, 0}, {8, 17, 0}, kTick}));
    ProgressCommand9(5);
    EXPECT_EQ(Take(), (Calls{{9, 0, 5}}));
    ProgressCommand10(6);
    EXPECT_EQ(Take(), (Calls{{10, 0, 6}}));
}

TEST_F(Progress, KeepsAllBitsOfItsArguments)
{
    const auto pointer = reinterpret_cast<LPARAM>(&g_calls);
    ProgressBegin(pointer, 0xFFFFFFFFU);
    ProgressSetPosition(0xFFFFFFFFU);
    ProgressCommand5(pointer);
    SubProgressBegin(-1, 0x80000000U);
    EXPECT_EQ(Take(), (Calls{{3, 0xFFFFFFFFU, pointer},
                             kTick,
                             {1, 0xFFFFFFFFU, 0},
                             kTick,
                             {5, 0xFFFFFFFFU, pointer},
                             {7, 0x80000000U, -1},
                             kTick}));
}

TEST_F(Progress, BeginsAtZeroWithTwoBarsApart)
{
    ProgressSetPosition(5);
    SubProgressSetPosition(6);
    Take();
    ProgressBegin(0, 10);
    ProgressCommand5(0);
    SubProgressRefresh();
    EXPECT_EQ(Take(), (Calls{{3, 10, 0}, kTick, {5, 0, 0}, {8, 6, 0}, kTick, {2, 0, 0}, {8, 6, 0}, kTick}));
    ProgressSetPosition(5);
    Take();
    SubProgressBegin(0, 10);
    ProgressCommand5(0);
    SubProgressRefresh();
    EXPECT_EQ(Take(), (Calls{{7, 10, 0}, kTick, {5, 5, 0}, {8, 0, 0}, kTick, {2, 0, 0}, {8, 0, 0}, kTick}));
}

TEST_F(Progress, PollsTellWhetherToStop)
{
    for (const int answer : {0, 1, -1, 2, 0x100})
    {
        SCOPED_TRACE(answer);
        g_answer = answer;
        EXPECT_EQ(ProgressPoll(), answer != 0);
        EXPECT_EQ(SubProgressPoll(), answer != 0);
        EXPECT_EQ(SubProgressRefresh(), answer != 0);
    }
}

TEST_F(Progress, SendsNothingButPollsWhileOff)
{
    ProgressSetPosition(4);
    SubProgressSetPosition(6);
    EnableProgress(false);
    Take();
    ProgressBegin(1, 2);
    ProgressSetPosition(3);
    ProgressCommand4();
    ProgressCommand5(1);
    ProgressCommand6(1);
    SubProgressBegin(1, 2);
    SubProgressSetPosition(3);
    ProgressCommand9(1);
    ProgressCommand10(1);
    EXPECT_EQ(Take(), Calls{});
    g_answer = 1;
    EXPECT_TRUE(ProgressPoll());
    EXPECT_EQ(Take(), (Calls{{2, 0, 0}, kTick}));
    EXPECT_TRUE(SubProgressPoll());
    EXPECT_EQ(Take(), (Calls{{2, 0, 0}, kTick}));
    // The first half is off, the second is not.
    EXPECT_TRUE(SubProgressRefresh());
    EXPECT_EQ(Take(), (Calls{{2, 0, 0}, {8, 6, 0}, kTick}));
    // Positions did not move while reporting was off.
    EnableProgress(true);
    ProgressCommand5(0);
    EXPECT_EQ(Take(), (Calls{{5, 4, 0}}));
}

TEST_F(Progress, DisablersNest)
{
    {
        const QuonProgressDisabler outer;
        EXPECT_FALSE(IsProgressEnabled());
        {
            const QuonProgressDisabler inner;
            EXPECT_FALSE(IsProgressEnabled());
        }
        EXPECT_FALSE(IsProgressEnabled());
        ProgressSetPosition(1);
        EXPECT_EQ(Take(), Calls{});
        ProgressPoll();
        EXPECT_EQ(Take(), (Calls{{2, 0, 0}, kTick}));
    }
    EXPECT_TRUE(IsProgressEnabled());
    EnableProgress(false);
    {
        const QuonProgressDisabler disabler;
        EnableProgress(true);
        EXPECT_TRUE(IsProgressEnabled());
    }
    EXPECT_FALSE(IsProgressEnabled());
}

TEST_F(Progress, DisablerEndsByItsVirtualDestructor)
{
    static int ends;
    class Counting : public QuonProgressDisabler
    {
    public:
        ~Counting() override { ++ends; }
    };
    ends = 0;
    std::unique_ptr<QuonProgressDisabler> disabler(new Counting);
    EXPECT_FALSE(IsProgressEnabled());
    disabler.reset();
    EXPECT_EQ(ends, 1);
    EXPECT_TRUE(IsProgressEnabled());
}

TEST_F(Progress, TakesANullCallbackAndCountsAsOn)
{
    EnableProgress(false);
    SetProgressCallback(nullptr);
    EXPECT_TRUE(IsProgressEnabled());
    // Without a callback nothing can be switched.
    EXPECT_FALSE(EnableProgress(false));
    EXPECT_TRUE(IsProgressEnabled());
    {
        const QuonProgressDisabler disabler;
        EXPECT_TRUE(IsProgressEnabled());
    }
    EXPECT_TRUE(IsProgressEnabled());
    ProgressBegin(1, 2);
    ProgressSetPosition(3);
    ProgressCommand4();
    ProgressCommand5(1);
    ProgressCommand6(1);
    SubProgressBegin(1, 2);
    SubProgressSetPosition(3);
    ProgressCommand9(1);
    ProgressCommand10(1);
    EXPECT_FALSE(ProgressPoll());
    EXPECT_FALSE(SubProgressPoll());
    EXPECT_FALSE(SubProgressRefresh());
}

TEST_F(Progress, CallbackMayTakeItselfAway)
{
    SetProgressCallback([](int command, unsigned int a, LPARAM b) {
        g_calls.push_back({command, a, b});
        SetProgressCallback(nullptr);
        return 1;
    });
    EXPECT_FALSE(SubProgressRefresh());
    EXPECT_EQ(Take(), (Calls{{8, 0, 0}, kTick, kTick}));
}

TEST_F(Progress, SeesThePositionBeforeTheCallback)
{
    // A callback that reads the position back through command 5 sees the new one.
    SetProgressCallback([](int command, unsigned int a, LPARAM b) {
        g_calls.push_back({command, a, b});
        if (command == 1)
        {
            ProgressCommand5(0);
        }
        return 0;
    });
    ProgressSetPosition(12);
    EXPECT_EQ(Take(), (Calls{{1, 12, 0}, {5, 12, 0}, kTick}));
}

}  // namespace
