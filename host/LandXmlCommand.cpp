#include "host/Commands.h"

#include "host/Console.h"
#include "host/LandXmlRun.h"
#include "host/ProgressBar.h"
#include "host/Report.h"
#include "host/landxml/CsvText.h"
#include "host/landxml/LandXmlFile.h"
#include "host/landxml/LandXmlInfoText.h"
#include "host/landxml/LandXmlWriter.h"
#include "host/landxml/NumberText.h"
#include "host/landxml/PointFilter.h"
#include "host/landxml/ReplacementFile.h"
#include "host/landxml/Steps.h"
#include "host/landxml/SurveyCsv.h"
#include "host/landxml/XmlText.h"
#include "xml/ComHelpers.h"

#include <algorithm>
#include <memory>
#include <optional>

namespace quonhost
{
namespace
{

struct LandXmlOptions
{
    std::string input;
    std::string output;
    std::optional<std::string> list;
    std::string faces;
    std::string units = "metric";
    std::string project;
    bool csv = false;
    bool json = false;
};

PointFilter FilterOf(const LandXmlOptions& options)
{
    return options.list ? PointFilter(*options.list) : PointFilter();
}

void RequirePoints(const std::vector<SurveyPoint>& points, const LandXmlOptions& options)
{
    if (points.empty())
    {
        throw CommandError("\"" + options.input + "\" holds none of the points");
    }
}

Survey ReadSurvey(const LandXmlOptions& options)
{
    const PointFilter filter = FilterOf(options);
    Survey survey;
    survey.points = ParsePoints(options.input, ReadWholeFile(options.input));
    if (!options.faces.empty())
    {
        survey.faces = ParseFaces(options.faces, ReadWholeFile(options.faces), survey.points);
    }
    std::erase_if(survey.points, [&filter](const SurveyPoint& point) { return !filter.Contains(point.number); });
    // A face stays only with all of its points.
    std::erase_if(survey.faces, [&filter](const SurveyFace& face) {
        return !std::all_of(face.begin(), face.end(),
                            [&filter](unsigned long number) { return filter.Contains(number); });
    });
    RequirePoints(survey.points, options);
    return survey;
}

void Export(const LandXmlOptions& options)
{
    if (!IsXmlText(options.project))
    {
        throw CommandError(std::string("the name of the project holds control characters"));
    }
    const Survey survey = ReadSurvey(options);
    const QuonPath target(ToWide(options.output), QuonPathNormalize);
    LandXmlHeader header;
    header.project = options.project.empty() ? std::wstring(target.GetFileTitle()) : ToWide(options.project);
    header.isImperial = options.units == "imperial";
    ReplacementFile file(target);
    WriteLandXml(survey, header, file.GetPath());
    Steps::StopIfAsked();
    file.Commit();
}

void PrintInfo(const LandXmlOptions& options)
{
    const LandXmlInfo info = LandXmlFile(options.input).GetInfo();
    if (options.json)
    {
        PrintJson(InfoAsJson(info));
        return;
    }
    for (const std::wstring& line : DescribeInfo(info))
    {
        PrintLine(line);
    }
}

std::string PlainLine(const SurveyPoint& point)
{
    std::string line = std::to_string(point.number) + ' ' + FormatNumber(point.northing) + ' ' +
                       FormatNumber(point.easting) + ' ' + (point.elevation ? FormatNumber(*point.elevation) : "-");
    return point.code.empty() ? line : line + ' ' + point.code;
}

Json PointAsJson(const SurveyPoint& point)
{
    return {{"number", point.number},
            {"northing", point.northing},
            {"easting", point.easting},
            {"elevation", point.elevation ? Json(*point.elevation) : Json(nullptr)},
            {"code", point.code.empty() ? Json(nullptr) : Json(point.code)}};
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

void PrintChosenPoints(const LandXmlOptions& options)
{
    const PointFilter filter = FilterOf(options);
    const std::vector<SurveyPoint> points = ChoosePoints(LandXmlFile(options.input).ReadPoints(), filter);
    RequirePoints(points, options);
    if (options.json)
    {
        PrintPointsAsJson(points);
        return;
    }
    if (options.csv)
    {
        PrintLine(ToWide(kPointHeader));
    }
    for (const SurveyPoint& point : points)
    {
        PrintLine(ToWide(options.csv ? FormatPoint(point) : PlainLine(point)));
    }
}

CLI::App* AddWork(CLI::App& parent, const std::shared_ptr<LandXmlOptions>& options, const char* name,
                  const char* description, void (*run)(const LandXmlOptions&))
{
    CLI::App* const command = parent.add_subcommand(name, description);
    SetLandXmlWork(*command, [options, run] { run(*options); });
    return command;
}

void AddExport(CLI::App& parent)
{
    auto options = std::make_shared<LandXmlOptions>();
    CLI::App* const command = AddWork(parent, options, "export", "Write survey points as LandXML 1.0", &Export);
    command
        ->add_option("points.csv", options->input,
                     "Points in UTF-8: number,northing,easting,elevation,code; a first line may name the columns")
        ->required();
    command->add_option("out.xml", options->output, "What to write; an old file is replaced when the new one is whole")
        ->required();
    command->add_option("--points", options->list, "Take only these points (\"1-5, 9\")");
    command->add_option("--faces", options->faces,
                        "Triangles for a surface: point1,point2,point3; those without all their points are left out");
    command->add_option("--units", options->units, "metric or imperial")
        ->check(CLI::IsMember({"metric", "imperial"}))
        ->capture_default_str();
    command->add_option("--project", options->project, "The project's name; by default that of the file");
}

void AddInfo(CLI::App& parent)
{
    auto options = std::make_shared<LandXmlOptions>();
    CLI::App* const command =
        AddWork(parent, options, "info", "Print what a LandXML file (1.0 to 1.2) holds: points, surfaces, alignments",
                &PrintInfo);
    command->add_option("file.xml", options->input, "The file")->required();
    AddJsonFlag(*command, options->json);
}

void AddPoints(CLI::App& parent)
{
    auto options = std::make_shared<LandXmlOptions>();
    CLI::App* const command =
        AddWork(parent, options, "points", "Print points of a LandXML file: number, northing, easting, elevation, code",
                &PrintChosenPoints);
    command->add_option("file.xml", options->input, "The file")->required();
    command->add_option("--points", options->list, "Which (\"1-5, 9\")")->required();
    CLI::Option* const csv = command->add_flag("--csv", options->csv, "Print them as export reads them");
    AddJsonFlag(*command, options->json)->excludes(csv);
}

}  // namespace

void SetLandXmlWork(CLI::App& command, const std::function<void()>& run)
{
    auto progress = std::make_shared<bool>(false);
    command.add_flag("--progress", *progress, kProgressHelp);
    command.callback([progress, run] {
        const ProgressBar bar(*progress || IsProgressVisible());
        try
        {
            run();
        }
        catch (const CString& status)
        {
            throw CommandError(std::wstring_view(status.GetString()));
        }
        catch (const _com_error& error)
        {
            throw CommandError(L"the XML parser failed: " + std::wstring(error.ErrorMessage()));
        }
    });
}

void AddLandXmlCommand(CLI::App& app)
{
    CLI::App* const command = app.add_subcommand("landxml", "Exchange survey points and surfaces as LandXML");
    command->require_subcommand(1);
    AddExport(*command);
    AddInfo(*command);
    AddPoints(*command);
    AddLandXmlPlot(*command);
}

}  // namespace quonhost
