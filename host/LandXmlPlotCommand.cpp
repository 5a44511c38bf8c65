#include "host/LandXmlCommands.h"

#include "host/Console.h"
#include "host/Options.h"
#include "host/Streams.h"
#include "host/landxml/FileErrors.h"
#include "host/landxml/LandXmlInfoText.h"
#include "host/landxml/ReplacementFile.h"
#include "host/landxml/Steps.h"
#include "host/plot/PlotFrame.h"
#include "host/plot/SurveyPlot.h"
#include "paths/QuonPath.h"

#include <algorithm>
#include <memory>

namespace quonhost
{
namespace
{

struct PlotCommandOptions
{
    LandXmlInput input;
    std::wstring output;
    PointChoice choice;
    std::optional<std::wstring> surface;
    std::wstring title;
    double size = 1000;
    double contours = -1;  // below 0: a step that suits the surface
    std::string labels;    // empty: numbers, unless there are too many points
    PlotOptions plot;
};

std::optional<PlotLabels> LabelsOf(const std::string& name)
{
    constexpr std::pair<std::string_view, PlotLabels> kNames[] = {{"none", PlotLabels::kNone},
                                                                  {"number", PlotLabels::kNumber},
                                                                  {"elevation", PlotLabels::kElevation},
                                                                  {"both", PlotLabels::kBoth}};
    for (const auto& [known, labels] : kNames)
    {
        if (known == name)
        {
            return labels;
        }
    }
    return std::nullopt;
}

// How the units that a document may name are written beside a number.
std::wstring UnitOf(const LandXmlHeading& heading)
{
    if (heading.linearUnit == L"meter")
    {
        return L"m";
    }
    const bool isFoot = heading.linearUnit == L"foot" || heading.linearUnit == L"USSurveyFoot";
    return isFoot ? L"ft" : heading.linearUnit;
}

// The surface of the name, or else the first that has triangles.
const LandXmlSurface* FindSurface(const std::vector<LandXmlSurface>& surfaces, const std::optional<std::wstring>& name)
{
    const auto found = std::find_if(surfaces.begin(), surfaces.end(), [&name](const LandXmlSurface& surface) {
        return name ? surface.name == *name : !surface.triangles.empty();
    });
    if (found != surfaces.end())
    {
        return &*found;
    }
    if (name)
    {
        throw CommandError(std::wstring_view(L"there is no surface \"" + *name + L"\""));
    }
    return nullptr;
}

std::wstring TitleOf(const PlotCommandOptions& options, const LandXmlHeading& heading)
{
    if (!options.title.empty())
    {
        return options.title;
    }
    const bool isFile = heading.project.empty() && options.input.file != kStandardStreamName;
    return isFile ? std::wstring(QuonPath(options.input.file, QuonPathNormalize).GetFileTitle()) : heading.project;
}

PlotModel ModelOf(LandXmlContents contents, const PlotCommandOptions& options)
{
    const PointFilter filter = options.choice.MakeFilter();
    PlotModel model;
    model.title = TitleOf(options, contents.heading);
    model.unit = UnitOf(contents.heading);
    model.points = std::move(contents.points);
    std::erase_if(model.points, [&filter](const SurveyPoint& point) { return !filter.Contains(point); });
    model.lines = std::move(contents.lines);
    if (const LandXmlSurface* const surface = FindSurface(contents.surfaces, options.surface))
    {
        model.surface = *surface;
        // The lines of the other surfaces would be drawn on the wrong ground.
        std::erase_if(model.lines, [surface](const SurveyLine& line) {
            return !line.surface.empty() && line.surface != surface->name;
        });
    }
    return model;
}

void Plot(const PlotCommandOptions& options)
{
    RequireOtherFile(options.output, options.input.file);
    options.choice.MakeFilter();
    LandXmlContents contents = ReadInput(options.input);
    const std::wstring held = NameContents(contents);
    const PlotModel model = ModelOf(std::move(contents), options);
    if (!ExtentsOf(model))
    {
        throw FileError(ShownName(options.input.file), L"there is nothing to draw; the file holds " + held);
    }
    PlotOptions plot = options.plot;
    plot.size = options.size;
    plot.labels = LabelsOf(options.labels);
    if (options.contours >= 0)
    {
        plot.contourStep = options.contours;
    }
    WriteWholeOutput(options.output, DrawSurvey(model, plot));
}

void AddLookOptions(CLI::App& command, PlotCommandOptions& options)
{
    AddNumber(command, "--contours", options.contours, 0, 1e9, "STEP",
              "The step between contours, 0 for none; by default a round step that gives at most 25");
    AddChoice(command, "--labels", options.labels, {"none", "number", "elevation", "both"},
              "What to write beside points where there is room; numbers up to 1500 points by default");
    command.add_flag("--edges", options.plot.edges, "Draw the edges of the triangles");
    AddNumber(command, "--size", options.size, 200, 20000, "PIXELS",
              "The longer side of the map, from 200 to 20000; 1000 by default");
}

}  // namespace

void AddLandXmlPlot(CLI::App& parent)
{
    auto options = std::make_shared<PlotCommandOptions>();
    CLI::App* const command = parent.add_subcommand(
        "plot", "Draw points, a surface and lines of a LandXML file (1.0 to 1.2) as an SVG picture");
    AddInput(*command, options->input);
    AddText(*command, "out.svg", options->output, "The file to write or replace; - for the standard output")
        ->required();
    AddPointChoice(*command, options->choice, "Draw only these points (\"1-5, 9\")");
    AddText(*command, "--surface", options->surface, "The surface to draw; by default the first with faces", "TEXT");
    AddText(*command, "--title", options->title, "The title; by default the project's name, or that of the file",
            "TEXT");
    AddLookOptions(*command, *options);
    SetLandXmlWork(*command, [options] { Plot(*options); });
}

}  // namespace quonhost
