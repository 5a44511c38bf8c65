#include "host/landxml/LandXmlFrame.h"

#include "host/Console.h"
#include "host/landxml/DomBranch.h"
#include "host/landxml/XmlEncoding.h"
#include "xml/QuonXml.h"

#include <memory>

namespace quonhost
{
namespace
{

constexpr std::string_view kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
constexpr std::string_view kRootEnd = "\n</LandXML>";

// The library writes version 1.0. The content is the same in both versions.
void SetVersion12(const DomBranch& root)
{
    root.Set(L"xmlns", L"http://www.landxml.org/schema/LandXML-1.2");
    root.Set(L"xsi:schemaLocation",
             L"http://www.landxml.org/schema/LandXML-1.2 "
             L"http://www.landxml.org/schema/LandXML-1.2/LandXML-1.2.xsd");
    root.Set(L"version", L"1.2");
}

void AddUnits(const DomBranch& root, LandXmlUnits kind)
{
    const bool isMetric = kind == LandXmlUnits::kMetric;
    const wchar_t* const foot = kind == LandXmlUnits::kSurveyFoot ? L"USSurveyFoot" : L"foot";
    const DomBranch units = root.Add(L"Units");
    const DomBranch unit = units.Add(isMetric ? L"Metric" : L"Imperial");
    unit.Set(L"areaUnit", isMetric ? L"squareMeter" : L"squareFoot");
    unit.Set(L"linearUnit", isMetric ? L"meter" : foot);
    unit.Set(L"volumeUnit", isMetric ? L"cubicMeter" : L"cubicYard");
    unit.Set(L"temperatureUnit", isMetric ? L"celsius" : L"fahrenheit");
    unit.Set(L"pressureUnit", isMetric ? L"milliBars" : L"inHG");
    units.Close();
}

std::string TextOf(QuonXml& xml)
{
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    const HRESULT result = xml.SaveToMemory(xml.GetDocument(), bytes, size);
    const std::unique_ptr<unsigned char[]> owner(bytes);
    if (FAILED(result))
    {
        _com_raise_error(result);
    }
    return XmlBytesAsUtf8(L"the new document", std::string(reinterpret_cast<const char*>(bytes), size));
}

}  // namespace

LandXmlFrame MakeLandXmlFrame(const LandXmlHeader& header)
{
    QuonXml xml(L"", false, false, false);
    const MSXML2::IXMLDOMDocumentPtr document = xml.GetDocument();
    CreateLandXmlDocument(document);
    const DomBranch root(document, GetLandXmlRoot(document), 0);
    if (header.isVersion12)
    {
        SetVersion12(root);
    }
    AddUnits(root, header.units);
    root.Add(L"Project").Set(L"name", header.project.c_str());
    const DomBranch application = root.Add(L"Application");
    application.Set(L"name", L"quonhost");
    application.Set(L"desc", L"The console host of QuonWin32Utils");
    root.Close();
    const std::string text = TextOf(xml);
    // Parsers differ in whether they write a declaration.
    const size_t begin = text.find("<LandXML"), end = text.rfind(kRootEnd);
    if (begin == std::string::npos || end == std::string::npos)
    {
        throw CommandError(std::wstring_view(L"the XML parser did not write the document"));
    }
    return {std::string(kDeclaration) + text.substr(begin, end - begin), std::string(kRootEnd) + "\n"};
}

}  // namespace quonhost
