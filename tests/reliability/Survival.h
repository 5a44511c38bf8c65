// Runs an operation again and again, with less and less of it before its memory runs out.
#pragma once

#include <afx.h>

#include <comdef.h>

#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <string>

#include "reliability/NthFailure.h"
#include "helpers/HardLimit.h"

namespace quon_test
{

/// More allocations than any operation here makes.
inline constexpr int kTooMany = 5000;

/// How an operation ended.
enum Outcome : unsigned
{
    kReturned = 1,
    kFrameworkMemory = 2,  // CMemoryException*, from the framework's classes
    kStandardMemory = 4,   // std::bad_alloc, from the standard library's
    kComMemory = 8,        // _com_error
    kStatusText = 16,      // the status texts of the XML functions
    kOther = 32
};
/// What an operation of most subsystems may do.
inline constexpr unsigned kPlain = kReturned | kFrameworkMemory | kStandardMemory;
inline constexpr unsigned kXml = kPlain | kComMemory | kStatusText;

inline Outcome Run(const std::function<void()>& operation)
{
    try
    {
        operation();
        return kReturned;
    }
    catch (CMemoryException* exception)
    {
        exception->Delete();
        return kFrameworkMemory;
    }
    catch (const std::bad_alloc&)
    {
        return kStandardMemory;
    }
    catch (const _com_error&)
    {
        return kComMemory;
    }
    catch (const CString&)
    {
        return kStatusText;
    }
    catch (CException* exception)
    {
        exception->Delete();
        return kOther;
    }
    catch (...)
    {
        return kOther;
    }
}

struct Attempt
{
    Outcome outcome;
    bool failed;
    bool leaked;
};

/// Lets the allocation behind `successes` others fail. A block that is kept on purpose, such as the emergency memory of
/// a thread that throws for the first time, is taken once; what grows at each of three attempts is a leak.
/// @param kept the blocks that the operation keeps each time that it returns
inline Attempt FailAt(int successes, const std::function<void()>& operation, std::size_t kept = 0)
{
    Attempt attempt = {};
    for (int repeated = 0; repeated < 3; ++repeated)
    {
        const std::size_t before = BlocksInUse();
        {
            const NthFailure failure(successes);
            attempt.outcome = Run(operation);
            attempt.failed = failure.Failed();
        }
        attempt.leaked = BlocksInUse() > before + (attempt.outcome == kReturned ? kept : 0);
        if (!attempt.leaked)
        {
            break;
        }
    }
    return attempt;
}

/// Each allocation of the operation fails in turn, until it gets through without a failure; it ends in an allowed way
/// every time, and leaks nothing. Only what this thread allocates fails: what other threads do meanwhile comes in no
/// order.
/// @param keptHandles the handles that the operation keeps open each time
/// @return how many different allocations failed
inline int ExpectSurvives(const std::function<void()>& operation, unsigned allowed, std::size_t kept = 0,
                          std::size_t keptHandles = 0)
{
    const HardLimit limit(280000);
    EXPECT_EQ(Run(operation), kReturned) << "the operation fails with memory";
    // What the run-time opens for the first exception stays open.
    FailAt(0, operation, kept);
    unsigned seen = 0;
    // Once for all attempts: counting takes Wine tens of milliseconds.
    std::size_t handles = HandlesOpen();
    for (int successes = 0; successes < kTooMany; ++successes)
    {
        SCOPED_TRACE("after " + std::to_string(successes) + " allocations");
        const Attempt attempt = FailAt(successes, operation, kept);
        EXPECT_TRUE((attempt.outcome & allowed) != 0) << "outcome " << attempt.outcome;
        EXPECT_FALSE(attempt.leaked);
        if ((seen & attempt.outcome) == 0)
        {
            // The first exception of a kind has other modules open theirs. A handle of the operation's own would stay
            // open at the second attempt as well.
            seen |= attempt.outcome;
            handles = HandlesOpen();
            FailAt(successes, operation, kept);
        }
        if (!attempt.failed)
        {
            EXPECT_EQ(attempt.outcome, kReturned);
            EXPECT_LE(HandlesOpen(), handles + keptHandles * static_cast<std::size_t>(successes + 1))
                << "a handle stays open";
            return successes;
        }
        if (testing::Test::HasFailure())
        {
            return successes;  // one place is enough to look at
        }
    }
    ADD_FAILURE() << "the operation does not get through";
    return kTooMany;
}

}  // namespace quon_test
