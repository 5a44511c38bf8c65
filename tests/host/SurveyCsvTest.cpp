#include "host/Console.h"
#include "host/landxml/CsvText.h"
#include "host/landxml/SurveyCsv.h"
#include "support/Progress.h"

#include <gtest/gtest.h>
#include <string>

namespace
{

using quonhost::CommandError;
using quonhost::CsvFormat;
using quonhost::SurveyFace;
using quonhost::SurveyPoint;

std::vector<SurveyPoint> ParsePoints(const std::string& text, const CsvFormat& format = {})
{
    return quonhost::ParsePoints(L"p.csv", text, format);
}

std::vector<SurveyFace> ParseFaces(const std::string& text, const std::vector<SurveyPoint>& points)
{
    return quonhost::ParseFaces(L"f.csv", text, {}, points);
}

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
        text += quonhost::ToUtf8(quonhost::FormatPoint(point)) + "|";
    }
    return text;
}

TEST(SurveyCsv, PointsAreReadWithAndWithoutAHeader)
{
    const struct
    {
        std::string text, points;
    } rows[] = {
        {"1,2,3,4,A", "1,2,3,4,A,|"},
        {"1,2,3,4", "1,2,3,4,,|"},
        {"1,2,3,4,\n", "1,2,3,4,,|"},
        {"1,2,3,,A\n", "1,2,3,,A,|"},
        {"1,2,3,4,A,a manhole\n", "1,2,3,4,A,a manhole|"},
        {"\xEF\xBB\xBF"
         "1,2,3,4,A\r\n5,6,7,8,B\r\n",
         "1,2,3,4,A,|5,6,7,8,B,|"},
        {"\xEF\xBB\xBFnumber,northing,easting,elevation\r\n1,2,3,4", "1,2,3,4,,|"},
        {std::string("\xFF\xFE"
                     "1\0,\0"
                     "2\0,\0"
                     "3\0,\0"
                     "4\0",
                     16),
         "1,2,3,4,,|"},
        {"\n\r\n  \n1,2,3,4,A\n\n2,3,4,5,B\n\n", "1,2,3,4,A,|2,3,4,5,B,|"},
        {"code,elevation,easting,northing,number\nA,4,3,2,1", "1,2,3,4,A,|"},
        {"Name,description,northing,easting,elevation\nP7,by hand,2,3,4", "P7,2,3,4,,by hand|"},
        {"Number, NORTHING ,\"Easting\",Elevation\n1,2,3,4", "1,2,3,4,,|"},
        {"\n\nnumber,code,northing,easting,elevation\n1,A,2,3,4", "1,2,3,4,A,|"},
        {" 1 , 2,3\t, 4 , A B \n", "1,2,3,4,A B,|"},
        {"\"1\",\"2\",\"3\",\"4\",\"A, \"\"B\"\"\"", "1,2,3,4,\"A, \"\"B\"\"\",|"},
        {"1,2,3,4,\" A \"", "1,2,3,4,\" A \",|"},
        {"007,+2,3e2,-0,\xC3\x84", "7,2,300,-0,\xC3\x84,|"},
        {"2147483647,1,2,3,", "2147483647,1,2,3,,|"},
        {"STAZLIB3,1,2,3\nBP (NO.-4-10),1,2,3\n12a,1,2,3\n", "STAZLIB3,1,2,3,,|BP (NO.-4-10),1,2,3,,|12a,1,2,3,,|"},
        {"1,2,3,4,code\n2,3,4,5,Number\n", "1,2,3,4,code,|2,3,4,5,Number,|"},
        {"number,northing,easting,elevation,code\n", ""},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(Describe(ParsePoints(row.text)), row.points);
    }
}

TEST(SurveyCsv, SeparatorsAndDecimalMarksAreRecognized)
{
    const struct
    {
        std::string text, points;
    } rows[] = {
        {"1;2.5;3.5;4;A,B\n", "1,2.5,3.5,4,\"A,B\",|"},
        {"1;2,5;3,5;4;A\n2;1;-1,25;;\n", "1,2.5,3.5,4,A,|2,1,-1.25,,,|"},
        {"1\t2,5\t3\t4\tA;B\n", "1,2.5,3,4,\"A;B\",|"},
        {"1\t2.5\t\t4\n", ""},
        {"1\t 2.5 \t3\t\tA\n", "1,2.5,3,,A,|"},
        {"1,2,3,4,a;b;c;d;e\n", ""},
        {"number;northing;easting;elevation\n1;2,5;3;4\n", "1,2.5,3,4,,|"},
        {"1,\"2,5\",\"3,5\",4\n", "1,2.5,3.5,4,,|"},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.text);
        if (row.points.empty())
        {
            EXPECT_THROW(ParsePoints(row.text), CommandError);
            continue;
        }
        EXPECT_EQ(Describe(ParsePoints(row.text)), row.points);
    }
}

