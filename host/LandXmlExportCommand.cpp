#include "host/LandXmlCommands.h"

#include "host/Console.h"
#include "host/Options.h"
#include "host/Streams.h"
#include "host/landxml/FileErrors.h"
#include "host/landxml/LandXmlWriter.h"
#include "host/landxml/ReplacementFile.h"
#include "host/landxml/SurveyCsv.h"
#include "host/landxml/XmlText.h"
#include "paths/QuonPath.h"

#include <algorithm>
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
    std::string separator;  // empty: recognized
    std::string decimal;    // empty: recognized
    std::string units = "metric";
    std::string version = "1.0";
    LandXmlHeader header;
};

CsvFormat FormatOf(const ExportOptions& options)
{
    CsvFormat format;
    if (!options.separator.empty())
    {
        format.separator = options.separator == "tab" ? '\t' : options.separator == "comma" ? ',' : ';';
    }
    if (!options.decimal.empty())
    {
        format.decimalMark = options.decimal == "comma" ? ',' : '.';
    }
    return format;
}

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
    survey.points = ParsePoints(ShownName(options.input), ReadWholeInput(options.input), FormatOf(options));
    if (!options.faces.empty())
    {
        survey.faces =
            ParseFaces(ShownName(options.faces), ReadWholeInput(options.faces), FormatOf(options), survey.points);
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
    header.isVersion12 = options.version == "1.2";
    header.units = options.units == "metric"   ? LandXmlUnits::kMetric
                   : options.units == "usfoot" ? LandXmlUnits::kSurveyFoot
                                               : LandXmlUnits::kFoot;
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

void AddFormat(CLI::App& command, ExportOptions& options)
{
    AddChoice(command, "--separator", options.separator, {"comma", "semicolon", "tab"},
              "What separates the columns; recognized by default");
    AddChoice(command, "--decimal", options.decimal, {"point", "comma"}, "The decimal mark; recognized by default");
}

void AddHeader(CLI::App& command, ExportOptions& options)
{
    AddChoice(command, "--units", options.units, {"metric", "imperial", "usfoot"},
              "The unit of lengths: meters (the default), international feet or US survey feet");
    AddChoice(command, "--version", options.version, {"1.0", "1.2"}, "The LandXML version; 1.0 by default");
    AddText(command, "--project", options.header.project, "The project's name; that of the file by default", "TEXT");
    AddText(command, "--surface", options.header.surface, "The surface's name; \"Ground\" by default", "TEXT");
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
    AddText(*command, "out.xml", options->output, "The file to write or replace; - for the standard output")
        ->required();
    AddPointChoice(*command, options->choice, "Only these points (\"1-5, 9\")");
    AddText(*command, "--faces", options->faces,
            "Triangles of a surface: point1,point2,point3; those without all their points are left out", "FILE");
    AddFormat(*command, *options);
    AddHeader(*command, *options);
    SetLandXmlWork(*command, [options] { Export(*options); });
}

}  // namespace quonhost
