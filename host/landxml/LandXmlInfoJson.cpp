#include "host/landxml/LandXmlInfoJson.h"

#include "host/Console.h"
#include "host/landxml/PointSummary.h"

#include <nlohmann/json.hpp>

namespace quonhost
{
namespace
{

using nlohmann::ordered_json;

ordered_json TextOrNull(const std::wstring& text)
{
    return text.empty() ? ordered_json(nullptr) : ordered_json(ToUtf8(text));
}

ordered_json NumberOrNull(const std::optional<double>& number)
{
    return number ? ordered_json(*number) : ordered_json(nullptr);
}

ordered_json TextsAsJson(const std::vector<std::wstring>& texts)
{
    ordered_json list = ordered_json::array();
    for (const std::wstring& text : texts)
    {
        list.push_back(ToUtf8(text));
    }
    return list;
}

ordered_json CountsAsJson(const CountsByName& counts)
{
    ordered_json json = ordered_json::object();
    for (const auto& [name, count] : counts)
    {
        json[ToUtf8(name)] = count;
    }
    return json;
}

ordered_json ExtentsAsJson(const std::optional<SurveyExtents>& extents)
{
    if (!extents)
    {
        return nullptr;
    }
    const VxGePoint3d &low = extents->lowest, &high = extents->highest;
    return {{"northing", {low.y, high.y}},
            {"easting", {low.x, high.x}},
            {"elevation", extents->HasElevations() ? ordered_json{low.z, high.z} : ordered_json(nullptr)}};
}

ordered_json PointsAsJson(const std::vector<SurveyPoint>& points)
{
    const PointSummary summary = Summarize(points);
    return {{"count", summary.count},
            {"numbers", ToUtf8(RangesText(summary.numbers, SIZE_MAX))},
            {"names", TextsAsJson(summary.names)},
            {"codes", CountsAsJson(summary.codes)},
            {"descriptions", summary.descriptions},
            {"withoutElevation", summary.withoutElevation},
            {"extents", ExtentsAsJson(summary.extents)}};
}

ordered_json SurfaceAsJson(const LandXmlSurface& surface)
{
    ExtentsCollector extents;
    for (const VxGePoint3d& place : surface.points)
    {
        extents.Add(place);
    }
    return {{"name", ToUtf8(surface.name)},
            {"type", TextOrNull(surface.type)},
            {"points", surface.pointCount},
            {"pointsWithoutCoordinates", surface.pointCount - surface.points.size()},
            {"faces", surface.faceCount},
            {"invisibleFaces", surface.invisibleFaces},
            {"breaklines", surface.breaklines},
            {"boundaries", surface.boundaries},
            {"dataPoints", surface.dataPoints},
            {"contours", surface.contours},
            {"extents", ExtentsAsJson(extents.Get())}};
}

ordered_json AlignmentAsJson(const LandXmlAlignment& alignment)
{
    return {{"name", ToUtf8(alignment.name)},
            {"start", NumberOrNull(alignment.start)},
            {"length", NumberOrNull(alignment.length)},
            {"lines", alignment.lines},
            {"curves", alignment.curves},
            {"spirals", alignment.spirals},
            {"crossSections", alignment.crossSections},
            {"profiles", TextsAsJson(alignment.profiles)}};
}

ordered_json NetworkAsJson(const LandXmlPipeNetwork& network)
{
    return {{"name", ToUtf8(network.name)}, {"structures", network.structures}, {"pipes", network.pipes}};
}

ordered_json WarningAsJson(const LandXmlWarning& warning)
{
    return {{"line", warning.line}, {"text", ToUtf8(warning.text)}};
}

template <typename Item>
ordered_json ListAsJson(const std::vector<Item>& items, ordered_json (*convert)(const Item&))
{
    ordered_json list = ordered_json::array();
    for (const Item& item : items)
    {
        list.push_back(convert(item));
    }
    return list;
}

}  // namespace

ordered_json ContentsAsJson(const LandXmlContents& contents)
{
    const LandXmlHeading& heading = contents.heading;
    return {{"version", ToUtf8(heading.version)},
            {"units", TextOrNull(heading.units)},
            {"linearUnit", TextOrNull(heading.linearUnit)},
            {"project", TextOrNull(heading.project)},
            {"application", TextOrNull(heading.application)},
            {"coordinateSystem", TextOrNull(heading.coordinateSystem)},
            {"epsgCode", TextOrNull(heading.epsgCode)},
            {"points", PointsAsJson(contents.points)},
            {"surfaces", ListAsJson(contents.surfaces, &SurfaceAsJson)},
            {"alignments", ListAsJson(contents.alignments, &AlignmentAsJson)},
            {"parcels", TextsAsJson(contents.parcels)},
            {"planFeatures", TextsAsJson(contents.planFeatures)},
            {"pipeNetworks", ListAsJson(contents.pipeNetworks, &NetworkAsJson)},
            {"observations", CountsAsJson(contents.observations)},
            {"others", CountsAsJson(contents.others)},
            {"warnings", ListAsJson(contents.warnings, &WarningAsJson)}};
}

}  // namespace quonhost