TEST(SurveyCsv, SeparatorsAndDecimalMarksCanBeNamed)
{
    EXPECT_EQ(Describe(ParsePoints("1,2,3,4,a;b;c;d;e\n", {',', std::nullopt})), "1,2,3,4,\"a;b;c;d;e\",|");
    EXPECT_EQ(Describe(ParsePoints("1;2,5;3;4\n", {';', ','})), "1,2.5,3,4,,|");
    EXPECT_EQ(ComplaintOf([] {
                  ParsePoints("1;2,5;3;4\n", {';', '.'});
              }),
              "p.csv line 1: northing does not have a point as its decimal mark: \"2,5\"");
    EXPECT_EQ(ComplaintOf([] {
                  ParsePoints("1;2;3;4\n", {',', std::nullopt});
              }),
              "p.csv line 1: the column \"northing\" is missing");
}

TEST(SurveyCsv, TwoDecimalMarksInOneFileAreRefused)
{
    EXPECT_EQ(ComplaintOf([] { ParsePoints("1;2,5;3;4\n2;3;4;1.234\n"); }),
              "p.csv line 2: elevation does not have a comma as its decimal mark, as in line 1: \"1.234\"");
    EXPECT_EQ(ComplaintOf([] { ParsePoints("1;1.234,5;3;4\n"); }),
              "p.csv line 1: northing is not a number: \"1.234,5\"");
}

TEST(SurveyCsv, BadPointsAreReportedWithTheirLine)
{
    const struct
    {
        std::string text, complaint;
    } rows[] = {
        {"", "p.csv: the file is empty"},
        {" \r\n\n", "p.csv: the file is empty"},
        {"\xEF\xBB\xBF", "p.csv: the file is empty"},
        {",2,3,4", "p.csv line 1: a point number must be from 1 to 2147483647, or a name: \"\""},
        {"0,2,3,4", "p.csv line 1: a point number must be from 1 to 2147483647, or a name: \"0\""},
        {"1,2,3,4\n2147483648,2,3,4",
         "p.csv line 2: a point number must be from 1 to 2147483647, or a name: \"2147483648\""},
        {"-1,2,3,4", "p.csv line 1: a point number must be from 1 to 2147483647, or a name: \"-1\""},
        {"1,2,3,4\n2,12a,3,4", "p.csv line 2: northing is not a number: \"12a\""},
        {"1,2,3,4\n\n2,3,,4", "p.csv line 3: easting is not a number: \"\""},
        {"1,2,3,4\n2,3,3,1e999", "p.csv line 2: elevation is not a number: \"1e999\""},
        {"number,northing,easting,elevation\n1,2,3,nan", "p.csv line 2: elevation is not a number: \"nan\""},
        {"1,2,inf,4", "p.csv line 1: easting is not a number: \"inf\""},
        {"1,2,-Infinity,4", "p.csv line 1: easting is not a number: \"-Infinity\""},
        {"1,2,3,4\r\n2,3,4\r\n", "p.csv line 2: a column is missing"},
        {"1,2,3,4,A\n2,3,4,5\n", "p.csv line 2: a column is missing"},
        {"1,2,3,4,A\n2,3,4,5,A,B\n", "p.csv line 2: there is a column too many"},
        {"1,2,3,4,A,B,C\n", "p.csv line 1: there is a column too many"},
        {"1,2,3\n", "p.csv line 1: the column \"elevation\" is missing"},
        {"1\n", "p.csv line 1: the column \"northing\" is missing"},
        {"number,northing,elevation\n", "p.csv line 1: the column \"easting\" is missing"},
        {"\nid,northing,easting,elevation\n1,2,3,4", "p.csv line 2: unknown column: \"id\""},
        {"number,number,northing,easting,elevation\n", "p.csv line 1: the column \"number\" is there twice"},
        {"number,name,northing,easting,elevation\n", "p.csv line 1: the column \"name\" is there twice"},
        {"1,2,3,4,A\n2,3,4,5,B\n1,2,3,4,A\n", "p.csv line 3: point 1 is there already, in line 1"},
        {"number,northing,easting,elevation\n\n5,2,3,4\n05,2,3,4\n",
         "p.csv line 4: point 5 is there already, in line 3"},
        {"1,2,3,4,\"A\n", "p.csv line 1: a quote is not closed"},
        {"1,2,3,4,\"A\"B\n", "p.csv line 1: there is text after a closing quote"},
        {std::string("1,2,3,4\n1,2,3\0,4\n", 17), "p.csv line 2: control character 0"},
        {"1,2,3,4,\xC4\n", "p.csv line 1: the text is not UTF-8"},
        {"1,2,3,4,A\n2,2,3,4,A\x01\n", "p.csv line 2: control character 1"},
        {"1,2,3,4,A\xEF\xBF\xBF\n", "p.csv line 1: the code holds control characters"},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(ComplaintOf([&] { ParsePoints(row.text); }), row.complaint);
    }
}

