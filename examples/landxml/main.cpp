// Writes a LandXML document with three points, loads it again and reads them.
#include "paths/QuonPath.h"

#include "xml/NodeArray.h"
#include "xml/QuonXml.h"
#include "xml/XmlDocument.h"
#include "xml/XmlNodes.h"
#include "xml/XmlValues.h"

#include <cstdio>
#include <memory>

namespace
{

void WriteSurvey(const CString& fileName)
{
    QuonXml xml(L"", false, false, false);
    const MSXML2::IXMLDOMDocumentPtr document = xml.GetDocument();
    CreateLandXmlDocument(document);  // the root element with its eight header attributes
    const MSXML2::IXMLDOMNodePtr points = AppendNewElement(document, GetLandXmlRoot(document), L"CgPoints");
    const wchar_t* const coordinates[] = {L"5000.25 2000.5 101.325", L"5010 2004.75 101.5", L"5020.125 2010 102"};
    for (int index = 0; index < 3; ++index)
    {
        const MSXML2::IXMLDOMNodePtr point = AppendNewElement(document, points, L"CgPoint");
        SetXmlLong(point, L"name", index + 1);
        MSXML2::IXMLDOMNodePtr text;
        AppendTextChild(text, document, point, coordinates[index]);
    }
    xml.Save(fileName);
}

void ReadSurvey(const CString& fileName)
{
    QuonXml xml(fileName, false, false, false);
    xml.Load();
    // The caller owns the arrays. That of the nodes holds references, which its owner releases first.
    const QuonNodeArrayOwner points(GetChildNodesOfRoot(xml.GetDocument(), L"CgPoints", L"CgPoint"));
    const std::unique_ptr<CStringArray> names(GetAttributeValuesOfNodes(points.get(), L"name"));
    const std::unique_ptr<CStringArray> texts(GetTextsOfNodes(points.get()));
    for (INT_PTR index = 0; index < names->GetSize(); ++index)
    {
        std::printf("point %ls: %ls\n", names->GetAt(index).GetString(), texts->GetAt(index).GetString());
    }
}

}  // namespace

int main()
{
    const QuonPath file = QuonPath(QuonFolderTemp, 0) + L"quon landxml example.xml";
    const CString fileName = static_cast<const wchar_t*>(file);
    try
    {
        WriteSurvey(fileName);
        ReadSurvey(fileName);
        // What fails names its step.
        const std::unique_ptr<CStringArray> none(GetTextsOfChildren(nullptr, L"CgPoints", L"CgPoint"));
    }
    catch (const CString& status)
    {
        std::printf("status: %ls\n", status.GetString());
    }
    DeleteFileW(fileName);
    return 0;
}
