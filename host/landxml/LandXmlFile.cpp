#include "host/landxml/LandXmlFile.h"

#include "host/Console.h"
#include "host/Streams.h"
#include "host/landxml/FileErrors.h"
#include "host/landxml/LandXmlParts.h"
#include "host/landxml/XmlEncoding.h"

#include <algorithm>

namespace quonhost
{
namespace
{

// The version that the root gives, or else the one at the end of its namespace.
std::wstring VersionOf(const XmlElement& root)
{
    const std::wstring version = root.Attribute("version");
    if (!version.empty())
    {
        return version;
    }
    const std::string_view space = root.DefaultNamespace();
    return ToWide(space.substr(space.rfind('-') + 1));
}

void RequireLandXml(const std::wstring& name, const XmlElement& root)
{
    if (root.LocalName() != "LandXML")
    {
        throw FileError(name, L"not a LandXML document: its root is <" + ToWide(root.QualifiedName()) + L">");
    }
    const std::wstring version = VersionOf(root);
    if (version != L"1.0" && version != L"1.1" && version != L"1.2")
    {
        throw FileError(name, L"unknown LandXML version \"" + version + L"\" (1.0, 1.1 and 1.2 are known)");
    }
}

std::wstring Joined(const std::wstring& a, const std::wstring& b)
{
    return a.empty() || b.empty() ? a + b : a + L' ' + b;
}

std::wstring FirstOf(std::initializer_list<std::wstring> texts)
{
    const auto found = std::find_if(texts.begin(), texts.end(), [](const std::wstring& text) { return !text.empty(); });
    return found == texts.end() ? std::wstring() : *found;
}

LandXmlHeading ReadHeading(const XmlElement& root)
{
    LandXmlHeading heading;
    heading.version = VersionOf(root);
    const XmlElement units = root.Child("Units");
    for (const char* const system : {"Metric", "Imperial"})
    {
        if (const XmlElement unit = units ? units.Child(system) : XmlElement())
        {
            heading.units = ToWide(system);
            heading.linearUnit = unit.Attribute("linearUnit");
        }
    }
    if (const XmlElement project = root.Child("Project"))
    {
        heading.project = project.Attribute("name");
    }
    if (const XmlElement application = root.Child("Application"))
    {
        heading.application = Joined(application.Attribute("name"), application.Attribute("version"));
    }
    if (const XmlElement system = root.Child("CoordinateSystem"))
    {
        heading.epsgCode = system.Attribute("epsgCode");
        heading.coordinateSystem = FirstOf({system.Attribute("name"), system.Attribute("desc"),
                                            system.Attribute("horizontalCoordinateSystemName"),
                                            system.Attribute("horizontalDatum"), system.Attribute("ogcWktCode")});
    }
    return heading;
}

}  // namespace

void Warn(LandXmlContents& contents, const XmlElement& element, const std::wstring& text)
{
    contents.warnings.push_back({element.Line(), text});
}

LandXmlContents ReadLandXmlBytes(const std::wstring& name, std::string bytes)
{
    if (bytes.find_first_not_of(" \t\r\n") == std::string::npos)
    {
        throw FileError(name, L"the file is empty");
    }
    const XmlTree tree(name, XmlBytesAsUtf8(name, std::move(bytes)));
    const XmlElement root = tree.Root();
    RequireLandXml(name, root);
    LandXmlContents contents;
    contents.heading = ReadHeading(root);
    ReadPoints(root, contents);
    PlacesByName places(contents.points);
    ReadSurfaces(root, contents);
    ReadAlignments(root, places, contents);
    ReadParcels(root, places, contents);
    ReadPlanFeatures(root, places, contents);
    ReadPipeNetworks(root, places, contents);
    CountElements(root, contents);
    std::stable_sort(contents.warnings.begin(), contents.warnings.end(),
                     [](const LandXmlWarning& a, const LandXmlWarning& b) { return a.line < b.line; });
    return contents;
}

LandXmlContents ReadLandXml(const std::wstring& name)
{
    return ReadLandXmlBytes(ShownName(name), ReadWholeInput(name));
}

}  // namespace quonhost
