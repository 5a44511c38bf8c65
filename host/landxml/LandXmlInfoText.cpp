#include "host/landxml/LandXmlInfoText.h"

#include "host/Console.h"
#include "host/landxml/NumberText.h"

#include <nlohmann/json.hpp>

namespace quonhost
{
namespace
{

using nlohmann::ordered_json;

std::wstring Named(const wchar_t* name, const std::wstring& text)
{
    std::wstring line = name;
    line.resize(12, L' ');
    return line + text;
}

std::wstring Range(const wchar_t* name, double from, double to)
{
    return std::wstring(name) + L" " + ToWide(FormatNumber(from)) + L" to " + ToWide(FormatNumber(to));
}

std::wstring Quoted(const std::wstring& text)
{
    return L"\"" + text + L"\"";
}

// How many there are and how many of them are special, if any.
std::wstring Counted(size_t count, const wchar_t* name, size_t special, const wchar_t* how)
{
    const std::wstring text = std::to_wstring(count) + L" " + name;
    return special == 0 ? text : text + L" (" + std::to_wstring(special) + L" " + how + L")";
}

std::wstring DescribeSurface(const SurfaceInfo& surface)
{
    std::wstring text = Quoted(surface.name) + L": " +
                        Counted(surface.points, L"points", surface.lostPoints, L"without coordinates") + L", " +
                        Counted(surface.faces, L"faces", surface.invisibleFaces, L"invisible");
    if (surface.extents)
    {
        const SurfaceExtents& extents = *surface.extents;
        text += L", " + Range(L"northing", extents.minNorthing, extents.maxNorthing);
        text += L", " + Range(L"easting", extents.minEasting, extents.maxEasting);
        text += L", " + Range(L"elevation", extents.minElevation, extents.maxElevation);
    }
    return text;
}

std::wstring DescribeAlignment(const AlignmentInfo& alignment)
{
    return Quoted(alignment.name) +
           (alignment.length ? L": length " + ToWide(FormatNumber(*alignment.length)) : std::wstring());
}

ordered_json SurfaceAsJson(const SurfaceInfo& surface)
{
    ordered_json json = {{"name", ToUtf8(surface.name)},
                         {"points", surface.points},
                         {"pointsWithoutCoordinates", surface.lostPoints},
                         {"faces", surface.faces},
                         {"invisibleFaces", surface.invisibleFaces},
                         {"extents", nullptr}};
    if (surface.extents)
    {
        const SurfaceExtents& extents = *surface.extents;
        json["extents"] = {{"northing", {extents.minNorthing, extents.maxNorthing}},
                           {"easting", {extents.minEasting, extents.maxEasting}},
                           {"elevation", {extents.minElevation, extents.maxElevation}}};
    }
    return json;
}

ordered_json TextOrNull(const std::wstring& text)
{
    return text.empty() ? ordered_json(nullptr) : ordered_json(ToUtf8(text));
}

}  // namespace

std::vector<std::wstring> DescribeInfo(const LandXmlInfo& info)
{
    std::vector<std::wstring> lines;
    lines.push_back(Named(L"version", info.version));
    const std::wstring unit = info.linearUnit.empty() ? L"" : L" (" + info.linearUnit + L")";
    lines.push_back(Named(L"units", info.units.empty() ? L"not told" : info.units + unit));
    if (!info.project.empty())
    {
        lines.push_back(Named(L"project", Quoted(info.project)));
    }
    lines.push_back(Named(L"points", std::to_wstring(info.points)));
    for (const SurfaceInfo& surface : info.surfaces)
    {
        lines.push_back(Named(L"surface", DescribeSurface(surface)));
    }
    for (const AlignmentInfo& alignment : info.alignments)
    {
        lines.push_back(Named(L"alignment", DescribeAlignment(alignment)));
    }
    return lines;
}

ordered_json InfoAsJson(const LandXmlInfo& info)
{
    ordered_json json = {{"version", ToUtf8(info.version)},
                         {"units", TextOrNull(info.units)},
                         {"linearUnit", TextOrNull(info.linearUnit)},
                         {"project", TextOrNull(info.project)},
                         {"points", info.points},
                         {"surfaces", ordered_json::array()},
                         {"alignments", ordered_json::array()}};
    for (const SurfaceInfo& surface : info.surfaces)
    {
        json["surfaces"].push_back(SurfaceAsJson(surface));
    }
    for (const AlignmentInfo& alignment : info.alignments)
    {
        const ordered_json length = alignment.length ? ordered_json(*alignment.length) : ordered_json(nullptr);
        json["alignments"].push_back(ordered_json{{"name", ToUtf8(alignment.name)}, {"length", length}});
    }
    return json;
}

}  // namespace quonhost
