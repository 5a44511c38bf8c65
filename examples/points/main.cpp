// Lists of survey points: checked, walked, thinned out and written back.
#include "points/QuonSortedPointString.h"

#include <cstdio>

int main()
{
    QuonPointString list(L"1-5, 9, 20-12, 3");
    std::printf("valid     %s\n", list.IsValid() ? "yes" : "no");

    // The walk hands out every point that is named, as often as it is named and in that order.
    std::printf("walked   ");
    unsigned long point = 0;
    for (list.GetFirstPoint(&point); !list.IsDone(); list.GetNextPoint(&point))
    {
        std::printf(" %lu", point);
    }
    std::printf("\n");

    list.RemovePoints(L"2, 14-16", TRUE);
    std::printf("thinned   %ls\n", list.GetText().GetString());
    std::printf("points    %lu\n", list.GetPointCount());

    // A list made of numbers that come in any order.
    QuonSortedPointString sorted;
    for (const unsigned long number : {7, 3, 1, 2, 8, 7})
    {
        sorted.AddPoint(number);
    }
    sorted.UpdateText();
    std::printf("sorted    %ls\n", sorted.GetText().GetString());

    // A walk stops silently at the first invalid item: ask before.
    QuonPointString typed(L"1-5, nine");
    std::printf("typed     %s\n", typed.IsValid() ? "valid" : "invalid");
    return 0;
}
