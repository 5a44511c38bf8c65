#include "host/landxml/SurveyCsv.h"

#include "host/landxml/CsvText.h"
#include "host/landxml/NumberText.h"
#include "host/landxml/Steps.h"
#include "host/landxml/XmlText.h"

// The text is in memory already: a thread that reads ahead would have nothing to do.
#define CSV_IO_NO_THREAD
#include <libfccp/csv.h>

#include <unordered_map>

namespace quonhost
{
namespace
{

template <unsigned int kColumns>
using CsvParser = io::CSVReader<kColumns, io::trim_chars<' ', '\t'>, io::double_quote_escape<',', '"'>,
                                io::throw_on_overflow, io::empty_line_comment>;

// Runs `work`, which parses a line of `csv`, and tells what the parser complains about as we do.
template <typename Parser, typename Work>
auto Telling(const CsvText& csv, const Parser& parser, const Work& work)
{
    const auto complaint = [&](const std::string& what) {
        return LineError(csv.file, csv.LineOfFile(parser.get_file_line()), what);
    };
    try
    {
        return work();
    }
    catch (const io::error::too_few_columns&)
    {
        throw complaint("a column is missing");
    }
    catch (const io::error::too_many_columns&)
    {
        throw complaint("there is a column too many");
    }
    catch (const io::error::escaped_string_not_closed&)
    {
        throw complaint("a quote is not closed");
    }
    catch (const io::error::extra_column_in_header& error)
    {
        throw complaint("the column \"" + std::string(error.column_name) + "\" is not known");
    }
    catch (const io::error::duplicated_column_in_header& error)
    {
        throw complaint("the column \"" + std::string(error.column_name) + "\" is there twice");
    }
    catch (const io::error::base& error)
    {
        throw complaint(error.what());
    }
}

template <unsigned int kColumns>
void RequireColumns(const CsvText& csv, const CsvParser<kColumns>& parser,
                    std::initializer_list<std::string_view> names)
{
    for (const std::string_view name : names)
    {
        if (!parser.has_column(std::string(name)))
        {
            const unsigned int line = std::max(csv.LineOfFile(parser.get_file_line()), 1U);
            throw LineError(csv.file, line, "the column \"" + std::string(name) + "\" is missing");
        }
    }
}

double NumberOf(const char* text, const char* column)
{
    const std::optional<double> number = ParseNumber(text);
    if (!number)
    {
        throw CommandError(std::string(column) + " \"" + text + "\" is no number");
    }
    return *number;
}

unsigned long PointNumberOf(const char* text)
{
    const std::optional<unsigned long> number = ParsePointNumber(text);
    if (!number)
    {
        throw CommandError("\"" + std::string(text) + "\" is no point number (1 to " +
                           std::to_string(kHighestPointNumber) + ")");
    }
    return *number;
}

struct PointRow
{
    const char* number = "";
    const char* northing = "";
    const char* easting = "";
    const char* elevation = "";
    const char* code = "";
};

SurveyPoint PointOf(const PointRow& row)
{
    SurveyPoint point;
    point.number = PointNumberOf(row.number);
    point.northing = NumberOf(row.northing, "northing");
    point.easting = NumberOf(row.easting, "easting");
    if (*row.elevation != '\0')
    {
        point.elevation = NumberOf(row.elevation, "elevation");
    }
    point.code = row.code;
    if (!IsXmlText(point.code))
    {
        throw CommandError(std::string("the code is no UTF-8 text, or holds control characters"));
    }
    return point;
}

// Runs `work` on one row; what it complains about gets the place in front.
template <typename Work>
auto AtLine(const CsvText& csv, unsigned int line, const Work& work)
{
    try
    {
        return work();
    }
    catch (const CommandError& error)
    {
        throw LineError(csv.file, line, error.what());
    }
}

// The points by their number.
class PointIndex
{
public:
    explicit PointIndex(const std::vector<SurveyPoint>& points)
    {
        m_points.reserve(points.size());
        for (const SurveyPoint& point : points)
        {
            m_points.emplace(point.number, &point);
        }
    }

