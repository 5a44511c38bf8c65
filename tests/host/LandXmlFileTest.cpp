#include "host/Console.h"
#include "host/landxml/LandXmlFile.h"
#include "host/landxml/LandXmlWriter.h"
#include "host/landxml/SurveyCsv.h"

#include <gtest/gtest.h>
#include <string>

namespace
{

using quonhost::LandXmlContents;
using quonhost::SurveyPoint;

LandXmlContents Read(const std::string& body)
{
    return quonhost::ReadLandXmlBytes(L"x", "<LandXML version='1.2'>\n" + body + "</LandXML>");
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

std::string Warnings(const LandXmlContents& contents)
{
    std::string text;
    for (const quonhost::LandXmlWarning& warning : contents.warnings)
    {
        text += std::to_string(warning.line) + ": " + quonhost::ToUtf8(warning.text) + "|";
    }
    return text;
}

TEST(LandXmlFile, PointsAreReadWithTheirNamesCodesAndDescriptions)
{
    const LandXmlContents contents = Read(
        "<CgPoints><CgPoint name='7' code='A' desc='by &amp; by'>1 2 3</CgPoint><CgPoint name='B 7'> 4\n 5 </CgPoint>"
        "<CgPoints><CgPoint name='0005'>+1e0 -2 .5</CgPoint></CgPoints></CgPoints>"
        "<Survey><CgPoints><CgPoint name='9'>7 8<Feature/> 9</CgPoint></CgPoints></Survey>");
    EXPECT_EQ(Describe(contents.points), "7,1,2,3,A,by & by|B 7,4,5,,,|0005,1,-2,0.5,,|9,7,8,9,,|");
    EXPECT_EQ(Warnings(contents), "");
    EXPECT_EQ(contents.others.at(L"Feature"), 1U);
}

TEST(LandXmlFile, APointWithoutTextHasThePlaceOfTheOneThatItRefersTo)
{
    const LandXmlContents contents = Read(
        "<CgPoints>\n<CgPoint name='1' pntRef='2'/>\n<CgPoint name='2' pntRef='base'/>\n<CgPoint name='base'>1 2 "
        "3</CgPoint>\n"
        "<CgPoint name='4' pntRef='gone'/>\n<CgPoint name='5' pntRef='6'/>\n<CgPoint name='6' pntRef='5'/>\n"
        "<CgPoint name='7'/>\n<CgPoint name='8' pntRef='1'>9 9</CgPoint></CgPoints>");
    EXPECT_EQ(Describe(contents.points), "1,1,2,3,,|2,1,2,3,,|base,1,2,3,,|8,9,9,,,|");
    EXPECT_EQ(Warnings(contents),
              "6: point \"4\" has no coordinates: it refers to point \"gone\"|"
              "7: point \"5\" has no coordinates: it refers to point \"6\"|"
              "8: point \"6\" has no coordinates: it refers to point \"5\"|9: point \"7\" has no coordinates|");
}

TEST(LandXmlFile, BadPlacesAreWarningsAndTheRestIsUsed)
{
    for (const char* const text : {"", " ", "1", "1 2 3 4", "1 2 x", "1,2,3", "1 2 nan", "inf 2", "1 2 1e999"})
    {
        SCOPED_TRACE(text);
        const LandXmlContents contents = Read("<CgPoints><CgPoint name='1'>" + std::string(text) +
                                              "</CgPoint><CgPoint name='2'>1 2 3</CgPoint></CgPoints>");
        EXPECT_EQ(Describe(contents.points), "2,1,2,3,,|");
        EXPECT_EQ(contents.warnings.size(), 1U);
    }
}

std::string Surface(const std::string& points, const std::string& faces)
{
    return "<Surfaces><Surface name='S'><Definition surfType='TIN'><Pnts>" + points + "</Pnts><Faces>" + faces +
           "</Faces></Definition></Surface></Surfaces>";
}

TEST(LandXmlFile, FacesNameThePointsOfTheirSurface)
{
    const std::string points =
        "<P id='1'>0 0 1</P><P id='2'>0 1 2</P><P id='30000000'>1 1 3</P><P id='A'>1 0 4</P><P id='04'>2 2 2</P>";
    const LandXmlContents contents = Read(Surface(
        points,
        "<F>1 2 30000000</F><F i='1'>1 2 A</F><F>1 2 30000000 A</F>\n<F>1 2 4</F>\n<F>1 2</F><F n='1 2'>A 04 2</F>"));
    const quonhost::LandXmlSurface& surface = contents.surfaces.at(0);
    EXPECT_EQ(surface.pointCount, 5U);
    EXPECT_EQ(surface.faceCount, 6U);
    EXPECT_EQ(surface.invisibleFaces, 1U);
    EXPECT_EQ(surface.triangles, (std::vector<quonhost::SurveyTriangle>{{0, 1, 2}, {0, 1, 2}, {0, 2, 3}, {3, 4, 1}}));
    EXPECT_EQ(Warnings(contents),
              "3: a face of surface \"S\" names point \"4\", which the surface does not have|"
              "4: a face of surface \"S\" has fewer than three corners: \"1 2\"|");
}

TEST(LandXmlFile, BadPointsOfSurfacesAreCountedAndWarnedOf)
{
    const LandXmlContents contents =
        Read(Surface("<P id='7'>1 2</P><P/><P>1 2 x</P>\n<P id='8'>1 2 3</P><P id='8'>4 5 6</P>", ""));
    EXPECT_EQ(contents.surfaces.at(0).pointCount, 5U);
    EXPECT_EQ(contents.surfaces.at(0).points.size(), 2U);
    EXPECT_EQ(Warnings(contents),
              "2: point \"7\" of surface \"S\" has no coordinates: \"1 2\"|"
              "2: point \"\" of surface \"S\" has no coordinates: \"\"|"
              "2: point \"\" of surface \"S\" has no coordinates: \"1 2 x\"|"
              "3: point \"8\" of surface \"S\" is defined twice|");
}

TEST(LandXmlFile, GeometriesBecomeLines)
{
    const LandXmlContents contents = Read(
        "<CgPoints><CgPoint name='P'>0 100</CgPoint></CgPoints><Alignments><Alignment name='A' staStart='5' "
        "length='300'>"
        "<CoordGeom><Line><Start>0 0</Start><End pntRef='P'/></Line>"
        "<Curve rot='ccw'><Start>0 100</Start><Center>100 100</Center><End>100 200</End></Curve>\n"
        "<Line><Start>500 500</Start><End>600 500</End></Line>"
        "<Line><Start>0 0</Start></Line><IrregularLine><Start>600 500</Start><PntList2D>600 500 610 500</PntList2D>"
        "<End>620 500</End></IrregularLine><Chain>P Q</Chain></CoordGeom></Alignment></Alignments>");
    ASSERT_EQ(contents.lines.size(), 2U) << "pieces that meet are one line";
    EXPECT_EQ(contents.lines[0].places.front().y, 0);
    EXPECT_EQ(contents.lines[0].places.back().x, 200);
    EXPECT_EQ(contents.lines[1].places.size(), 4U);
    const quonhost::LandXmlAlignment& alignment = contents.alignments.at(0);
    EXPECT_EQ(alignment.start, 5);
    EXPECT_EQ(alignment.length, 300);
    EXPECT_EQ(alignment.lines, 5U);
    EXPECT_EQ(alignment.curves, 1U);
    EXPECT_EQ(Warnings(contents),
              "3: <Line> lacks a place, or has one that cannot be read|"
              "3: <Chain> lacks a place, or has one that cannot be read|");
}

TEST(LandXmlFile, EveryElementIsReportedSomewhere)
{
    const LandXmlContents contents = Read(
        "<Units><Metric/></Units><Monuments><Monument/></Monuments><x:Own xmlns:x='u'><x:Inner/></x:Own><Roadways/>"
        "<Survey><InstrumentSetup/><ObservationGroup><RawObservation/><RawObservation><FieldNote/></RawObservation>"
        "</ObservationGroup></Survey><Parcels><Parcel name='1'><Parcels><Parcel "
        "name='2'/></Parcels></Parcel></Parcels>");
    EXPECT_EQ(contents.parcels, (std::vector<std::wstring>{L"1", L"2"}));
    EXPECT_EQ(contents.observations,
              (quonhost::CountsByName{{L"InstrumentSetup", 1}, {L"ObservationGroup", 1}, {L"RawObservation", 2}}));
    EXPECT_EQ(contents.others,
              (quonhost::CountsByName{{L"FieldNote", 1}, {L"Monument", 1}, {L"Roadways", 1}, {L"x:Own", 1}}));
}

TEST(LandXmlWriter, WhatIsWrittenReadsBackAsItWas)
{
    quonhost::Survey survey;
    survey.points = {{L"1", {0, 0, 5}, L"", L""},
                     {L"2", {10, 0.1 + 0.2, 6}, L"a<b>\"&'", L"\u5C71"},
                     {L"3", {0, 10, 7}, L"", L""},
                     {L"BM 1", {5, 5, quonhost::kNoElevation}, L"BM", L"plan only"},
                     {L"4", {0, 0, 5}, L"same place as 1", L""}};
    survey.faces = {{1, 2, 3}, {4, 3, 2}};
    for (const bool isVersion12 : {false, true})
    {
        const LandXmlContents back = quonhost::ReadLandXmlBytes(
            L"x",
            quonhost::WriteLandXml(survey, {L"P & \"Q\"", L"<top>", quonhost::LandXmlUnits::kSurveyFoot, isVersion12}));
        EXPECT_EQ(Describe(back.points), Describe(survey.points));
        EXPECT_EQ(back.heading.version, isVersion12 ? L"1.2" : L"1.0");
        EXPECT_EQ(back.heading.linearUnit, L"USSurveyFoot");
        EXPECT_EQ(back.heading.project, L"P & \"Q\"");
        const quonhost::LandXmlSurface& surface = back.surfaces.at(0);
        EXPECT_EQ(surface.name, L"<top>");
        EXPECT_EQ(surface.pointCount, 4U) << "points at one place stay two points";
        EXPECT_EQ(surface.triangles, (std::vector<quonhost::SurveyTriangle>{{0, 1, 2}, {3, 2, 1}}));
        EXPECT_EQ(Warnings(back), "");
    }
}

}  // namespace
