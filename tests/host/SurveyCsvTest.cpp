#include "host/Console.h"
#include "host/landxml/CsvText.h"
#include "host/landxml/SurveyCsv.h"
#include "support/Progress.h"

#include <gtest/gtest.h>
#include <string>

namespace
{

using quonhost::CommandError;
using quonhost::ParseFaces;
using quonhost::ParsePoints;
using quonhost::SurveyFace;
using quonhost::SurveyPoint;

// The complaint of `work`; "" when it has none.
template <typename Work>
std::string ComplaintOf(const Work& work)
{
    try
    {
        work();
    }
    catch (const CommandError& error)
    {
        return error.what();
    }
    return "";
}

std::string Describe(const std::vector<SurveyPoint>& points)
{
    std::string text;
    for (const SurveyPoint& point : points)
    {
        text += quonhost::FormatPoint(point) + ";";
    }
    return text;
}

TEST(SurveyCsv, PointsAreReadWithAndWithoutAHeader)
{
    const struct
    {
        std::string text, points;
    } rows[] = {
        {"1,2,3,4,A", "1,2,3,4,A;"},
        {"1,2,3,4", "1,2,3,4,;"},
        {"1,2,3,4,\n", "1,2,3,4,;"},
        {"1,2,3,,A\n", "1,2,3,,A;"},
        {"\xEF\xBB\xBF"
         "1,2,3,4,A\r\n5,6,7,8,B\r\n",
         "1,2,3,4,A;5,6,7,8,B;"},
        {"\xEF\xBB\xBFnumber,northing,easting,elevation\r\n1,2,3,4", "1,2,3,4,;"},
        {"\n\r\n  \n1,2,3,4,A\n\n2,3,4,5,B\n\n", "1,2,3,4,A;2,3,4,5,B;"},
        {"code,elevation,easting,northing,number\nA,4,3,2,1", "1,2,3,4,A;"},
        {"Number, NORTHING ,\"Easting\",Elevation\n1,2,3,4", "1,2,3,4,;"},
        {"\n\nnumber,code,northing,easting,elevation\n1,A,2,3,4", "1,2,3,4,A;"},
        {" 1 , 2,3\t, 4 , A B \n", "1,2,3,4,A B;"},
        {"\"1\",\"2\",\"3\",\"4\",\"A, \"\"B\"\"\"", "1,2,3,4,\"A, \"\"B\"\"\";"},
        {"1,2,3,4,\" A \"", "1,2,3,4,\" A \";"},
        {"007,+2,3e2,-0,\xC3\x84", "7,2,300,-0,\xC3\x84;"},
        {"2147483647,1,2,3,", "2147483647,1,2,3,;"},
        {"1,2,3,4,code\n2,3,4,5,Number\n", "1,2,3,4,code;2,3,4,5,Number;"},
        {"number,northing,easting,elevation,code\n", ""},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(Describe(ParsePoints("p.csv", row.text)), row.points);
    }
}

TEST(SurveyCsv, BadPointsAreToldWithTheirLine)
{
    const struct
    {
        std::string text, complaint;
    } rows[] = {
        {"", "\"p.csv\" is empty"},
        {" \r\n\n", "\"p.csv\" is empty"},
        {"\xEF\xBB\xBF", "\"p.csv\" is empty"},
        {"x,2,3,4", "p.csv(1): \"x\" is no point number (1 to 2147483647)"},
        {"0,2,3,4", "p.csv(1): \"0\" is no point number (1 to 2147483647)"},
        {"1,2,3,4\n2147483648,2,3,4", "p.csv(2): \"2147483648\" is no point number (1 to 2147483647)"},
        {"1,2,3,4\n2,x,3,4", "p.csv(2): northing \"x\" is no number"},
        {"1,2,3,4\n\n2,3,,4", "p.csv(3): easting \"\" is no number"},
        {"1,2,3,4\n2,3,3,1e999", "p.csv(2): elevation \"1e999\" is no number"},
        {"number,northing,easting,elevation\n1,2,3,nan", "p.csv(2): elevation \"nan\" is no number"},
        {"1,2,3,4\r\n2,3,4\r\n", "p.csv(2): a column is missing"},
        {"1,2,3,4,A\n2,3,4,5\n", "p.csv(2): a column is missing"},
        {"1,2,3,4,A\n2,3,4,5,A,B\n", "p.csv(2): there is a column too many"},
        {"1,2,3,4,A,B\n", "p.csv(1): there is a column too many"},
        {"1,2,3\n", "p.csv(1): the column \"elevation\" is missing"},
        {"1\n", "p.csv(1): the column \"northing\" is missing"},
        {"number,northing,elevation\n", "p.csv(1): the column \"easting\" is missing"},
        {"\nid,northing,easting,elevation\n1,2,3,4", "p.csv(2): the column \"id\" is not known"},
        {"number,number,northing,easting,elevation\n", "p.csv(1): the column \"number\" is there twice"},
        {"1,2,3,4,A\n2,3,4,5,B\n1,2,3,4,A\n", "p.csv(3): point 1 is there already, in line 1"},
        {"number,northing,easting,elevation\n\n5,2,3,4\n05,2,3,4\n", "p.csv(4): point 5 is there already, in line 3"},
        {"1,2,3,4,\"A\n", "p.csv(1): a quote is not closed"},
        {"1,2,3,4,A\n2,2,3,4,A \"B\n", "p.csv(2): a quote is not closed"},
        {std::string("1,2,3,4\n1,2,3\0,4\n", 17), "p.csv(2): this is no UTF-8 text: it holds a NUL character"},
        {"1,2,3,4,\xC4\n", "p.csv(1): the code is no UTF-8 text, or holds control characters"},
        {"1,2,3,4,A\n2,2,3,4,A\x01\n", "p.csv(2): the code is no UTF-8 text, or holds control characters"},
        {"1,2,3,4,A\xEF\xBF\xBF\n", "p.csv(1): the code is no UTF-8 text, or holds control characters"},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(ComplaintOf([&] { ParsePoints("p.csv", row.text); }), row.complaint);
    }
}

std::vector<SurveyPoint> Square()
{
    return ParsePoints("p.csv", "1,0,0,0\n2,0,1,0\n3,1,1,0\n4,1,0,0\n5,0,0,9\n6,5,5,\n");
}

TEST(SurveyCsv, FacesAreReadWithAndWithoutAHeader)
{
    const std::vector<SurveyPoint> points = Square();
    const std::vector<SurveyFace> faces = {{1, 2, 3}, {1, 3, 4}};
    EXPECT_EQ(ParseFaces("f.csv", "1,2,3\r\n1,3,4", points), faces);
    EXPECT_EQ(ParseFaces("f.csv", "Point1,Point2,Point3\n1,2,3\n\n\"1\", 3 ,04\n", points), faces);
    EXPECT_EQ(ParseFaces("f.csv", "point3,point1,point2\n3,1,2\n4,1,3\n", points), faces);
}

TEST(SurveyCsv, BadFacesAreToldWithTheirLine)
{
    const std::vector<SurveyPoint> points = Square();
    const struct
    {
        std::string text, complaint;
    } rows[] = {
        {"", "\"f.csv\" is empty"},
        {"1,2,3\n1,2,9", "f.csv(2): the face names point 9, which is not among the points"},
        {"1,2,6", "f.csv(1): the face names point 6, which has no elevation"},
        {"1,2,2", "f.csv(1): the face names point 2 twice"},
        {"point1,point2,point3\n2,5,1", "f.csv(2): the face's points 5 and 1 are at the same place"},
        {"1,2", "f.csv(1): the column \"point3\" is missing"},
        {"1,2,3\n1,2", "f.csv(2): a column is missing"},
        {"1,2,3,4", "f.csv(1): there is a column too many"},
        {"1,2,x", "f.csv(1): \"x\" is no point number (1 to 2147483647)"},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(ComplaintOf([&] { ParseFaces("f.csv", row.text, points); }), row.complaint);
    }
}

TEST(SurveyCsv, WrittenPointsReadBackAsThemselves)
{
    const std::vector<SurveyPoint> points = {
        {1, 0.1 + 0.2, -1e300, 5e-324, ""},    {2, 1.0 / 3, 2, std::nullopt, "a,b"}, {3, 1, 2, 3, "\"quoted\""},
        {4, 1, 2, 3, " blanks at both ends "}, {5, 1, 2, 3, "Böschung 山"},          {6, 1, 2, 3, "\""},
        {2147483647, 1, 2, 3, "number"},
    };
    std::string text(quonhost::kPointHeader);
    for (const SurveyPoint& point : points)
    {
        text += "\n" + quonhost::FormatPoint(point);
    }
    const std::vector<SurveyPoint> back = ParsePoints("p.csv", text);
    ASSERT_EQ(back.size(), points.size());
    for (size_t i = 0; i < points.size(); ++i)
    {
        SCOPED_TRACE(points[i].number);
        EXPECT_EQ(back[i].number, points[i].number);
        EXPECT_EQ(back[i].northing, points[i].northing);
        EXPECT_EQ(back[i].easting, points[i].easting);
        EXPECT_EQ(back[i].elevation, points[i].elevation);
        EXPECT_EQ(back[i].code, points[i].code);
    }
}

TEST(SurveyCsv, LineBreaksInACodeAreWrittenAsBlanks)
{
    EXPECT_EQ(quonhost::QuoteField("a\r\nb\nc"), "a  b c");
}

int AskToStop(int command, unsigned int, LPARAM)
{
    return command == 2 ? 1 : 0;
}

TEST(SurveyCsv, AWishToStopEndsTheReading)
{
    SetProgressCallback(&AskToStop);
    EXPECT_EQ(ComplaintOf([] { ParsePoints("p.csv", "1,2,3,4"); }), "stopped");
    SetProgressCallback(nullptr);
    EXPECT_EQ(ComplaintOf([] { ParsePoints("p.csv", "1,2,3,4"); }), "");
}

}  // namespace
