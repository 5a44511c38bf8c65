#include "host/landxml/LandXmlParts.h"

#include "host/Console.h"
#include "host/landxml/NumberText.h"
#include "host/landxml/Steps.h"

namespace quonhost
{
namespace
{

void AddGeometry(const XmlElement& parent, LineKind kind, PlacesByName& places, LandXmlContents& contents)
{
    ForEachChild(parent, "CoordGeom", [&](const XmlElement& geometry) {
        for (std::vector<VxGePoint3d>& line : ReadGeometry(geometry, places, contents))
        {
            contents.lines.push_back({kind, parent.Attribute("name"), L"", std::move(line)});
        }
    });
}

size_t CountOf(const XmlElement& parent, std::string_view name)
{
    size_t count = 0;
    ForEachChild(parent, name, [&count](const XmlElement&) { ++count; });
    return count;
}

void ReadProfile(const XmlElement& profile, LandXmlAlignment& alignment)
{
    const size_t before = alignment.profiles.size();
    for (XmlElement child = profile.FirstChild(); child; child = child.Next())
    {
        if (child.Is("ProfAlign") || child.Is("ProfSurf"))
        {
            alignment.profiles.push_back(child.Attribute("name"));
        }
    }
    if (alignment.profiles.size() == before)
    {
        alignment.profiles.push_back(profile.Attribute("name"));
    }
}

void ReadAlignment(const XmlElement& element, PlacesByName& places, LandXmlContents& contents)
{
    LandXmlAlignment alignment;
    alignment.name = element.Attribute("name");
    alignment.start = ParseNumber(element.Attribute("staStart"));
    alignment.length = ParseNumber(element.Attribute("length"));
    ForEachChild(element, "CoordGeom", [&alignment](const XmlElement& geometry) {
        alignment.lines += CountOf(geometry, "Line") + CountOf(geometry, "IrregularLine") + CountOf(geometry, "Chain");
        alignment.curves += CountOf(geometry, "Curve");
        alignment.spirals += CountOf(geometry, "Spiral");
    });
    ForEachChild(element, "Profile", [&alignment](const XmlElement& profile) { ReadProfile(profile, alignment); });
    ForEachChild(element, "CrossSects", [&alignment](const XmlElement& sections) {
        alignment.crossSections += CountOf(sections, "CrossSect");
    });
    AddGeometry(element, LineKind::kAlignment, places, contents);
    contents.alignments.push_back(std::move(alignment));
}

void ReadParcelList(const XmlElement& list, PlacesByName& places, LandXmlContents& contents)
{
    ForEachChild(list, "Parcel", [&](const XmlElement& parcel) {
        contents.parcels.push_back(parcel.Attribute("name"));
        AddGeometry(parcel, LineKind::kParcel, places, contents);
        ForEachChild(parcel, "Parcels", [&](const XmlElement& inner) { ReadParcelList(inner, places, contents); });
        Steps::StopIfAsked();
    });
}

void ReadPipeNetwork(const XmlElement& element, PlacesByName& places, LandXmlContents& contents)
{
    LandXmlPipeNetwork network;
    network.name = element.Attribute("name");
    std::unordered_map<std::wstring, VxGePoint3d> structures;
    ForEachChild(element, "Structs", [&](const XmlElement& list) {
        ForEachChild(list, "Struct", [&](const XmlElement& structure) {
            ++network.structures;
            const XmlElement center = structure.Child("Center");
            if (const auto place = center ? ReadPlace(center, places) : std::nullopt)
            {
                structures.emplace(structure.Attribute("name"), *place);
            }
        });
    });
    ForEachChild(element, "Pipes", [&](const XmlElement& list) {
        ForEachChild(list, "Pipe", [&](const XmlElement& pipe) {
            ++network.pipes;
            const auto start = structures.find(pipe.Attribute("refStart")),
                       end = structures.find(pipe.Attribute("refEnd"));
            if (start != structures.end() && end != structures.end())
            {
                contents.lines.push_back({LineKind::kPipe, pipe.Attribute("name"), L"", {start->second, end->second}});
            }
        });
    });
    contents.pipeNetworks.push_back(std::move(network));
}

}  // namespace

void ReadAlignments(const XmlElement& root, PlacesByName& places, LandXmlContents& contents)
{
    ForEachChild(root, "Alignments", [&](const XmlElement& list) {
        ForEachChild(list, "Alignment",
                     [&](const XmlElement& alignment) { ReadAlignment(alignment, places, contents); });
    });
}

void ReadParcels(const XmlElement& root, PlacesByName& places, LandXmlContents& contents)
{
    ForEachChild(root, "Parcels", [&](const XmlElement& list) { ReadParcelList(list, places, contents); });
}

void ReadPlanFeatures(const XmlElement& root, PlacesByName& places, LandXmlContents& contents)
{
    ForEachChild(root, "PlanFeatures", [&](const XmlElement& list) {
        ForEachChild(list, "PlanFeature", [&](const XmlElement& feature) {
            contents.planFeatures.push_back(feature.Attribute("name"));
            AddGeometry(feature, LineKind::kPlanFeature, places, contents);
        });
    });
}

void ReadPipeNetworks(const XmlElement& root, PlacesByName& places, LandXmlContents& contents)
{
    ForEachChild(root, "PipeNetworks", [&](const XmlElement& list) {
        ForEachChild(list, "PipeNetwork",
                     [&](const XmlElement& network) { ReadPipeNetwork(network, places, contents); });
    });
}

}  // namespace quonhost
