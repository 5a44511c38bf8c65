#include "host/LandXmlCommands.h"

#include "host/Console.h"
#include "host/Report.h"
#include "host/landxml/FileErrors.h"
#include "host/landxml/LandXmlInfoText.h"
#include "host/landxml/NumberText.h"
#include "host/landxml/Steps.h"
#include "host/landxml/SurveyCsv.h"

#include <algorithm>
#include <memory>

namespace quonhost
{
namespace
{

struct PointsOptions
{
    LandXmlInput input;
    PointChoice choice;
    bool csv = false;
    bool json = false;
};

std::wstring PlainText(const std::wstring& text)
{
    return text.find(L' ') == std::wstring::npos && !text.empty() ? text : L"\"" + text + L"\"";
}

std::wstring PlainLine(const SurveyPoint& point)
{
    std::wstring line = PlainText(point.identifier) + L' ' + NumberText(point.place.y) + L' ' +
                        NumberText(point.place.x) + L' ' +
                        (HasElevation(point.place) ? NumberText(point.place.z) : L"-");
    if (!point.code.empty() || !point.description.empty())
    {
        line += L' ' + (point.code.empty() ? L"-" : PlainText(point.code));
    }
    return point.description.empty() ? line : line + L" \"" + point.description + L"\"";
}

Json TextOrNull(const std::wstring& text)
{
    return text.empty() ? Json(nullptr) : JsonText(text);
}

Json PointAsJson(const SurveyPoint& point)
{
    const std::optional<unsigned long> number = NumberOf(point);
    return {{"number", number ? Json(*number) : Json(nullptr)},
            {"name", JsonText(point.identifier)},
            {"northing", point.place.y},
            {"easting", point.place.x},
            {"elevation", HasElevation(point.place) ? Json(point.place.z) : Json(nullptr)},
            {"code", TextOrNull(point.code)},
            {"desc", TextOrNull(point.description)}};
}

void PrintPointsAsJson(const std::vector<SurveyPoint>& points)
{
    Json list = Json::array();
    for (const SurveyPoint& point : points)
    {
        list.push_back(PointAsJson(point));
    }
    PrintJson({{"points", std::move(list)}});
}

std::vector<SurveyPoint> Choose(LandXmlContents contents, const PointsOptions& options)
{
    const PointFilter filter = options.choice.MakeFilter();
    std::vector<SurveyPoint> points = std::move(contents.points);
    if (points.empty())
    {
        throw FileError(ShownName(options.input.file),
                        L"there are no points; the file holds " + NameContents(contents));
    }
    std::erase_if(points, [&filter](const SurveyPoint& point) { return !filter.Contains(point); });
    if (points.empty())
    {
        throw FileError(ShownName(options.input.file), L"none of the points is there");
    }
    return points;
}

void PrintChosenPoints(const PointsOptions& options)
{
    options.choice.MakeFilter();
    const std::vector<SurveyPoint> points = Choose(ReadInput(options.input), options);
    if (options.json)
    {
        PrintPointsAsJson(points);
        return;
    }
    if (options.csv)
    {
        PrintLine(kPointHeader);
    }
    Steps steps(points.size());
    for (const SurveyPoint& point : points)
    {
        PrintLine(options.csv ? FormatPoint(point) : PlainLine(point));
        steps.Advance();
    }
    steps.Finish();
}

}  // namespace

void AddLandXmlPoints(CLI::App& parent)
{
    auto options = std::make_shared<PointsOptions>();
    CLI::App* const command =
        parent.add_subcommand("points",
                              "Print points of a LandXML file (1.0 to 1.2): number, northing, easting, "
                              "elevation, code, description");
    AddInput(*command, options->input);
    AddPointChoice(*command, options->choice, "Only these (\"1-5, 9\"); all by default");
    CLI::Option* const csv = command->add_flag("--csv", options->csv, "Print them as export reads them");
    AddJsonFlag(*command, options->json)->excludes(csv);
    SetLandXmlWork(*command, [options] { PrintChosenPoints(*options); });
}

}  // namespace quonhost