    const SurveyPoint& Corner(const char* text) const
    {
        const unsigned long number = PointNumberOf(text);
        const auto found = m_points.find(number);
        if (found == m_points.end())
        {
            throw CommandError("the face names point " + std::to_string(number) + ", which is not among the points");
        }
        if (!found->second->elevation)
        {
            throw CommandError("the face names point " + std::to_string(number) + ", which has no elevation");
        }
        return *found->second;
    }

private:
    std::unordered_map<unsigned long, const SurveyPoint*> m_points;
};

void RequireApart(const SurveyPoint& a, const SurveyPoint& b)
{
    if (a.number == b.number)
    {
        throw CommandError("the face names point " + std::to_string(a.number) + " twice");
    }
    if (a.northing == b.northing && a.easting == b.easting)
    {
        throw CommandError("the face's points " + std::to_string(a.number) + " and " + std::to_string(b.number) +
                           " are at the same place");
    }
}

}  // namespace

std::vector<SurveyPoint> ParsePoints(const std::string& name, std::string text)
{
    const CsvText csv = PrepareCsv(name, std::move(text), {"number", "northing", "easting", "elevation", "code"});
    CsvParser<5> parser(name, csv.text.data(), csv.text.data() + csv.text.size());
    Telling(csv, parser, [&] {
        parser.read_header(io::ignore_missing_column, "number", "northing", "easting", "elevation", "code");
    });
    RequireColumns<5>(csv, parser, {"number", "northing", "easting", "elevation"});
    std::vector<SurveyPoint> points;
    std::unordered_map<unsigned long, unsigned int> lines;
    Steps steps(csv.CountRows());
    const auto readRow = [&](PointRow& row) {
        return parser.read_row(row.number, row.northing, row.easting, row.elevation, row.code);
    };
    for (PointRow row; Telling(csv, parser, [&] { return readRow(row); }); steps.Advance())
    {
        const unsigned int line = csv.LineOfFile(parser.get_file_line());
        points.push_back(AtLine(csv, line, [&] { return PointOf(row); }));
        const auto [first, isNew] = lines.emplace(points.back().number, line);
        if (!isNew)
        {
            throw LineError(name, line,
                            "point " + std::to_string(points.back().number) + " is there already, in line " +
                                std::to_string(first->second));
        }
    }
    steps.Finish();
    return points;
}

std::vector<SurveyFace> ParseFaces(const std::string& name, std::string text, const std::vector<SurveyPoint>& points)
{
    const CsvText csv = PrepareCsv(name, std::move(text), {"point1", "point2", "point3"});
    CsvParser<3> parser(name, csv.text.data(), csv.text.data() + csv.text.size());
    Telling(csv, parser, [&] { parser.read_header(io::ignore_missing_column, "point1", "point2", "point3"); });
    RequireColumns<3>(csv, parser, {"point1", "point2", "point3"});
    const PointIndex index(points);
    std::vector<SurveyFace> faces;
    Steps steps(csv.CountRows());
    std::array<const char*, 3> row = {};
    while (Telling(csv, parser, [&] { return parser.read_row(row[0], row[1], row[2]); }))
    {
        faces.push_back(AtLine(csv, csv.LineOfFile(parser.get_file_line()), [&] {
            const SurveyPoint& a = index.Corner(row[0]);
            const SurveyPoint& b = index.Corner(row[1]);
            const SurveyPoint& c = index.Corner(row[2]);
            RequireApart(a, b);
            RequireApart(b, c);
            RequireApart(c, a);
            return SurveyFace{a.number, b.number, c.number};
        }));
        steps.Advance();
    }
    steps.Finish();
    return faces;
}

std::string FormatPoint(const SurveyPoint& point)
{
    return std::to_string(point.number) + "," + FormatNumber(point.northing) + "," + FormatNumber(point.easting) + "," +
           (point.elevation ? FormatNumber(*point.elevation) : std::string()) + "," + QuoteField(point.code);
}

}  // namespace quonhost
