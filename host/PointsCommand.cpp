#include "host/Commands.h"

#include "host/Console.h"
#include "host/Report.h"
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
    bool csv = false;
    bool json = false;
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

template <typename Visit>
void ForEachPoint(QuonPointString& points, const Visit& visit)
{
    unsigned long point = 0;
    for (points.GetFirstPoint(&point); !points.IsDone(); points.GetNextPoint(&point))
    {
        visit(point);
    }
}

template <typename Visit>
void ForEachRange(QuonPointString& points, const Visit& visit)
{
    unsigned long first = 0;
    unsigned long last = 0;
    for (points.GetFirstRange(&first, &last); !points.IsDone(); points.GetNextRange(&first, &last))
    {
        visit(first, last);
    }
}

void PrintPoints(QuonPointString& points, const PointsOptions& options)
{
    if (options.json)
    {
        Json list = Json::array();
        ForEachPoint(points, [&list](unsigned long point) { list.push_back(point); });
        PrintJson({{"points", std::move(list)}});
        return;
    }
    if (options.csv)
    {
        PrintLine(L"point");
    }
    ForEachPoint(points, [](unsigned long point) { PrintLine(std::to_wstring(point)); });
}

void PrintRanges(QuonPointString& points, const PointsOptions& options)
{
    if (options.json)
    {
        Json list = Json::array();
        ForEachRange(points, [&list](unsigned long first, unsigned long last) {
            list.push_back(Json{{"first", first}, {"last", last}});
        });
        PrintJson({{"ranges", std::move(list)}});
        return;
    }
    if (options.csv)
    {
        PrintLine(L"first,last");
    }
    const std::wstring gap = options.csv ? L"," : L" ";
    ForEachRange(points, [&gap](unsigned long first, unsigned long last) {
        PrintLine(std::to_wstring(first) + gap + std::to_wstring(last));
    });
}

// The number of points that the walk hands out, descending ranges included, which GetPointCount is not made for.
unsigned long long CountPoints(QuonPointString& points)
{
    unsigned long long count = 0;
    ForEachRange(points, [&count](unsigned long first, unsigned long last) {
        count += static_cast<unsigned long long>(first > last ? first - last : last - first) + 1;
    });
    return count;
}

// The same points in the written form of one of the two classes.
CString Rewrite(QuonPointString& points, bool sorted)
{
    points.RemovePoints(L"", sorted);
    return points.GetText();
}

void PrintFact(const PointsOptions& options, const char* name, const Json& value, const std::wstring& text)
{
    options.json ? PrintJson({{name, value}}) : PrintLine(text);
}

void PrintValidity(const PointsOptions& options)
{
    if (options.hasRemove || options.unique)
    {
        throw CommandError(std::string("--valid looks at the list as it is: leave --remove and --unique out"));
    }
    const bool isValid = QuonPointString(ToWide(options.list).c_str()).IsValid() != FALSE;
    PrintFact(options, "valid", isValid, isValid ? L"valid" : L"invalid");
}

QuonPointString ChangedPoints(const PointsOptions& options)
{
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
    return points;
}

void RunPoints(const PointsOptions& options)
{
    if (options.valid)
    {
        PrintValidity(options);
        return;
    }
    QuonPointString points = ChangedPoints(options);
    if (options.count)
    {
        const unsigned long long count = CountPoints(points);
        PrintFact(options, "count", count, std::to_wstring(count));
    }
    else if (options.ranges)
    {
        PrintRanges(points, options);
    }
    else if (options.walk || options.csv)
    {
        PrintPoints(points, options);
    }
    else
    {
        const CString text = Rewrite(points, options.sorted);
        PrintFact(options, "list", JsonText(text.GetString()), text.GetString());
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
    CLI::Option* const valid = output->add_flag("--valid", options->valid, "Whether the list is valid");
    CLI::Option* const count =
        output->add_flag("--count", options->count, "How many points it names, descending ranges included");
    output->add_flag("--walk", options->walk, "Every point, one a line, in the order of the list");
    output->add_flag("--ranges", options->ranges, "The first and last point of every item");
    output->require_option(0, 1);
    CLI::Option* const remove =
        command->add_option("--remove", options->remove, "Take the points of this list out; the list is rewritten");
    command->add_flag("--unique", options->unique, "Keep every point once; the list is rewritten");
    command->add_flag("--sorted,!--unsorted", options->sorted,
                      "Rewrite in ascending order (the default), or in list order");
    CLI::Option* const csv = command->add_flag(
        "--csv", options->csv, "Print comma-separated values with a header: every point, or with --ranges first,last");
    csv->excludes(valid)->excludes(count);
    AddJsonFlag(*command, options->json)->excludes(csv);
    command->callback([options, remove] {
        options->hasRemove = remove->count() > 0;
        RunPoints(*options);
    });
}

}  // namespace quonhost
