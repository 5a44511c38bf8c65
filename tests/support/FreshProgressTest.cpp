// The state of a process that has never installed a callback: nothing else may run in this program.
#include "support/Progress.h"

#include <gtest/gtest.h>

#include <memory>

namespace
{

int IgnoringCallback(int, unsigned int, LPARAM)
{
    return 0;
}

TEST(FreshProgress, IsOffAndStaysOffWithoutACallback)
{
    EXPECT_FALSE(IsProgressEnabled());
    EXPECT_TRUE(EnableProgress(true));
    EXPECT_FALSE(IsProgressEnabled());
    EXPECT_FALSE(EnableProgress(false));
    {
        const QuonProgressDisabler disabler;
        EXPECT_FALSE(IsProgressEnabled());
    }
    EXPECT_FALSE(IsProgressEnabled());
    ProgressBegin(1, 2);
    ProgressSetPosition(3);
    EXPECT_FALSE(ProgressPoll());
    EXPECT_FALSE(SubProgressPoll());
    EXPECT_FALSE(SubProgressRefresh());

    // A disabler made without a callback saved "off" and, once there is a callback, puts that back.
    auto disabler = std::make_unique<QuonProgressDisabler>();
    SetProgressCallback(&IgnoringCallback);
    EXPECT_TRUE(IsProgressEnabled());
    disabler.reset();
    EXPECT_FALSE(IsProgressEnabled());
}

}  // namespace
