#include "host/landxml/LandXmlParts.h"

#include "host/Console.h"
#include "host/landxml/NumberText.h"
#include "host/landxml/PlaceText.h"
#include "host/landxml/PlanCurves.h"

#include <limits>

namespace quonhost
{
namespace
{

using Places = std::vector<VxGePoint3d>;

// The place of a child such as Start, Center or End.
std::optional<VxGePoint3d> PlaceOfChild(const XmlElement& piece, std::string_view name, PlacesByName& places)
{
    const XmlElement child = piece.Child(name);
    return child ? ReadPlace(child, places) : std::nullopt;
}

double NumberOfAttribute(const XmlElement& element, std::string_view name, double otherwise)
{
    return ParseNumber(element.Attribute(name)).value_or(otherwise);
}

bool IsClockwise(const XmlElement& piece)
{
    return piece.Attribute("rot") == L"cw";
}

std::optional<Places> ReadLine(const XmlElement& piece, PlacesByName& places)
{
    const auto start = PlaceOfChild(piece, "Start", places), end = PlaceOfChild(piece, "End", places);
    return start && end ? std::optional(Places{*start, *end}) : std::nullopt;
}

std::optional<Places> ReadCurve(const XmlElement& piece, PlacesByName& places)
{
    const auto start = PlaceOfChild(piece, "Start", places), end = PlaceOfChild(piece, "End", places);
    const auto center = PlaceOfChild(piece, "Center", places);
    return start && end && center ? std::optional(ArcPlaces({*start, *center, *end, IsClockwise(piece)}))
                                  : std::nullopt;
}

std::optional<Places> ReadSpiral(const XmlElement& piece, PlacesByName& places)
{
    const auto start = PlaceOfChild(piece, "Start", places), end = PlaceOfChild(piece, "End", places);
    const auto intersection = PlaceOfChild(piece, "PI", places);
    if (!start || !end || !intersection)
    {
        return std::nullopt;
    }
    constexpr double kStraight = std::numeric_limits<double>::infinity();
    const double chord = std::hypot(end->x - start->x, end->y - start->y);
    // "INF" is not a number and means a straight end.
    return SpiralPlaces({*start, *end, *intersection, NumberOfAttribute(piece, "length", chord),
                         NumberOfAttribute(piece, "radiusStart", kStraight),
                         NumberOfAttribute(piece, "radiusEnd", kStraight), IsClockwise(piece)});
}

std::optional<Places> ReadIrregularLine(const XmlElement& piece, PlacesByName& places)
{
    Places line;
    const auto add = [&line](const VxGePoint3d& place) {
        if (line.empty() || !IsSameInPlan(line.back(), place))
        {
            line.push_back(place);
        }
    };
    if (const auto start = PlaceOfChild(piece, "Start", places))
    {
        add(*start);
    }
    for (const auto& [name, dimensions] : {std::pair("PntList2D", 2U), std::pair("PntList3D", 3U)})
    {
        const XmlElement list = piece.Child(name);
        for (const VxGePoint3d& place : list ? ParsePlaces(list.Text(), dimensions).value_or(Places()) : Places())
        {
            add(place);
        }
    }
    if (const auto end = PlaceOfChild(piece, "End", places))
    {
        add(*end);
    }
    return line.size() < 2 ? std::nullopt : std::optional(std::move(line));
}

// A line through points that are given by their names.
std::optional<Places> ReadChain(const XmlElement& piece, PlacesByName& places)
{
    Places line;
    bool isGood = true;
    const std::string names = piece.Text();
    ForEachWord(names, [&](std::string_view name) {
        const VxGePoint3d* const place = places.Find(ToWide(name));
        isGood = isGood && place != nullptr;
        line.push_back(place == nullptr ? VxGePoint3d() : *place);
    });
    return isGood && line.size() >= 2 ? std::optional(std::move(line)) : std::nullopt;
}

using ReadPiece = std::optional<Places> (*)(const XmlElement& piece, PlacesByName& places);

// Null for an element that is not a piece of a geometry.
ReadPiece ReaderOf(const XmlElement& piece)
{
    constexpr std::pair<std::string_view, ReadPiece> kReaders[] = {
        {"Line", &ReadLine},   {"Curve", &ReadCurve}, {"Spiral", &ReadSpiral}, {"IrregularLine", &ReadIrregularLine},
        {"Chain", &ReadChain},
    };
    for (const auto& [name, reader] : kReaders)
    {
        if (piece.Is(name))
        {
            return reader;
        }
    }
    return nullptr;
}

// Appends a piece to the last line when it begins where that ends, but for rounding.
void Append(std::vector<Places>& lines, Places piece)
{
    constexpr double kSame = 1e-3;
    if (!lines.empty())
    {
        const VxGePoint3d& last = lines.back().back();
        if (std::hypot(piece[0].x - last.x, piece[0].y - last.y) <= kSame)
        {
            lines.back().insert(lines.back().end(), piece.begin() + 1, piece.end());
            return;
        }
    }
    lines.push_back(std::move(piece));
}

}  // namespace

std::optional<VxGePoint3d> ReadPlace(const XmlElement& element, PlacesByName& places)
{
    if (const std::optional<VxGePoint3d> place = ParsePlace(element.Text()))
    {
        return place;
    }
    const VxGePoint3d* const found =
        element.HasAttribute("pntRef") ? places.Find(element.Attribute("pntRef")) : nullptr;
    return found == nullptr ? std::nullopt : std::optional(*found);
}

std::vector<Places> ReadGeometry(const XmlElement& geometry, PlacesByName& places, LandXmlContents& contents)
{
    std::vector<Places> lines;
    for (XmlElement piece = geometry.FirstChild(); piece; piece = piece.Next())
    {
        const ReadPiece read = ReaderOf(piece);
        if (read == nullptr)
        {
            continue;
        }
        if (std::optional<Places> line = read(piece, places))
        {
            Append(lines, std::move(*line));
        }
        else
        {
            Warn(contents, piece,
                 L"<" + ToWide(piece.LocalName()) + L"> lacks a place, or has one that cannot be read");
        }
    }
    return lines;
}

}  // namespace quonhost
