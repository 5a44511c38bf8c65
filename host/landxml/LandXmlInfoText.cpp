#include "host/landxml/LandXmlInfoText.h"

#include "host/Console.h"
#include "host/landxml/NumberText.h"
#include "host/landxml/PointSummary.h"

#include <algorithm>

namespace quonhost
{
namespace
{

// Names and ranges beyond so many are only counted: JSON has all.
constexpr size_t kMostListed = 20;

std::wstring Fact(const wchar_t* name, const std::wstring& text)
{
    std::wstring line = name;
    line.resize(std::max<size_t>(line.size() + 1, 14), L' ');
    return line + text;
}

std::wstring Quoted(const std::wstring& text)
{
    return L"\"" + text + L"\"";
}

void AddPart(std::wstring& text, const std::wstring& part)
{
    text += (text.empty() || part.empty() ? L"" : L", ") + part;
}

void AddCount(std::wstring& text, size_t count, const wchar_t* one, const wchar_t* many)
{
    if (count > 0)
    {
        AddPart(text, Counted(count, one, many));
    }
}

std::wstring Range(const wchar_t* name, double from, double to)
{
    return std::wstring(name) + L" " + NumberText(from) + L" to " + NumberText(to);
}

std::wstring DescribeExtents(const std::optional<SurveyExtents>& extents)
{
    if (!extents)
    {
        return L"";
    }
    std::wstring text = Range(L"northing", extents->lowest.y, extents->highest.y);
    AddPart(text, Range(L"easting", extents->lowest.x, extents->highest.x));
    if (extents->HasElevations())
    {
        AddPart(text, Range(L"elevation", extents->lowest.z, extents->highest.z));
    }
    return text;
}

std::wstring DescribeNames(const std::vector<std::wstring>& names)
{
    std::wstring text;
    for (size_t index = 0; index < std::min(names.size(), kMostListed); ++index)
    {
        AddPart(text, Quoted(names[index]));
    }
    return names.size() <= kMostListed ? text
                                       : text + L" and " + std::to_wstring(names.size() - kMostListed) + L" more";
}

std::wstring DescribeCounts(const CountsByName& counts)
{
    std::wstring text;
    size_t listed = 0;
    for (const auto& [name, count] : counts)
    {
        if (listed++ < kMostListed)
        {
            AddPart(text, (name.empty() ? L"none" : name) + L" (" + std::to_wstring(count) + L")");
        }
    }
    return counts.size() <= kMostListed ? text
                                        : text + L" and " + std::to_wstring(counts.size() - kMostListed) + L" more";
}

std::wstring DescribeUnits(const LandXmlHeading& heading)
{
    const std::wstring unit = heading.linearUnit == L"USSurveyFoot" ? L"US survey foot" : heading.linearUnit;
    if (heading.units.empty())
    {
        return L"unspecified";
    }
    return unit.empty() ? heading.units : heading.units + L" (" + unit + L")";
}

void AddHeading(std::vector<std::wstring>& lines, const LandXmlHeading& heading)
{
    lines.push_back(Fact(L"version", heading.version));
    lines.push_back(Fact(L"units", DescribeUnits(heading)));
    if (!heading.project.empty())
    {
        lines.push_back(Fact(L"project", Quoted(heading.project)));
    }
    if (!heading.application.empty())
    {
        lines.push_back(Fact(L"application", Quoted(heading.application)));
    }
    if (!heading.coordinateSystem.empty() || !heading.epsgCode.empty())
    {
        std::wstring text = heading.coordinateSystem.empty() ? L"" : Quoted(heading.coordinateSystem);
        AddPart(text, heading.epsgCode.empty() ? L"" : L"EPSG " + heading.epsgCode);
        lines.push_back(Fact(L"system", text));
    }
}

void AddPoints(std::vector<std::wstring>& lines, const std::vector<SurveyPoint>& points)
{
    const PointSummary summary = Summarize(points);
    std::wstring text = std::to_wstring(summary.count);
    std::wstring details = RangesText(summary.numbers, kMostListed);
    AddPart(details, DescribeNames(summary.names));
    AddPart(details, DescribeExtents(summary.extents));
    AddCount(details, summary.extents ? summary.withoutElevation : 0, L"without elevation", L"without elevation");
    lines.push_back(Fact(L"points", details.empty() ? text : text + L": " + details));
    const bool hasCodes = summary.codes.size() > 1 || (summary.codes.size() == 1 && !summary.codes.contains(L""));
    if (hasCodes)
    {
        lines.push_back(Fact(L"codes", DescribeCounts(summary.codes)));
    }
    if (summary.descriptions > 0)
    {
        lines.push_back(Fact(L"descriptions", std::to_wstring(summary.descriptions)));
    }
}

std::wstring WithSpecial(const std::wstring& text, size_t special, const wchar_t* how)
{
    return special == 0 ? text : text + L" (" + std::to_wstring(special) + L" " + how + L")";
}

std::wstring DescribeSurface(const LandXmlSurface& surface)
{
    std::wstring text = surface.type;
    AddPart(text, WithSpecial(Counted(surface.pointCount, L"point", L"points"),
                              surface.pointCount - surface.points.size(), L"without coordinates"));
    AddPart(text, WithSpecial(Counted(surface.faceCount, L"face", L"faces"), surface.invisibleFaces, L"invisible"));
    AddCount(text, surface.breaklines, L"breakline", L"breaklines");
    AddCount(text, surface.boundaries, L"boundary", L"boundaries");
    AddCount(text, surface.dataPoints, L"data point", L"data points");
    AddCount(text, surface.contours, L"contour", L"contours");
    ExtentsCollector extents;
    for (const VxGePoint3d& place : surface.points)
    {
        extents.Add(place);
    }
    AddPart(text, DescribeExtents(extents.Get()));
    return Quoted(surface.name) + L": " + text;
}

std::wstring DescribeAlignment(const LandXmlAlignment& alignment)
{
    std::wstring text;
    if (alignment.start && alignment.length)
    {
        text = Range(L"stations", *alignment.start, *alignment.start + *alignment.length);
    }
    AddPart(text, alignment.length ? L"length " + NumberText(*alignment.length) : L"");
    AddCount(text, alignment.lines, L"line", L"lines");
    AddCount(text, alignment.curves, L"curve", L"curves");
    AddCount(text, alignment.spirals, L"spiral", L"spirals");
    AddCount(text, alignment.crossSections, L"cross-section", L"cross-sections");
    return Quoted(alignment.name) + (text.empty() ? L"" : L": " + text);
}

void AddNames(std::vector<std::wstring>& lines, const wchar_t* fact, const std::vector<std::wstring>& names)
{
    if (!names.empty())
    {
        lines.push_back(Fact(fact, std::to_wstring(names.size()) + L": " + DescribeNames(names)));
    }
}

void AddCounts(std::vector<std::wstring>& lines, const wchar_t* fact, const CountsByName& counts)
{
    if (!counts.empty())
    {
        lines.push_back(Fact(fact, DescribeCounts(counts)));
    }
}

}  // namespace

std::vector<std::wstring> DescribeContents(const LandXmlContents& contents)
{
    std::vector<std::wstring> lines;
    AddHeading(lines, contents.heading);
    AddPoints(lines, contents.points);
    for (const LandXmlSurface& surface : contents.surfaces)
    {
        lines.push_back(Fact(L"surface", DescribeSurface(surface)));
    }
    for (const LandXmlAlignment& alignment : contents.alignments)
    {
        lines.push_back(Fact(L"alignment", DescribeAlignment(alignment)));
        AddNames(lines, L"  profiles", alignment.profiles);
    }
    AddNames(lines, L"parcels", contents.parcels);
    AddNames(lines, L"plan features", contents.planFeatures);
    for (const LandXmlPipeNetwork& network : contents.pipeNetworks)
    {
        lines.push_back(Fact(L"pipe network", Quoted(network.name) + L": " +
                                                  Counted(network.structures, L"structure", L"structures") + L", " +
                                                  Counted(network.pipes, L"pipe", L"pipes")));
    }
    AddCounts(lines, L"observations", contents.observations);
    AddCounts(lines, L"not shown", contents.others);
    return lines;
}

std::wstring NameContents(const LandXmlContents& contents)
{
    std::wstring text;
    AddCount(text, contents.points.size(), L"point", L"points");
    AddCount(text, contents.surfaces.size(), L"surface", L"surfaces");
    AddCount(text, contents.alignments.size(), L"alignment", L"alignments");
    AddCount(text, contents.parcels.size(), L"parcel", L"parcels");
    AddCount(text, contents.planFeatures.size(), L"plan feature", L"plan features");
    AddCount(text, contents.pipeNetworks.size(), L"pipe network", L"pipe networks");
    for (const CountsByName* const counts : {&contents.observations, &contents.others})
    {
        AddPart(text, DescribeCounts(*counts));
    }
    return text.empty() ? L"nothing" : text;
}

}  // namespace quonhost
