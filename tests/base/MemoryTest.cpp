#include "base/MemoryInternal.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace
{

// A memory exception that tells whether it was deleted, as one that the framework allocated must be.
class CountedException : public CMemoryException
{
public:
    explicit CountedException(int& deletions) : CMemoryException(TRUE), m_deletions(deletions) {}
    ~CountedException() override { ++m_deletions; }

private:
    int& m_deletions;
};

struct Failure
{
    const char* name;
    void (*fail)();
};

constexpr Failure kShortMemory[] = {
    {"the framework's exception", [] { AfxThrowMemoryException(); }},
    {"std::bad_alloc", [] { throw std::bad_alloc(); }},
    {"a class derived from std::bad_alloc", [] { throw std::bad_array_new_length(); }},
    {"std::length_error", [] { throw std::length_error("vector too long"); }},
    {"a container that cannot grow so far", [] { std::vector<int>().reserve(std::vector<int>().max_size() + 1); }},
};

TEST(Memory, EveryWayOfBeingShortIsAnswered)
{
    for (const Failure& failure : kShortMemory)
    {
        SCOPED_TRACE(failure.name);
        bool isRunTo = false;
        EXPECT_FALSE(RunsInMemory([&] {
            isRunTo = true;
            failure.fail();
        }));
        EXPECT_TRUE(isRunTo);
    }
}

TEST(Memory, ActionThatEndsIsReported)
{
    int runs = 0;
    EXPECT_TRUE(RunsInMemory([&] { ++runs; }));
    EXPECT_EQ(runs, 1);
}

TEST(Memory, CaughtExceptionOfTheFrameworkIsDeleted)
{
    int deletions = 0;
    EXPECT_FALSE(RunsInMemory([&] { throw static_cast<CMemoryException*>(new CountedException(deletions)); }));
    EXPECT_EQ(deletions, 1);
}

TEST(Memory, OtherExceptionsPassThrough)
{
    EXPECT_THROW(RunsInMemory([] { throw std::out_of_range("no such element"); }), std::out_of_range);
    EXPECT_THROW(RunsInMemory([] { throw 7; }), int);
    EXPECT_THROW(RunsInMemory([] { AfxThrowInvalidArgException(); }), CInvalidArgException*);
}

struct Named
{
    Named(std::string itsName, void (*fail)()) : name(std::move(itsName)) { fail(); }
    std::string name;
};

TEST(Memory, ObjectIsMadeOfItsArguments)
{
    const std::unique_ptr<Named> object = MakeInMemory<Named>("north", [] {});
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(object->name, "north");
}

TEST(Memory, ObjectWhoseConstructorFindsMemoryShortIsNull)
{
    for (const Failure& failure : kShortMemory)
    {
        SCOPED_TRACE(failure.name);
        EXPECT_EQ(MakeInMemory<Named>("north", failure.fail), nullptr);
    }
    EXPECT_THROW(MakeInMemory<Named>("north", [] { throw 7; }), int);
}

}  // namespace
