// Names in natural order, numbers from text, angles as surveyors write them, elements from a pool, a log with times.
#include "support/Angles.h"

#include "support/QuonMergeSort.h"
#include "support/QuonPoolAllocator.h"
#include "support/QuonTimer.h"
#include "support/StringHelpers.h"

#include <cstdio>
#include <vector>

namespace
{

struct Vertex
{
    double x, y, z;
    Vertex* next;
};

void SortNames()
{
    std::vector<CString> names = {L"sheet 10", L"sheet 2", L"sheet 1"};
    // Not std::sort: natural comparison can contradict itself between names of different shapes.
    QuonMergeSort(names.begin(), names.end(),
                  [](const CString& a, const CString& b) { return CompareNatural(a, b) < 0; });
    for (const CString& name : names)
    {
        std::printf("%ls; ", name.GetString());
    }
    std::printf("\n");
}

void ReadNumbers()
{
    CStringArray items;
    SplitCommaList(L" 101.5, 12.3045 ,, abc", items);
    for (INT_PTR index = 0; index < items.GetSize(); ++index)
    {
        double value = 0;
        const bool isNumber = ParseDouble(items[index], &value);
        std::printf("%ls: %s %g\n", items[index].GetString(), isNumber ? "number" : "no number", value);
    }
}

void CountVertices()
{
    QuonPoolAllocator<Vertex> pool;
    Vertex* chain = nullptr;
    for (int index = 0; index < 1000; ++index)
    {
        chain = pool.Construct(Vertex{index * 1.0, 0, 0, chain});
    }
    std::printf("vertices in use: %u\n", static_cast<unsigned>(pool.GetCount()));
    while (chain != nullptr)
    {
        Vertex* const next = chain->next;
        pool.Destroy(chain);
        chain = next;
    }
    std::printf("after returning them: %u\n", static_cast<unsigned>(pool.GetCount()));
}

}  // namespace

int main()
{
    // Without a log file a timer measures all the same.
    QuonTimer timer(L"", FALSE, FALSE);
    timer.StartTimer();
    SortNames();
    ReadNumbers();
    // 12 degrees 30 minutes 45 seconds
    std::printf("12.3045 is %.4f degrees\n", DmsToDegrees(12.3045));
    CountVertices();
    const long lap = timer.AddLap();
    std::printf("measured: %s\n", lap >= 0 ? "yes" : "no");
    return 0;
}
