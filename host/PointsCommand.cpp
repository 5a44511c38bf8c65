#include "host/Commands.h"
#include "host/Console.h"

#include "points/QuonPointString.h"
#include "points/QuonSortedPointString.h"
#include "points/QuonUnsortedPointString.h"

#include <memory>

namespace quonhost
{
namespace
{

struct PointsOptions
{
    std::string list;
    std::string remove;
    bool hasRemove = false;
    bool valid = false;
    bool count = false;
    bool walk = false;
    bool ranges = false;
    bool unique = false;
    bool sorted = true;
};

QuonPointString CheckedPoints(const std::string& list)
{
    QuonPointString points(ToWide(list).c_str());
    if (!points.IsValid())
    {
        throw CommandError("\"" + list + "\" is no list of points");
    }
    return points;
}

void PrintPoints(QuonPointString& points)
{
    unsigned long point = 0;
    for (points.GetFirstPoint(&point); !points.IsDone(); points.GetNextPoint(&point))
    {
        PrintLine(std::to_wstring(point));
    }
}

void PrintRanges(QuonPointString& points)
{
    unsigned long first = 0;
    unsigned long last = 0;
    for (points.GetFirstRange(&first, &last); !points.IsDone(); points.GetNextRange(&first, &last))
    {
        PrintLine(std::to_wstring(first) + L" " + std::to_wstring(last));
    }
}

// The number of points that the walk hands out, descending ranges included, which GetPointCount is not made for.
unsigned long long CountPoints(QuonPointString& points)
{
    unsigned long long count = 0;
    unsigned long first = 0;
    unsigned long last = 0;
    for (points.GetFirstRange(&first, &last); !points.IsDone(); points.GetNextRange(&first, &last))
    {
        count += static_cast<unsigned long long>(first > last ? first - last : last - first) + 1;
    }
    return count;
}

// The same points in the written form of one of the two classes.
CString Rewrite(QuonPointString& points, bool sorted)
{
    points.RemovePoints(L"", sorted);
    return points.GetText();
}

void RunPoints(const PointsOptions& options)
{
    if (options.valid)
    {
        if (options.hasRemove || options.unique)
        {
            throw CommandError(std::string("--valid looks at the list as it is: leave --remove and --unique out"));
        }
        const bool isValid = QuonPointString(ToWide(options.list).c_str()).IsValid() != FALSE;
        PrintLine(isValid ? L"valid" : L"invalid");
        return;
    }
    QuonPointString points = CheckedPoints(options.list);
    if (options.hasRemove)
    {
        CheckedPoints(options.remove);
        points.RemovePoints(ToWide(options.remove).c_str(), options.sorted);
    }
    if (options.unique)
    {
        points.RemoveDuplicates(options.sorted);
    }
    if (options.count)
    {
        PrintLine(std::to_wstring(CountPoints(points)));
    }
    else if (options.walk)
    {
        PrintPoints(points);
    }
    else if (options.ranges)
    {
        PrintRanges(points);
    }
    else
    {
        PrintLine(Rewrite(points, options.sorted).GetString());
    }
}

}  // namespace

void AddPointsCommand(CLI::App& app)
{
    auto options = std::make_shared<PointsOptions>();
    CLI::App* command =
        app.add_subcommand("points", "Check, count, walk and rewrite a list of points (\"1-5, 9, 20-12\")");
    command->add_option("list", options->list, "The list")->required();
    auto* output = command->add_option_group("output", "What to print; without one of these the list as rewritten");
    output->add_flag("--valid", options->valid, "Whether the list is valid");
    output->add_flag("--count", options->count, "How many points it names, descending ranges included");
    output->add_flag("--walk", options->walk, "Every point, one a line, in the order of the list");
    output->add_flag("--ranges", options->ranges, "The first and last point of every item");
    output->require_option(0, 1);
    CLI::Option* const remove =
        command->add_option("--remove", options->remove, "Take the points of this list out; the list is rewritten");
    command->add_flag("--unique", options->unique, "Keep every point once; the list is rewritten");
    command->add_flag("--sorted,!--unsorted", options->sorted,
                      "Rewrite in ascending order (the default), or in list order");
    command->callback(
        [options, remove]
        {
            options->hasRemove = remove->count() > 0;
            RunPoints(*options);
        });
}

}  // namespace quonhost
