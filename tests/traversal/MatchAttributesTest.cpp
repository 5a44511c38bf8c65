#include <afx.h>

#include <gtest/gtest.h>

#include <random>

#include "traversal/QuonBasicFileMatcher.h"
#include "helpers/Thorough.h"

namespace
{

struct Condition
{
    unsigned int shift;
    DWORD attribute;
    unsigned int set;    // the named code "must be set"
    unsigned int clear;  // the named code "must be clear"
};

const Condition kConditions[] = {{0, FILE_ATTRIBUTE_ARCHIVE, kQuonMatchArchive, kQuonMatchNotArchive},
                                 {2, FILE_ATTRIBUTE_COMPRESSED, kQuonMatchCompressed, kQuonMatchNotCompressed},
                                 {4, FILE_ATTRIBUTE_DIRECTORY, kQuonMatchFolders, kQuonMatchFiles},
                                 {6, FILE_ATTRIBUTE_HIDDEN, kQuonMatchHidden, kQuonMatchNotHidden},
                                 {8, FILE_ATTRIBUTE_NORMAL, kQuonMatchNormal, kQuonMatchNotNormal},
                                 {10, FILE_ATTRIBUTE_READONLY, kQuonMatchReadOnly, kQuonMatchNotReadOnly},
                                 {12, FILE_ATTRIBUTE_SYSTEM, kQuonMatchSystem, kQuonMatchNotSystem},
                                 {14, FILE_ATTRIBUTE_TEMPORARY, kQuonMatchTemporary, kQuonMatchNotTemporary}};

// Written the other way round than the library: the attribute words that a filter admits are those whose bits agree
// with a required set and avoid a forbidden one.
bool Admits(unsigned int filter, DWORD attributes)
{
    DWORD required = 0;
    DWORD forbidden = 0;
    for (const Condition& condition : kConditions)
    {
        required |= (filter >> condition.shift & 1) != 0 ? condition.attribute : 0;
        forbidden |= (filter >> condition.shift & 2) != 0 ? condition.attribute : 0;
    }
    return (attributes & required) == required && (attributes & forbidden) == 0;
}

TEST(MatchAttributes, EachFieldAloneTestsItsOwnAttribute)
{
    for (const Condition& condition : kConditions)
    {
        SCOPED_TRACE(testing::Message() << "field at bit " << condition.shift);
        const DWORD on = condition.attribute;
        const DWORD off = ~on;  // every other attribute is set
        EXPECT_EQ(condition.set, 1u << condition.shift);
        EXPECT_EQ(condition.clear, 2u << condition.shift);
        EXPECT_TRUE(QuonBasicFileMatcher::MatchAttributes(condition.set, on));
        EXPECT_FALSE(QuonBasicFileMatcher::MatchAttributes(condition.set, off));
        EXPECT_FALSE(QuonBasicFileMatcher::MatchAttributes(condition.clear, on));
        EXPECT_TRUE(QuonBasicFileMatcher::MatchAttributes(condition.clear, off));
        EXPECT_FALSE(QuonBasicFileMatcher::MatchAttributes(3u << condition.shift, on));
        EXPECT_FALSE(QuonBasicFileMatcher::MatchAttributes(3u << condition.shift, off));
        EXPECT_FALSE(QuonBasicFileMatcher::MatchAttributes(3u << condition.shift, 0));
    }
}

TEST(MatchAttributes, FilterZeroMatchesEverything)
{
    for (const DWORD attributes : {0x0ul, 0x10ul, 0x20ul, 0x80ul, 0x7FFFul, 0xFFFFFFFFul})
    {
        EXPECT_TRUE(QuonBasicFileMatcher::MatchAttributes(kQuonMatchEverything, attributes)) << attributes;
    }
}

TEST(MatchAttributes, NamedCodes)
{
    EXPECT_EQ(kQuonMatchFolders, 0x10u);
    EXPECT_EQ(kQuonMatchFiles, 0x20u);
    EXPECT_EQ(kQuonMatchPlainFolders, 0x2090u);
    const DWORD folder = FILE_ATTRIBUTE_DIRECTORY;
    EXPECT_TRUE(QuonBasicFileMatcher::MatchAttributes(kQuonMatchPlainFolders, folder));
    EXPECT_FALSE(QuonBasicFileMatcher::MatchAttributes(kQuonMatchPlainFolders, folder | FILE_ATTRIBUTE_HIDDEN));
    EXPECT_FALSE(QuonBasicFileMatcher::MatchAttributes(kQuonMatchPlainFolders, folder | FILE_ATTRIBUTE_SYSTEM));
    EXPECT_FALSE(QuonBasicFileMatcher::MatchAttributes(kQuonMatchPlainFolders, FILE_ATTRIBUTE_ARCHIVE));
}

TEST(MatchAttributes, BitsAbove15AreIgnored)
{
    for (unsigned int bit = 16; bit < 32; ++bit)
    {
        const unsigned int high = 1u << bit;
        EXPECT_TRUE(QuonBasicFileMatcher::MatchAttributes(high, 0)) << bit;
        EXPECT_TRUE(QuonBasicFileMatcher::MatchAttributes(high | kQuonMatchFolders, FILE_ATTRIBUTE_DIRECTORY)) << bit;
        EXPECT_FALSE(QuonBasicFileMatcher::MatchAttributes(high | kQuonMatchFolders, FILE_ATTRIBUTE_ARCHIVE)) << bit;
    }
    EXPECT_TRUE(QuonBasicFileMatcher::MatchAttributes(0xFFFF0000u, 0xFFFFFFFFu));
}

TEST(MatchAttributes, AgreesWithASetModelForEveryFilter)
{
    std::mt19937 random(20210);
    DWORD relevant = 0;
    for (const Condition& condition : kConditions)
    {
        relevant |= condition.attribute;
    }
    // Every filter once, and as often again as a thorough run has cases.
    const auto rounds = static_cast<unsigned int>(quon_test::Cases(0x10000));
    for (unsigned int round = 0; round < rounds; ++round)
    {
        const unsigned int filter = round & 0xFFFF;
        // Words that the filter nearly admits, so that both answers come up.
        DWORD close = static_cast<DWORD>(random());
        for (const Condition& condition : kConditions)
        {
            const unsigned int field = filter >> condition.shift & 3;
            close = field == 1 ? close | condition.attribute : field == 2 ? close & ~condition.attribute : close;
        }
        for (const DWORD attributes : {close, close ^ (1ul << (random() % 16)), close & relevant,
                                       static_cast<DWORD>(random()), 0ul, 0xFFFFFFFFul})
        {
            ASSERT_EQ(QuonBasicFileMatcher::MatchAttributes(filter, attributes), Admits(filter, attributes))
                << std::hex << "filter " << filter << ", attributes " << attributes;
        }
    }
}

}  // namespace
