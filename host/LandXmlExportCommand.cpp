#include "host/LandXmlCommands.h"

#include "host/Console.h"
#include "host/Streams.h"
#include "host/landxml/FileErrors.h"
#include "host/landxml/LandXmlWriter.h"
#include "host/landxml/ReplacementFile.h"
#include "host/landxml/SurveyCsv.h"
#include "host/landxml/XmlText.h"
#include "paths/QuonPath.h"

#include <algorithm>
#include <functional>
#include <map>
#include <memory>

namespace quonhost
{
namespace
{

struct ExportOptions
{
    std::wstring input;
    std::wstring output;
    std::wstring faces;
    PointChoice choice;
    CsvFormat format;
    LandXmlHeader header;
};

void RequireXmlText(const std::wstring& text, const wchar_t* what)
{
    if (!IsXmlText(text))
    {
        throw CommandError(std::wstring_view(std::wstring(what) + L" holds control characters"));
    }
}

void RequireUsable(const ExportOptions& options)
{
    RequireXmlText(options.header.project, L"the project's name");
    RequireXmlText(options.header.surface, L"the surface's name");
    if (options.input == kStandardStreamName && options.faces == kStandardStreamName)
    {
        throw CommandError(std::wstring_view(L"points and faces cannot both come from the standard input"));
    }
    RequireOtherFile(options.output, options.input);
    if (!options.faces.empty())
    {
        RequireOtherFile(options.output, options.faces);
    }
}

Survey Parse(const ExportOptions& options)
{
    Survey survey;
    survey.points = ParsePoints(ShownName(options.input), ReadWholeInput(options.input), options.format);
    if (!options.faces.empty())
    {
        survey.faces =
            ParseFaces(ShownName(options.faces), ReadWholeInput(options.faces), options.format, survey.points);
    }
    return survey;
}

void Choose(Survey& survey, const ExportOptions& options)
{
    const PointFilter filter = options.choice.MakeFilter();
    std::erase_if(survey.points, [&filter](const SurveyPoint& point) { return !filter.Contains(point); });
    // A face stays only with all of its points.
    std::erase_if(survey.faces, [&filter](const SurveyFace& face) {
        return !std::all_of(face.begin(), face.end(),
                            [&filter](unsigned long number) { return filter.Contains(number); });
    });
    if (survey.points.empty())
    {
        throw FileError(ShownName(options.input), L"none of the points is there");
    }
}

LandXmlHeader HeaderOf(const ExportOptions& options)
{
    LandXmlHeader header = options.header;
    if (header.project.empty() && options.output != kStandardStreamName)
    {
        header.project = QuonPath(options.output, QuonPathNormalize).GetFileTitle();
    }
    return header;
}

void Export(const ExportOptions& options)
{
    RequireUsable(options);
    options.choice.MakeFilter();
    Survey survey = Parse(options);
    Choose(survey, options);
    WriteWholeOutput(options.output, WriteLandXml(survey, HeaderOf(options)));
}

// An option whose value is one of some names.
template <typename Value>
void AddChoice(CLI::App& command, const std::string& name, const std::map<std::string, Value>& choices,
               const std::function<void(Value)>& take, const std::string& help)
{
    command
        .add_option_function<std::string>(
            name, [choices, take](const std::string& text) { take(choices.at(text)); }, help)
        ->check(CLI::IsMember(choices).description(""))
        ->type_name("NAME");
}

void AddFormat(CLI::App& command, CsvFormat& format)
{
    AddChoice<char>(command, "--separator", {{"comma", ','}, {"semicolon", ';'}, {"tab", '\t'}},
                    [&format](char separator) { format.separator = separator; },
                    "What separates the columns: comma, semicolon or tab; recognized by default");
    AddChoice<char>(command, "--decimal", {{"point", '.'}, {"comma", ','}},
                    [&format](char mark) { format.decimalMark = mark; },
                    "The decimal mark: point or comma; recognized by default");
}

void AddHeader(CLI::App& command, LandXmlHeader& header)
{
    AddChoice<LandXmlUnits>(command, "--units",
                            {{"metric", LandXmlUnits::kMetric},
                             {"imperial", LandXmlUnits::kFoot},
                             {"usfoot", LandXmlUnits::kSurveyFoot}},
                            [&header](LandXmlUnits units) { header.units = units; },
                            "metric (the default), imperial (international feet) or usfoot (US survey feet)");
    AddChoice<bool>(command, "--version", {{"1.0", false}, {"1.2", true}},
                    [&header](bool isVersion12) { header.isVersion12 = isVersion12; },
                    "The LandXML version: 1.0 (the default) or 1.2");
    AddText(command, "--project", header.project, "The project's name; that of the file by default");
    AddText(command, "--surface", header.surface, "The surface's name; \"Ground\" by default");
}

}  // namespace

void AddLandXmlExport(CLI::App& parent)
{
    auto options = std::make_shared<ExportOptions>();
    CLI::App* const command = parent.add_subcommand("export", "Write survey points as LandXML");
    AddText(*command, "points.csv", options->input,
            "Points: number,northing,easting,elevation,code,desc; a first line may name the columns; - for the "
            "standard input")
        ->required();
    AddText(*command, "out.xml", options->output,
            "The file to write or replace; - for the standard output")
        ->required();
    AddPointChoice(*command, options->choice, "Only these points (\"1-5, 9\")");
    AddText(*command, "--faces", options->faces,
            "Triangles of a surface: point1,point2,point3; those without all their points are left out")
        ->type_name("FILE");
    AddFormat(*command, options->format);
    AddHeader(*command, options->header);
    SetLandXmlWork(*command, [options] { Export(*options); });
}

}  // namespace quonhost