std::vector<SurveyPoint> Square()
{
    return ParsePoints("1,0,0,0\n2,0,1,0\n3,1,1,0\n4,1,0,0\n5,0,0,9\n6,5,5,\nA,7,7,7\n");
}

TEST(SurveyCsv, FacesAreReadWithAndWithoutAHeader)
{
    const std::vector<SurveyPoint> points = Square();
    const std::vector<SurveyFace> faces = {{1, 2, 3}, {1, 3, 4}};
    EXPECT_EQ(ParseFaces("1,2,3\r\n1,3,4", points), faces);
    EXPECT_EQ(ParseFaces("1;2;3\r\n1;3;4", points), faces);
    EXPECT_EQ(ParseFaces("Point1,Point2,Point3\n1,2,3\n\n\"1\", 3 ,04\n", points), faces);
    EXPECT_EQ(ParseFaces("point3,point1,point2\n3,1,2\n4,1,3\n", points), faces);
}

TEST(SurveyCsv, BadFacesAreReportedWithTheirLine)
{
    const std::vector<SurveyPoint> points = Square();
    const struct
    {
        std::string text, complaint;
    } rows[] = {
        {"", "f.csv: the file is empty"},
        {"1,2,3\n1,2,9", "f.csv line 2: the face names point 9, which is not among the points"},
        {"1,2,6", "f.csv line 1: the face names point 6, which has no elevation"},
        {"1,2,2", "f.csv line 1: the face names point 2 twice"},
        {"point1,point2,point3\n2,5,1", "f.csv line 2: the face's points 5 and 1 are at the same place"},
        {"1,2", "f.csv line 1: the column \"point3\" is missing"},
        {"1,2,3\n1,2", "f.csv line 2: a column is missing"},
        {"1,2,3,4", "f.csv line 1: there is a column too many"},
        {"1,2,A", "f.csv line 1: the face names point \"A\", which is not a point number"},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(ComplaintOf([&] { ParseFaces(row.text, points); }), row.complaint);
    }
}

TEST(SurveyCsv, WrittenPointsReadBackAsThemselves)
{
    const std::vector<SurveyPoint> points = {
        {L"1", {-1e300, 0.1 + 0.2, 5e-324}, L"", L""},
        {L"2", {2, 1.0 / 3, quonhost::kNoElevation}, L"a,b", L"c;d"},
        {L"3", {1, 2, 3}, L"\"quoted\"", L"\""},
        {L"4", {1, 2, 3}, L" blanks at both ends ", L"B\u00F6schung \u5C71"},
        {L"BP (NO.-4-10)", {1, 2, 3}, L"number", L"desc"},
        {L"2147483647", {1, 2, 3}, L"", L"no code"},
    };
    std::wstring text(quonhost::kPointHeader);
    for (const SurveyPoint& point : points)
    {
        text += L"\n" + quonhost::FormatPoint(point);
    }
    const std::vector<SurveyPoint> back = ParsePoints(quonhost::ToUtf8(text));
    ASSERT_EQ(back.size(), points.size());
    for (size_t i = 0; i < points.size(); ++i)
    {
        SCOPED_TRACE(i);
        EXPECT_EQ(back[i].identifier, points[i].identifier);
        EXPECT_EQ(back[i].place.x, points[i].place.x);
        EXPECT_EQ(back[i].place.y, points[i].place.y);
        EXPECT_EQ(quonhost::HasElevation(back[i].place), quonhost::HasElevation(points[i].place));
        EXPECT_EQ(back[i].code, points[i].code);
        EXPECT_EQ(back[i].description, points[i].description);
    }
}

TEST(SurveyCsv, LineBreaksInACodeAreWrittenAsBlanks)
{
    EXPECT_EQ(quonhost::QuoteField(L"a\r\nb\nc"), L"a  b c");
}

int AskToStop(int command, unsigned int, LPARAM)
{
    return command == 2 ? 1 : 0;
}

TEST(SurveyCsv, ARequestToStopEndsTheReading)
{
    SetProgressCallback(&AskToStop);
    EXPECT_EQ(ComplaintOf([] { ParsePoints("1,2,3,4"); }), "stopped");
    SetProgressCallback(nullptr);
    EXPECT_EQ(ComplaintOf([] { ParsePoints("1,2,3,4"); }), "");
}

}  // namespace
