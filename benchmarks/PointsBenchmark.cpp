// Texts of point numbers: walked, cleared of duplicates and of other points, written. 20,000 groups, over 200,000
// characters, as the point list of a large survey has them.
#include <afx.h>

#include "BenchmarkSupport.h"

#include "PointSets.h"
#include "points/QuonPointString.h"
#include "points/QuonSortedPointString.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <memory>
#include <random>
#include <string>

using namespace quon_benchmark;

namespace
{

struct Input
{
    std::vector<PointGroup> groups;
    std::wstring text;
    std::wstring removed;  // what is taken out of it: other groups, some of which overlap these
};

using SharedInput = std::shared_ptr<const Input>;

std::vector<PointGroup> MakeGroups(int count, unsigned int seed)
{
    std::mt19937 random(seed);
    std::vector<PointGroup> groups;
    unsigned long point = 100000;
    for (int index = 0; index < count; ++index)
    {
        const unsigned long first = point + 2 + random() % 20;
        const unsigned long last = random() % 2 == 0 ? first : first + 1 + random() % 30;
        groups.push_back({first, last});
        point = last;
    }
    return groups;
}

std::wstring Write(const std::vector<PointGroup>& groups)
{
    GroupWriter writer;
    for (const PointGroup& group : groups)
    {
        writer.Write(group);
    }
    return writer.Take();
}

// A tenth of the groups come twice, and none in order.
void Shuffle(std::vector<PointGroup>& groups)
{
    std::mt19937 random(3);
    std::shuffle(groups.begin(), groups.end(), random);
    const std::size_t count = groups.size();
    for (std::size_t index = 0; index < count; index += 10)
    {
        groups[index] = groups[random() % count];
    }
}

SharedInput MakeInput(int size, bool sorted)
{
    Input input;
    input.groups = MakeGroups(size, 1);
    if (!sorted)
    {
        Shuffle(input.groups);
    }
    input.text = Write(input.groups);
    input.removed = Write(MakeGroups(size, 2));
    return std::make_shared<const Input>(std::move(input));
}

unsigned long SumOfRanges(QuonPointString& points)
{
    unsigned long sum = 0, first = 0, last = 0;
    for (points.GetFirstRange(&first, &last); !points.IsDone(); points.GetNextRange(&first, &last))
    {
        sum += first ^ last;
    }
    return sum;
}

// Both peers look at each character once or twice and at nothing else.
template <typename Read>
[[gnu::noinline]] unsigned long SumOfRanges(const std::wstring& text, Read read)
{
    unsigned long sum = 0;
    const wchar_t* position = text.c_str();
    while (*position != L'\0')
    {
        const PointGroup group = read(position);
        sum += group.first ^ group.last;
    }
    return sum;
}

unsigned long SumOfPoints(QuonPointString& points)
{
    unsigned long sum = 0, point = 0;
    for (points.GetFirstPoint(&point); !points.IsDone(); points.GetNextPoint(&point))
    {
        sum ^= point;
    }
    return sum;
}

[[gnu::noinline]] unsigned long SumOfPoints(const std::wstring& text)
{
    unsigned long sum = 0;
    for (const wchar_t* position = text.c_str(); *position != L'\0';)
    {
        const PointGroup group = ReadGroup(position);
        for (unsigned long point = group.first; point <= group.last; ++point)
        {
            sum ^= point;
            benchmark::DoNotOptimize(sum);
        }
    }
    return sum;
}

void AddWalk(const SharedInput& input, int size, const std::string& order)
{
    // The value that is walked again and again, as an application holds it.
    const auto points = std::make_shared<QuonPointString>(input->text.c_str());
    Require(SumOfRanges(*points) == SumOfRanges(input->text, &ReadGroup), "the ranges of a text");
    Require(SumOfRanges(*points) == SumOfRanges(input->text, &ReadGroupByRunTime), "the ranges of a text, wcstoul");
    Require(SumOfPoints(*points) == SumOfPoints(input->text), "the points of a text");

    const std::string ranges = "walk ranges, " + order;
    Add(ranges, size, "quon", [points] { benchmark::DoNotOptimize(SumOfRanges(*points)); });
    Add(ranges, size, "limit: hand-written loop",
        [input] { benchmark::DoNotOptimize(SumOfRanges(input->text, &ReadGroup)); });
    Add(ranges, size, "wcstoul loop (msvcrt)",
        [input] { benchmark::DoNotOptimize(SumOfRanges(input->text, &ReadGroupByRunTime)); });

    const std::string walk = "walk points, " + order;
    Add(walk, size, "quon", [points] { benchmark::DoNotOptimize(SumOfPoints(*points)); });
    Add(walk, size, "limit: hand-written loop", [input] { benchmark::DoNotOptimize(SumOfPoints(input->text)); });
}

std::wstring RemovePoints(const std::wstring& text, const std::wstring& removed)
{
    QuonPointString points(text.c_str());
    points.RemovePoints(removed.c_str(), TRUE);
    return points.GetText().GetString();
}

// Text in, text out, read and written by the same loops for all peers: what differs is the set.
template <typename Set>
std::wstring RemovePointsBy(const std::wstring& text, const std::wstring& removed)
{
    Set set;
    for (const wchar_t* position = text.c_str(); *position != L'\0';)
    {
        set.Add(ReadGroup(position));
    }
    for (const wchar_t* position = removed.c_str(); *position != L'\0';)
    {
        set.Remove(ReadGroup(position));
    }
    GroupWriter writer;
    set.ForEachRun([&writer](PointGroup run) { writer.Write(run); });
    return writer.Take();
}

template <typename Set>
void AddSetPeer(const SharedInput& input, int size, const std::string& order, const std::string& peer)
{
    const std::wstring none;
    Require(RemovePointsBy<Set>(input->text, none) == RemovePoints(input->text, none), "unique points by " + peer);
    Require(RemovePointsBy<Set>(input->text, input->removed) == RemovePoints(input->text, input->removed),
            "points left by " + peer);
    Add("remove duplicates, " + order, size, peer, [input] {
        std::wstring text = RemovePointsBy<Set>(input->text, {});
        benchmark::DoNotOptimize(text);
    });
    Add("remove points, " + order, size, peer, [input] {
        std::wstring text = RemovePointsBy<Set>(input->text, input->removed);
        benchmark::DoNotOptimize(text);
    });
}

void AddSetOperations(const SharedInput& input, int size, const std::string& order)
{
    // A copy shares the text, so that what is measured begins with a text that is there, as it does for the peers.
    const auto source = std::make_shared<const QuonPointString>(input->text.c_str());
    Add("remove duplicates, " + order, size, "quon", [source] {
        QuonPointString points(*source);
        points.RemoveDuplicates(TRUE);
        benchmark::DoNotOptimize(points);
    });
    Add("remove points, " + order, size, "quon", [source, input] {
        QuonPointString points(*source);
        points.RemovePoints(input->removed.c_str(), TRUE);
        benchmark::DoNotOptimize(points);
    });
    AddSetPeer<RoaringSet>(input, size, order, "CRoaring 0.2.66");
    AddSetPeer<VectorBoolSet>(input, size, order, "std::vector<bool>");
    AddSetPeer<IntervalSet>(input, size, order, "boost::icl::interval_set 1.81");
    AddSetPeer<StdSet>(input, size, order, "std::set");
}

// Numbers in, and each of them asked for again: the sets alone, without any text.
template <typename Set>
void AddSetOfPoints(const std::shared_ptr<const std::vector<unsigned long>>& numbers, int size,
                    const std::string& order, const std::string& contender)
{
    const auto markAll = [](const std::vector<unsigned long>& points) {
        Set set;
        for (const unsigned long point : points)
        {
            set.AddPoint(point);
        }
        std::size_t found = 0;
        for (const unsigned long point : points)
        {
            found += set.HasPoint(point) ? 1U : 0U;
            found += set.HasPoint(point + 3) ? 1U : 0U;
        }
        return found;
    };
    const auto expected = [](const std::vector<unsigned long>& points) {
        const std::set<unsigned long> set(points.begin(), points.end());
        std::size_t found = 0;
        for (const unsigned long point : points)
        {
            found += set.count(point) + set.count(point + 3);
        }
        return found;
    };
    Require(markAll(*numbers) == expected(*numbers), "a set of points by " + contender);
    Add("set of points, " + order, size, contender,
        [numbers, markAll] { benchmark::DoNotOptimize(markAll(*numbers)); });
}

void AddSetsOfPoints(const SharedInput& input, int size, const std::string& order)
{
    std::vector<unsigned long> all;
    for (const PointGroup& group : input->groups)
    {
        for (unsigned long point = group.first; point <= group.last; ++point)
        {
            all.push_back(point);
        }
    }
    const auto numbers = std::make_shared<const std::vector<unsigned long>>(std::move(all));
    AddSetOfPoints<MarkerSet>(numbers, size, order, "quon");
    AddSetOfPoints<RoaringSet>(numbers, size, order, "CRoaring 0.2.66");
    AddSetOfPoints<VectorBoolSet>(numbers, size, order, "std::vector<bool>");
    AddSetOfPoints<StdSet>(numbers, size, order, "std::set");
}

std::wstring WriteByRunTime(const std::vector<PointGroup>& groups)
{
    std::wstring text;
    for (const PointGroup& group : groups)
    {
        wchar_t item[32];
        const wchar_t* const comma = text.empty() ? L"" : L",";
        const int length = group.first == group.last
                               ? ::_snwprintf(item, std::size(item), L"%s%lu", comma, group.first)
                               : ::_snwprintf(item, std::size(item), L"%s%lu-%lu", comma, group.first, group.last);
        text.append(item, static_cast<std::size_t>(length));
    }
    return text;
}

void AddFormat(const SharedInput& input, int size)
{
    const auto points = std::make_shared<QuonSortedPointString>();
    for (const PointGroup& group : input->groups)
    {
        for (unsigned long point = group.first; point <= group.last; ++point)
        {
            points->AddPoint(point);
        }
    }
    points->UpdateText();
    Require(input->text == points->GetText().GetString(), "a written text");
    Require(input->text == WriteByRunTime(input->groups), "a text written by the run-time");
    // The library finds the runs among its points; its peers have them.
    Add("format", size, "quon", [points] { points->UpdateText(); });
    Add("format", size, "std::to_chars loop", [input] {
        std::wstring text = Write(input->groups);
        benchmark::DoNotOptimize(text);
    });
    Add("format", size, "swprintf loop (msvcrt)", [input] {
        std::wstring text = WriteByRunTime(input->groups);
        benchmark::DoNotOptimize(text);
    });
}

// One bit a point. The memory is fresh each time and given back, as it is for a set that lives for one operation.
void AddOneRange(int size)
{
    const std::wstring text = L"1-" + std::to_wstring(size);
    const auto bytes = static_cast<std::size_t>(size) / 8;
    Require(RemovePoints(text, {}) == text, "one range");
    Add("remove duplicates, one range", size, "quon", [text] {
        QuonPointString points(text.c_str());
        points.RemoveDuplicates(TRUE);
        benchmark::DoNotOptimize(points);
    });
    Add("remove duplicates, one range", size, "limit: memset of its bits", [bytes] {
        void* const bits = std::malloc(bytes);
        Require(bits != nullptr, "memory for one range");
        std::memset(bits, 0xFF, bytes);
        benchmark::DoNotOptimize(*static_cast<unsigned char*>(bits));
        benchmark::ClobberMemory();
        std::free(bits);
    });
    Add("remove duplicates, one range", size, "std::vector<bool>", [text] {
        std::wstring written = RemovePointsBy<VectorBoolSet>(text, {});
        benchmark::DoNotOptimize(written);
    });
}

void AddContenders(const Sizes& sizes)
{
    for (const int size : sizes.UpTo(20000))
    {
        for (const bool sorted : {true, false})
        {
            const std::string order = sorted ? "sorted" : "shuffled";
            const SharedInput input = MakeInput(size, sorted);
            if (size == 20000 && sorted)
            {
                Note("characters of 20,000 groups", static_cast<double>(input->text.size()));
            }
            AddWalk(input, size, order);
            AddSetOperations(input, size, order);
            AddSetsOfPoints(input, size, order);
            if (sorted)
            {
                AddFormat(input, size);
            }
        }
    }
    for (const int size : sizes.UpTo(2000000000))
    {
        AddOneRange(size);
    }
}

}  // namespace

int main(int argc, char** argv)
{
    return Run(argc, argv, &AddContenders);
}
