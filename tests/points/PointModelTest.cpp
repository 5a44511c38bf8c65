// The point strings beside models of them, on random texts and random sequences of operations.

#include "points/PointModel.h"
#include "points/PointTestSupport.h"
#include "points/QuonPointString.h"
#include "points/QuonSortedPointString.h"
#include "points/QuonUnsortedPointString.h"
#include "helpers/Thorough.h"

#include <gtest/gtest.h>

#include <iterator>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace
{

using quon_test::ModelSorted;
using quon_test::ModelString;
using quon_test::ModelUnsorted;
using quon_test::Point;
using quon_test::Probe;
using quon_test::Shown;
using quon_test::TextOf;

using Random = std::mt19937;

// The models take a step for each point of a walk, and for each number up to the highest of a set.
constexpr std::uint64_t kMostPoints = 4000;

unsigned Below(Random& random, unsigned bound)
{
    return static_cast<unsigned>(random() % bound);
}

std::wstring RandomNoise(Random& random)
{
    static constexpr wchar_t kAlphabet[] = L"0123456789012345 ,-<>=\tax;+\x3000\xFF15";
    std::wstring text;
    for (unsigned length = Below(random, 16); length > 0; --length)
    {
        text += kAlphabet[Below(random, std::size(kAlphabet) - 1)];
    }
    return text;
}

std::wstring RandomNumber(Random& random, unsigned span)
{
    switch (Below(random, 40))
    {
        case 0:
            return L"0";
        case 1:
            return std::wstring(L"000") + std::to_wstring(Below(random, span));
        default:
            return std::to_wstring(1 + Below(random, span));
    }
}

std::wstring RandomBlanks(Random& random)
{
    static constexpr const wchar_t* kBlanks[] = {L"", L"", L"", L"", L"", L" ", L"  ", L"\t"};
    return kBlanks[Below(random, std::size(kBlanks))];
}

std::wstring RandomItem(Random& random, unsigned span)
{
    switch (Below(random, 24))
    {
        case 0:
            return L"";
        case 1:
            return std::wstring(Below(random, 2) != 0 ? L"<" : L">=") + RandomNumber(random, span);
        case 2:
            return Below(random, 4) != 0 ? RandomNumber(random, span) : RandomNoise(random);
        case 3:
            return Below(random, 30) != 0 ? L"7" : L"99999999999";
        default:
            break;
    }
    std::wstring item = RandomNumber(random, span);
    if (Below(random, 2) != 0)
    {
        item += Below(random, 8) == 0 ? L" - " : L"-";
        item += RandomNumber(random, span);
    }
    return item;
}

std::wstring RandomText(Random& random)
{
    if (Below(random, 3) == 0)
    {
        return RandomNoise(random);
    }
    static constexpr unsigned kSpans[] = {6, 20, 70, 300, 1500};
    const unsigned span = kSpans[Below(random, std::size(kSpans))];
    std::wstring text = RandomBlanks(random);
    for (unsigned items = Below(random, 9); items > 0; --items)
    {
        text += RandomItem(random, span) + RandomBlanks(random);
        if (items > 1)
        {
            text += std::wstring(L",") + RandomBlanks(random);
        }
    }
    return text;
}

// A text whose points the models can walk.
std::wstring RandomShortText(Random& random)
{
    for (;;)
    {
        std::wstring text = RandomText(random);
        const ModelString::Extent extent = ModelString(text).Measure();
        if (extent.length <= kMostPoints && extent.highest <= kMostPoints)
        {
            return text;
        }
    }
}

void CompareWalkOfRanges(QuonPointString& string, ModelString& model)
{
    unsigned long first = 0;
    unsigned long last = 0;
    Point modelFirst = 0;
    Point modelLast = 0;
    string.GetFirstRange(&first, &last);
    model.GetFirstRange(modelFirst, modelLast);
    for (int past = 0; past < 3;)
    {
        ASSERT_EQ(first, modelFirst);
        ASSERT_EQ(last, modelLast);
        ASSERT_EQ(string.IsDone() != FALSE, model.done);
        past += model.done ? 1 : 0;
        string.GetNextRange(&first, &last);
        model.GetNextRange(modelFirst, modelLast);
    }
}

void CompareWalkOfPoints(QuonPointString& string, ModelString& model)
{
    unsigned long point = 0;
    Point modelPoint = 0;
    string.GetFirstPoint(&point);
    model.GetFirstPoint(modelPoint);
    for (int past = 0; past < 3;)
    {
        // Thousands of points a text: a comparison that can tell more is made when this one has failed.
        if (point != modelPoint || (string.IsDone() != FALSE) != model.done)
        {
            ASSERT_EQ(point, modelPoint);
            ASSERT_EQ(string.IsDone() != FALSE, model.done);
        }
        past += model.done ? 1 : 0;
        string.GetNextPoint(&point);
        model.GetNextPoint(modelPoint);
    }
}

TEST(PointModel, AgreesOnWalksOfRandomTexts)
{
    Random random(1001);
    const int rounds = quon_test::Cases(30000);
    int invalid = 0;
    int busy = 0;
    for (int round = 0; round < rounds; ++round)
    {
        const std::wstring text = RandomText(random);
        QuonPointString string(text.c_str());
        ModelString model(text);
        const bool valid = model.IsValid();
        ASSERT_EQ(string.IsValid() != FALSE, valid) << Shown(text);
        ASSERT_EQ(string.GetPointCount(), model.GetPointCount()) << Shown(text);
        invalid += valid ? 0 : 1;
        const std::uint64_t length = model.Measure().length;
        busy += length > 3 ? 1 : 0;
        CompareWalkOfRanges(string, model);
        if (length <= kMostPoints)
        {
            CompareWalkOfPoints(string, model);
        }
        ASSERT_FALSE(testing::Test::HasFailure()) << Shown(text);
    }
    // The texts are neither all good nor all bad, nor all short.
    EXPECT_GT(invalid, rounds / 6);
    EXPECT_LT(invalid, rounds / 6 * 5);
    EXPECT_GT(busy, rounds / 4);
}

TEST(PointModel, AgreesOnSetOperationsOnRandomTexts)
{
    Random random(1002);
    const int rounds = quon_test::Cases(20000);
    int removedSome = 0;
    for (int round = 0; round < rounds; ++round)
    {
        const std::wstring text = RandomShortText(random);
        const std::wstring points = RandomShortText(random);
        const bool sorted = Below(random, 2) != 0;
        ModelString model(text);
        QuonPointString string(text.c_str());
        model.RemovePoints(points, sorted);
        string.RemovePoints(points.c_str(), sorted ? TRUE : FALSE);
        ASSERT_EQ(TextOf(string), model.text)
            << Shown(text) << " without " << Shown(points) << (sorted ? " sorted" : " unsorted");

        ModelString uniqueModel(text);
        QuonPointString unique(text.c_str());
        uniqueModel.RemoveDuplicates(sorted);
        unique.RemoveDuplicates(sorted ? TRUE : FALSE);
        ASSERT_EQ(TextOf(unique), uniqueModel.text) << Shown(text) << (sorted ? " sorted" : " unsorted");
        removedSome += model.text != uniqueModel.text && !model.text.empty() ? 1 : 0;
    }
    EXPECT_GT(removedSome, rounds / 10);
}

// Any operation after any other, also past the end of walks and after errors.
TEST(PointModel, AgreesOnRandomSequencesOfOperations)
{
    Random random(1003);
    for (int round = 0; round < quon_test::Cases(3000); ++round)
    {
        QuonPointString string;
        ModelString model;
        unsigned long point = 0;
        unsigned long last = 0;
        Point modelPoint = 0;
        Point modelLast = 0;
        std::vector<std::pair<unsigned, std::wstring>> history;
        for (int step = 0; step < 30; ++step)
        {
            const unsigned operation = Below(random, 16);
            const std::wstring text = operation <= 3 ? RandomShortText(random) : L"";
            history.emplace_back(operation, text);
            switch (operation)
            {
                case 0:
                    string.SetText(text.c_str());
                    model.SetText(text);
                    break;
                case 1:
                    string.Assign(QuonPointString(text.c_str()));
                    model.Assign(ModelString(text));
                    break;
                case 2:
                case 3:
                    string.RemovePoints(text.c_str(), operation == 2 ? TRUE : FALSE);
                    model.RemovePoints(text, operation == 2);
                    break;
                case 4:
                    string.RemoveDuplicates(step % 2 == 0 ? TRUE : FALSE);
                    model.RemoveDuplicates(step % 2 == 0);
                    break;
                case 5:
                    ASSERT_EQ(string.IsValid() != FALSE, model.IsValid()) << testing::PrintToString(history);
                    break;
                case 6:
                    ASSERT_EQ(string.GetPointCount(), model.GetPointCount()) << testing::PrintToString(history);
                    break;
                case 7:
                    string = QuonPointString(string);
                    break;
                case 8:
                    string.GetFirstPoint(&point);
                    model.GetFirstPoint(modelPoint);
                    break;
                case 9:
                    string.GetFirstRange(&point, &last);
                    model.GetFirstRange(modelPoint, modelLast);
                    break;
                case 10:
                case 11:
                    string.GetNextRange(&point, &last);
                    model.GetNextRange(modelPoint, modelLast);
                    break;
                default:
                    string.GetNextPoint(&point);
                    model.GetNextPoint(modelPoint);
            }
            ASSERT_EQ(point, modelPoint) << testing::PrintToString(history);
            ASSERT_EQ(last, modelLast) << testing::PrintToString(history);
            ASSERT_EQ(string.IsDone() != FALSE, model.done) << testing::PrintToString(history);
            ASSERT_EQ(TextOf(string), model.text) << testing::PrintToString(history);
        }
    }
}

// Runs up and down, repeats and jumps.
Point NextPoint(Random& random, Point previous, Point span)
{
    switch (Below(random, 6))
    {
        case 0:
        case 1:
            return previous + 1;
        case 2:
        case 3:
            return previous - 1;
        case 4:
            return previous;
        default:
            return Below(random, span);
    }
}

TEST(PointModel, SortedStringsAgree)
{
    Random random(1004);
    for (int round = 0; round < quon_test::Cases(4000); ++round)
    {
        QuonSortedPointString string;
        ModelSorted model;
        const Point span = round % 8 == 0 ? 4000 : 100;
        Point point = Below(random, span);
        for (int step = 0; step < 60; ++step)
        {
            // Numbers from 2^32 - 1024 up come from stepping down from 0, and from texts; those below would take much
            // memory.
            point = NextPoint(random, point, span);
            point = point >= 0xFFFFFC00u || point < 5000 ? point : 0;
            switch (Below(random, 12))
            {
                case 0:
                    string.UpdateText();
                    model.UpdateText();
                    break;
                case 1:
                    string.RemovePoint(point);
                    model.RemovePoint(point);
                    break;
                case 2:
                {
                    const std::wstring text = std::to_wstring(static_cast<long>(point)) + L"-9";
                    string.AddPoint(text.c_str());
                    model.AddPoint(text);
                    break;
                }
                case 3:
                    if (Below(random, 8) == 0)
                    {
                        string.Clear();
                        model.Clear();
                    }
                    break;
                default:
                    string.AddPoint(point);
                    model.AddPoint(point);
            }
            ASSERT_EQ(TextOf(string), model.text) << "round " << round << " step " << step;
        }
        string.UpdateText();
        model.UpdateText();
        ASSERT_EQ(TextOf(string), model.text) << "round " << round;
    }
}

TEST(PointModel, UnsortedStringsAgree)
{
    static constexpr Point kLimits[] = {0, 1, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 0xFFFFFC00};
    Random random(1005);
    for (int round = 0; round < quon_test::Cases(10000); ++round)
    {
        QuonUnsortedPointString string;
        ModelUnsorted model;
        Point point = Below(random, 50);
        for (int step = 0; step < 60; ++step)
        {
            point = NextPoint(random, point, 50);
            switch (Below(random, 16))
            {
                case 0:
                    string.UpdateText();
                    model.UpdateText();
                    break;
                case 1:
                    point = kLimits[Below(random, std::size(kLimits))];
                    break;
                case 2:
                {
                    const std::wstring text = std::to_wstring(static_cast<long>(point)) + L"-9";
                    string.AddPoint(text.c_str());
                    model.AddPoint(text);
                    break;
                }
                case 3:
                    if (Below(random, 8) == 0)
                    {
                        string.Clear();
                        model.Clear();
                    }
                    break;
                case 4:
                    if (Below(random, 8) == 0)
                    {
                        string.SetText(L"1,2 ");
                        model.SetText(L"1,2 ");
                    }
                    break;
                default:
                    string.AddPoint(point);
                    model.AddPoint(point);
            }
            ASSERT_EQ(TextOf(string), model.text) << "round " << round << " step " << step;
        }
        string.UpdateText();
        model.UpdateText();
        ASSERT_EQ(TextOf(string), model.text) << "round " << round;
    }
}

// The bits of large sets are handled by words: ranges of every alignment and of many words.
TEST(PointModel, SetOperationsAgreeOnLongRanges)
{
    Random random(1006);
    for (int round = 0; round < 60; ++round)
    {
        const auto longText = [&] {
            std::wstring text;
            for (unsigned items = 1 + Below(random, 12); items > 0; --items)
            {
                text +=
                    std::to_wstring(1 + Below(random, 9000)) + L"-" + std::to_wstring(1 + Below(random, 9000)) + L",";
            }
            return text;
        };
        const std::wstring text = longText();
        const std::wstring points = longText();
        const bool sorted = round % 2 != 0;
        SCOPED_TRACE(Shown(text) + " without " + Shown(points));
        ModelString model(text);
        QuonPointString string(text.c_str());
        model.RemovePoints(points, sorted);
        string.RemovePoints(points.c_str(), sorted ? TRUE : FALSE);
        ASSERT_EQ(TextOf(string), model.text);
        ModelString uniqueModel(text);
        QuonPointString unique(text.c_str());
        uniqueModel.RemoveDuplicates(sorted);
        unique.RemoveDuplicates(sorted ? TRUE : FALSE);
        ASSERT_EQ(TextOf(unique), uniqueModel.text);
    }
}

}  // namespace
