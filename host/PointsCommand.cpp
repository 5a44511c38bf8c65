#include "host/Commands.h"

#include "host/Console.h"
#include "host/Options.h"
#include "host/PointRanges.h"
#include "host/Report.h"
#include "host/Streams.h"

#include <algorithm>
#include <memory>

namespace quonhost
{
namespace
{

struct PointsOptions
{
    std::wstring list;
    std::optional<std::wstring> remove;
    bool valid = false;
    bool count = false;
    bool walk = false;
    bool ranges = false;
    bool unique = false;
    bool csv = false;
    bool json = false;
    bool sorted = true;
};

// A list of a whole project is too long for an error line.
std::wstring Shown(const std::wstring& list)
{
    constexpr size_t kLength = 60;
    return L"\"" + (list.size() > kLength ? list.substr(0, kLength) + L"..." : list) + L"\"";
}

std::wstring ShownItem(const std::wstring& list, const ListItem& item)
{
    return item.text == list ? std::wstring() : L": item " + std::to_wstring(item.number) + L", " + Shown(item.text);
}

// In a file a list may take several lines: their ends separate items as commas do.
std::wstring ReadList(const std::wstring& list)
{
    if (list != kStandardStreamName)
    {
        return list;
    }
    std::wstring text = ToWide(ReadWholeInput(list));
    while (!text.empty() && (text.back() == L'\n' || text.back() == L'\r'))
    {
        text.pop_back();
    }
    std::replace(text.begin(), text.end(), L'\n', L',');
    constexpr wchar_t kByteOrderMark = 0xFEFF;
    return !text.empty() && text.front() == kByteOrderMark ? text.substr(1) : text;
}

void RequireValid(const std::wstring& list)
{
    if (!QuonPointString(list.c_str()).IsValid())
    {
        const std::optional<ListItem> item = FindInvalidItem(list);
        throw CommandError(Shown(list) + L" is not a point list" + (item ? ShownItem(list, *item) : L""));
    }
}

// A comparison means the number 0: written into a list it would end the list there, and removing it does nothing.
void RequireNoComparison(const std::wstring& list, const wchar_t* problem)
{
    if (const std::optional<ListItem> item = FindComparison(list))
    {
        throw CommandError(Shown(list) + problem + ShownItem(list, *item));
    }
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

// Counts what a walk visits: GetPointCount is for ascending ranges only.
unsigned long long CountPoints(QuonPointString& points)
{
    unsigned long long count = 0;
    ForEachRange(points, [&count](unsigned long first, unsigned long last) {
        count += static_cast<unsigned long long>(first > last ? first - last : last - first) + 1;
    });
    return count;
}

void PrintFact(const PointsOptions& options, const char* name, const Json& value, const std::wstring& text)
{
    options.json ? PrintJson({{name, value}}) : PrintLine(text);
}

void PrintValidity(const std::wstring& list, const PointsOptions& options)
{
    if (options.remove || options.unique)
    {
        throw CommandError(L"--valid checks the list as it is: leave --remove and --unique out");
    }
    const bool isValid = QuonPointString(list.c_str()).IsValid() != FALSE;
    PrintFact(options, "valid", isValid, isValid ? L"valid" : L"invalid");
    RequireValid(list);
}

// Rewrites the points by one of the library's operations, and checks that none was lost on the way.
QuonPointString Rewritten(const std::wstring& list, const PointsOptions& options)
{
    const std::wstring removed = options.remove.value_or(L"");
    RequireValid(removed);
    RequireNoComparison(list, L" contains a comparison, which cannot be rewritten");
    RequireNoComparison(removed, L" contains a comparison, which names no points to remove");
    QuonPointString points(list.c_str());
    QuonPointString removedPoints(removed.c_str());
    const PointSet expected = Without(PointsOf(points), PointsOf(removedPoints));
    if (options.remove || !options.unique)
    {
        points.RemovePoints(removed.c_str(), options.sorted);
    }
    if (options.unique)
    {
        points.RemoveDuplicates(options.sorted);
    }
    if (!points.IsValid() || PointsOf(points) != expected)
    {
        throw CommandError(Shown(list) + L" cannot be rewritten: there is not enough memory for its numbers");
    }
    return points;
}

void PrintList(const std::wstring& list, const PointsOptions& options)
{
    const bool isWalk = options.count || options.ranges || options.walk || options.csv;
    QuonPointString points =
        isWalk && !options.remove && !options.unique ? QuonPointString(list.c_str()) : Rewritten(list, options);
    if (options.count)
    {
        const unsigned long long count = CountPoints(points);
        PrintFact(options, "count", count, std::to_wstring(count));
    }
    else if (options.ranges)
    {
        PrintRanges(points, options);
    }
    else if (isWalk)
    {
        PrintPoints(points, options);
    }
    else
    {
        const CString text = points.GetText();
        PrintFact(options, "list", JsonText(text.GetString()), text.GetString());
    }
}

void RunPoints(const PointsOptions& options)
{
    const std::wstring list = ReadList(options.list);
    if (options.valid)
    {
        PrintValidity(list, options);
        return;
    }
    RequireValid(list);
    PrintList(list, options);
}

}  // namespace

void AddPointsCommand(CLI::App& app)
{
    auto options = std::make_shared<PointsOptions>();
    CLI::App* command =
        app.add_subcommand("points", "Check, count, walk and rewrite a list of points (\"1-5, 9, 20-12\")");
    AddText(*command, "list", options->list, "The list, or - to read it from the standard input")->required();
    auto* output = command->add_option_group("output", "What to print; without one of these the rewritten list");
    CLI::Option* const valid =
        output->add_flag("--valid", options->valid, "Whether the list is valid; exits with 1 if not");
    CLI::Option* const count =
        output->add_flag("--count", options->count, "How many points it names, descending ranges included");
    output->add_flag("--walk", options->walk, "Every point, one a line, in the order of the list");
    output->add_flag("--ranges", options->ranges, "The first and last point of every item");
    output->require_option(0, 1);
    AddText(*command, "--remove", options->remove, "Take the points of this list out; the list is rewritten", "LIST");
    command->add_flag("--unique", options->unique, "Keep every point once; the list is rewritten");
    command->add_flag("--sorted,!--unsorted", options->sorted,
                      "Rewrite in ascending order (the default), or in list order");
    CLI::Option* const csv = command->add_flag(
        "--csv", options->csv, "Print comma-separated values with a header: every point, or with --ranges first,last");
    csv->excludes(valid)->excludes(count);
    AddJsonFlag(*command, options->json)->excludes(csv);
    command->callback([options] { RunPoints(*options); });
}

}  // namespace quonhost
