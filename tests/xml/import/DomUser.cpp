// A program of a user of the XML layer: it reaches the DOM as after an import of the type library. It is built twice,
// with the library's own headers of the DOM and after an import, which a hand-written equivalent stands for.
#if defined(QUON_HOST_IMPORTS_MSXML2)
#include "ImportedMsxml2.h"
#endif

#include "xml/NodeArray.h"
#include "xml/QuonXml.h"
#include "xml/XmlDocument.h"
#include "xml/XmlNodes.h"
#include "xml/XmlValues.h"

#include <cstdio>
#include <cwchar>

namespace
{

int g_failures = 0;

void Check(bool holds, const char* what)
{
    if (!holds)
    {
        std::printf("does not hold: %s\n", what);
        ++g_failures;
    }
}
#define CHECK(condition) Check(condition, #condition)

bool Count(CString, MSXML2::IXMLDOMNodePtr& node, __int64 user)
{
    CHECK(node->GetnodeName().length() > 0);
    ++*reinterpret_cast<int*>(user);
    return true;
}

void UseMembers(const MSXML2::IXMLDOMDocumentPtr& document)
{
    const MSXML2::IXMLDOMNodePtr point = document->selectSingleNode(L"LandXML/p");
    CHECK(std::wcscmp(point->GetnodeName(), L"p") == 0);
    CHECK(std::wcscmp(point->Gettext(), L"1 2") == 0);
    CHECK(point->GetchildNodes()->Getlength() == 1);
    CHECK(!document->selectSingleNode(L"none"));
    const MSXML2::IXMLDOMElementPtr element(point);
    element->setAttribute(L"id", 7L);
    CHECK(std::wcscmp(element->getAttribute(L"id").bstrVal, L"7") == 0);
    const MSXML2::IXMLDOMNodePtr added = document->GetdocumentElement()->appendChild(document->createElement(L"q"));
    CHECK(std::wcscmp(added->GetnodeName(), L"q") == 0);
    document->Putasync(VARIANT_FALSE);
    CHECK(document->Getasync() == VARIANT_FALSE);
    BSTR name = nullptr;
    CHECK(added->get_nodeName(&name) == S_OK);
    ::SysFreeString(name);
    MSXML2::IXMLDOMNodePtr found;
    CHECK(document->raw_selectSingleNode(_bstr_t(L"LandXML/q"), &found) == S_OK && found);
#if defined(_MSC_VER)
    document->async = VARIANT_TRUE;
    CHECK(document->async == VARIANT_TRUE);
    CHECK(std::wcscmp(document->documentElement->nodeName, L"LandXML") == 0);
    CHECK(point->childNodes->length == 1);
    point->text = L"3 4";
    CHECK(std::wcscmp(point->text, L"3 4") == 0);
#endif
    bool raised = false;
    try
    {
        MSXML2::IXMLDOMNodePtr()->GetnodeName();
    }
    catch (const _com_error& error)
    {
        raised = error.Error() == E_POINTER;
    }
    CHECK(raised);
}

void UseLibrary(QuonXml& xml)
{
    const MSXML2::IXMLDOMDocumentPtr document = xml.GetDocument();
    SetXmlLong(document->selectSingleNode(L"LandXML/p"), L"n", 5);
    CHECK(GetXmlLong(document->selectSingleNode(L"LandXML/p"), L"@n") == 5);
    const QuonNodeArrayOwner nodes(FindNodesByName(GetDocumentChildNodes(document), L"p", true));
    CHECK(nodes->GetSize() == 1 && std::wcscmp(nodes->GetAt(0)->GetnodeName(), L"p") == 0);
    MSXML2::IXMLDOMNodePtr text;
    AppendNodeOfType(text, document, GetLandXmlRoot(document), MSXML2::NODE_TEXT, L"", L"");
    CHECK(std::wcscmp(text->GetnodeName(), L"#text") == 0);
    int count = 0;
    CHECK(xml.WalkTree(&Count, reinterpret_cast<__int64>(&count)));
    CHECK(count > 0);
}

}  // namespace

int main()
{
    {
        QuonXml xml(L"", false, false, false);
        CHECK(xml.GetDocument()->loadXML(L"<LandXML><p>1 2</p></LandXML>") == VARIANT_TRUE);
        CHECK(xml.CheckParseError(xml.GetDocument()) == S_OK);
        UseMembers(xml.GetDocument());
        UseLibrary(xml);
    }
    std::printf(g_failures == 0 ? "the DOM is used as after an import\n" : "");
    return g_failures;
}
