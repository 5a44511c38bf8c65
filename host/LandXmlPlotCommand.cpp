#include "host/Console.h"

#include "host/LandXmlRun.h"
#include "host/landxml/LandXmlFile.h"
#include "host/landxml/NumberText.h"
#include "host/landxml/PointFilter.h"
#include "host/landxml/ReplacementFile.h"
#include "host/landxml/Steps.h"
#include "host/plot/SurveyPlot.h"
#include "paths/QuonPath.h"

#include <filesystem>
#include <fstream>

namespace quonhost
{
namespace
{

struct PlotCommandOptions
{
    std::string input;
    std::string output;
    std::optional<std::string> list;
    std::optional<std::string> surface;
    std::string title;
    PlotOptions plot;
};

// How the units that a document may name are written beside a number.
std::string UnitOf(const LandXmlHeading& heading)
{
    if (heading.linearUnit == L"meter")
    {
        return "m";
    }
    if (heading.linearUnit == L"foot" || heading.linearUnit == L"USSurveyFoot")
    {
        return "ft";
    }
    return ToUtf8(heading.linearUnit);
}

std::vector<PlotPoint> PointsOf(const LandXmlFile& file, const std::optional<std::string>& list)
{
    std::vector<PlotPoint> points;
    if (list)
    {
        for (const SurveyPoint& point : ChoosePoints(file.ReadPoints(), PointFilter(*list)))
        {
            points.push_back(
                {std::to_string(point.number), point.code, point.easting, point.northing, point.elevation});
        }
        return points;
    }
    for (const PlacedPoint& point : PlacePoints(file.ReadPoints()))
    {
        points.push_back(
            {ToUtf8(point.name), ToUtf8(point.code), point.place.easting, point.place.northing, point.place.elevation});
    }
    return points;
}

// The surface of the name, or else the first that has triangles.
const LandXmlSurface* FindSurface(const std::vector<LandXmlSurface>& surfaces, const std::optional<std::string>& name)
{
    for (const LandXmlSurface& surface : surfaces)
    {
        if (name ? surface.name == ToWide(*name) : !surface.triangles.empty())
        {
            return &surface;
        }
    }
    if (name)
    {
        throw CommandError("there is no surface \"" + *name + "\"");
    }
    return nullptr;
}

PlotSurface SurfaceOf(const LandXmlFile& file, const std::optional<std::string>& name)
{
    const std::vector<LandXmlSurface> surfaces = file.ReadSurfaces();
    PlotSurface plotted;
    const LandXmlSurface* const surface = FindSurface(surfaces, name);
    if (surface != nullptr)
    {
        plotted.name = ToUtf8(surface->name);
        plotted.triangles = surface->triangles;
        for (const LandXmlSurface::Place& place : surface->points)
        {
            plotted.vertices.push_back({place.easting, place.northing, place.elevation});
        }
    }
    return plotted;
}

void WriteText(const QuonPath& path, const std::string& text)
{
    std::ofstream file(std::filesystem::path(static_cast<const wchar_t*>(path)), std::ios::binary);
    file << text;
    file.close();
    if (!file)
    {
        throw CommandError(L"\"" + std::wstring(path) + L"\" cannot be written");
    }
}

std::string TitleOf(const PlotCommandOptions& options, const LandXmlHeading& heading)
{
    if (!options.title.empty())
    {
        return options.title;
    }
    const QuonPath input(ToWide(options.input), QuonPathNormalize);
    return heading.project.empty() ? ToUtf8(std::wstring(input.GetFileTitle())) : ToUtf8(heading.project);
}

void Plot(const PlotCommandOptions& options)
{
    const QuonPath target(ToWide(options.output), QuonPathNormalize);
    ReplacementFile replacement(target);
    const LandXmlFile file(options.input);
    const LandXmlHeading heading = file.GetHeading();
    PlotModel model;
    model.title = TitleOf(options, heading);
    model.unit = UnitOf(heading);
    model.points = PointsOf(file, options.list);
    model.surface = SurfaceOf(file, options.surface);
    const std::string text = DrawSurvey(model, options.plot);
    Steps::StopIfAsked();
    WriteText(replacement.GetPath(), text);
    replacement.Commit();
}

void AddLookOptions(CLI::App& command, PlotOptions& plot)
{
    const std::map<std::string, PlotLabels> labels = {{"none", PlotLabels::kNone},
                                                      {"number", PlotLabels::kNumber},
                                                      {"elevation", PlotLabels::kElevation},
                                                      {"both", PlotLabels::kBoth}};
    command
        .add_option("--contours", plot.contourStep,
                    "The step between contours, 0 for none; by default a round step that gives at most 25")
        ->check(CLI::Range(0.0, 1e9).description(""))
        ->type_name("STEP");
    command
        .add_option(
            "--labels", plot.labels,
            "What to write beside points where there is room: number (the default up to 1500 points), elevation, "
            "both, none")
        ->transform(CLI::CheckedTransformer(labels).description(""))
        ->type_name("KIND");
    command.add_flag("--edges", plot.edges, "Draw the edges of the triangles");
    command.add_option("--size", plot.size, "The longer side of the map, from 200 to 20000")
        ->check(CLI::Range(200.0, 20000.0).description(""))
        ->type_name("PIXELS")
        ->capture_default_str();
}

}  // namespace

void AddLandXmlPlot(CLI::App& parent)
{
    auto options = std::make_shared<PlotCommandOptions>();
    CLI::App* const command =
        parent.add_subcommand("plot", "Draw points and a surface of a LandXML file (1.0 to 1.2) as an SVG picture");
    command->add_option("file.xml", options->input, "The file")->required();
    command->add_option("out.svg", options->output, "What to write; an old file is replaced when the new one is whole")
        ->required();
    command->add_option("--points", options->list, "Draw only these points (\"1-5, 9\")");
    command->add_option("--surface", options->surface, "The surface to draw; by default the first with faces");
    command->add_option("--title", options->title, "The title; by default the project's name, or that of the file");
    AddLookOptions(*command, options->plot);
    SetLandXmlWork(*command, [options] { Plot(*options); });
}

}  // namespace quonhost
