#include "helpers/ImportPatch.h"
#include "xml/XmlDocumentTestSupport.h"

#include "base/QuonEllipsis.h"
#include "xml/ComHelpers.h"

#include <ctime>

namespace
{

using namespace quon_test;

constexpr wchar_t kLibrary[] = L"QuonWin32Utils.dll";

__time64_t g_now = 0;
int g_clockReads = 0;

// The library's clock stands at a local time.
class FixedClock
{
public:
    FixedClock(int year, int month, int day, int hour, int minute, int second)
    {
        tm local = {};
        local.tm_year = year - 1900;
        local.tm_mon = month - 1;
        local.tm_mday = day;
        local.tm_hour = hour;
        local.tm_min = minute;
        local.tm_sec = second;
        local.tm_isdst = -1;
        g_now = ::_mktime64(&local);
        g_clockReads = 0;
    }

private:
    ImportPatch<decltype(&::_time64)> m_patch{kLibrary, "_time64", [](__time64_t*) {
                                                  ++g_clockReads;
                                                  return g_now;
                                              }};
};

TEST_F(XmlDocumentTest, AppendsElementsToAParentOrTheDocument)
{
    const MSXML2::IXMLDOMDocumentPtr document = EmptyDocument();
    const MSXML2::IXMLDOMNodePtr root = AppendNewElement(document, MSXML2::IXMLDOMNodePtr(), L"root");
    const MSXML2::IXMLDOMNodePtr child = AppendNewElement(document, root, L"child");
    EXPECT_STREQ(child->GetnodeName(), L"child");
    EXPECT_EQ(Xml(document), L"<root><child/></root>");
    ForwardingAnyNode refusing(root);
    refusing.plan.Replace("appendChild", Returns(E_ACCESSDENIED));
    EXPECT_FALSE(AppendNewElement(document, MSXML2::IXMLDOMNodePtr(&refusing), L"e")) << "empty, not raised";
    EXPECT_EQ(ErrorOf([&] { AppendNewElement(m_none, root, L"e"); }), E_POINTER);
    m_document.plan.Replace("createElement", Returns(S_FALSE));
    EXPECT_FALSE(AppendNewElement(m_pointer, root, L"e"));
    m_document.plan.Replace("createElement", Returns(E_ACCESSDENIED));
    EXPECT_EQ(ErrorOf([&] { AppendNewElement(m_pointer, root, L"e"); }), E_ACCESSDENIED);
}

// The attributes of an element in the order in which they are set.
class Recorder : public ForwardingElement
{
public:
    using ForwardingElement::ForwardingElement;
    std::vector<std::pair<std::wstring, std::wstring>> set;
    HRESULT STDMETHODCALLTYPE raw_setAttribute(BSTR name, VARIANT value) override
    {
        set.emplace_back(name, value.vt == VT_BSTR ? value.bstrVal : L"(no text)");
        return ForwardingElement::raw_setAttribute(name, value);
    }
};

TEST_F(XmlDocumentTest, LandXmlHeadersHaveEightAttributesInOrder)
{
    const std::vector<std::pair<std::wstring, std::wstring>> expected = {
        {L"xmlns", L"http://www.landxml.org/schema/landxml-1.0"},
        {L"xmlns:xsi", L"http://www.w3.org/2001/XMLSchema-instance"},
        {L"xsi:schemaLocation",
         L"http://www.landxml.org/schema/LandXML-1.0 http://www.landxml.org/schema/LandXML-1.0/LandXML-1.0.xsd"},
        {L"version", L"1.0"},
        {L"date", L"2007-03-04"},
        {L"time", L"14-05-09"},
        {L"readOnly", L"false"},
        {L"language", L"English"},
    };
    const FixedClock clock(2007, 3, 4, 14, 5, 9);

    // The document hands out an element that records: appending it gives it back.
    class Document : public ForwardingDocument
    {
    public:
        using ForwardingDocument::ForwardingDocument;
        MSXML2::IXMLDOMNode* root = nullptr;
        HRESULT STDMETHODCALLTYPE raw_appendChild(MSXML2::IXMLDOMNode*, MSXML2::IXMLDOMNode** out) override
        {
            Give(root, out);
            return S_OK;
        }
    };
    const MSXML2::IXMLDOMDocumentPtr real = EmptyDocument();
    Recorder root{real->createElement(L"LandXML")};
    Document document(real);
    document.root = &root;
    CreateLandXmlDocument(MSXML2::IXMLDOMDocumentPtr(&document));
    EXPECT_EQ(root.set, expected);
    EXPECT_EQ(root.references, 1);
    EXPECT_EQ(g_clockReads, 1) << "date and time are of one moment";

    const MSXML2::IXMLDOMDocumentPtr written = EmptyDocument();
    CreateLandXmlDocument(written);
    std::wstring text = L"<LandXML";
    for (const auto& [name, value] : expected)
    {
        text += L" " + name + L"=\"" + value + L"\"";
    }
    EXPECT_EQ(Xml(written), text + L"/>") << "one root, nothing else";
    EXPECT_STREQ(GetLandXmlRoot(written)->GetnodeName(), L"LandXML");
}

TEST_F(XmlDocumentTest, ALandXmlRootThatCannotBeAppendedGetsNoAttributes)
{
    m_document.plan.Replace("appendChild", Returns(E_ACCESSDENIED));
    CreateLandXmlDocument(m_pointer);
    EXPECT_EQ(m_document.plan.Count("createElement"), 1);
    EXPECT_EQ(ErrorOf([&] { CreateLandXmlDocument(m_none); }), E_POINTER);
}

TEST_F(XmlDocumentTest, FindsTheLandXmlRoot)
{
    EXPECT_TRUE(GetLandXmlRoot(Parse(L"<?xml version='1.0'?><LandXML/>")));
    EXPECT_TRUE(GetLandXmlRoot(Parse(L"<LandXML xmlns='http://www.landxml.org/schema/LandXML-1.2'/>")));
    EXPECT_FALSE(GetLandXmlRoot(Parse(L"<landxml/>")));
    EXPECT_FALSE(GetLandXmlRoot(Parse(L"<a><LandXML/></a>")));
    EXPECT_FALSE(GetLandXmlRoot(EmptyDocument()));
    EXPECT_EQ(ErrorOf([&] { GetLandXmlRoot(m_none); }), E_POINTER);
}

TEST_F(XmlDocumentTest, SeesFilesAndFolders)
{
    EXPECT_FALSE(XmlFileExists(Path(L"a.xml")));
    m_folder.WriteFile(L"a.xml");
    EXPECT_TRUE(XmlFileExists(Path(L"a.xml")));
    EXPECT_TRUE(XmlFileExists(m_folder.Path().c_str()));
    EXPECT_FALSE(XmlFileExists(L""));
}

TEST_F(XmlDocumentTest, LoadsAFile)
{
    m_folder.WriteFile(L"in.xml", "<a>t</a>");
    const MSXML2::IXMLDOMDocumentPtr document = EmptyDocument();
    EXPECT_TRUE(LoadXmlFile(Path(L"in.xml"), document));
    EXPECT_EQ(Xml(document), L"<a>t</a>");
}

// Whether the load waits is the caller's choice, made before.
TEST_F(XmlDocumentTest, LoadingLeavesTheDocumentsWayOfLoadingAlone)
{
    m_folder.WriteFile(L"in.xml", "<a/>");
    for (const VARIANT_BOOL async : {VARIANT_TRUE, VARIANT_FALSE})
    {
        m_pointer->Putasync(async);
        const int puts = m_document.plan.Count("put_async");
        EXPECT_TRUE(LoadXmlFile(Path(L"in.xml"), m_pointer));
        EXPECT_EQ(m_document.plan.Count("put_async"), puts);
        EXPECT_EQ(m_pointer->Getasync(), async);
    }
}

TEST_F(XmlDocumentTest, LoadFailuresHaveTheirTexts)
{
    m_folder.WriteFile(L"bad.xml", "<a>");
    EXPECT_EQ(StatusOf([&] { LoadXmlFile(L"", m_none); }), L"XMLFullFilename is empty!");
    EXPECT_EQ(StatusOf([&] { LoadXmlFile(L"a.xml", m_none); }), L"pDoc is NULL!");
    EXPECT_EQ(StatusOf([&] { LoadXmlFile(Path(L"bad.xml"), m_pointer); }), L"pDoc->load failed!");
    EXPECT_EQ(StatusOf([&] { LoadXmlFile(Path(L"missing.xml"), m_pointer); }), L"pDoc->load failed!");
    const auto load = [&] { LoadXmlFile(L"a.xml", m_pointer); };
    m_document.plan.Replace("load", Returns(E_ACCESSDENIED));
    EXPECT_EQ(StatusOf(load), L"Exception on pDoc->raw_load of file:\na.xml\n" +
                                  std::wstring(FormatHResultText(E_ACCESSDENIED).GetString()));
    m_document.plan.Replace("load", []() -> HRESULT { RaiseDescribed(E_FAIL, L"no way in"); });
    EXPECT_EQ(StatusOf(load), L"COM Error:\nno way in");
    m_document.plan.Replace("load", []() -> HRESULT { RaiseDescribed(E_FAIL, nullptr); });
    EXPECT_EQ(StatusOf(load), L"COM Error:\n");
    m_document.plan.Replace("load", []() -> HRESULT { throw QuonEllipsis(); });
    EXPECT_EQ(StatusOf(load), L"Unhandled Exception!");
    m_document.plan.Replace("load", []() -> HRESULT { throw 7; });
    EXPECT_THROW(load(), int) << "other exceptions pass";
    EXPECT_EQ(m_document.references, 2);
}

TEST_F(XmlDocumentTest, SavesAFile)
{
    EXPECT_TRUE(SaveXmlFile(Path(L"out.xml"), Parse(L"<a>t</a>")));
    EXPECT_EQ(Bytes(L"out.xml").rfind("<a>t</a>", 0), 0u);
}

TEST_F(XmlDocumentTest, SaveFailuresHaveTheirTextsOrAreRaised)
{
    EXPECT_EQ(StatusOf([&] { SaveXmlFile(L"", m_none); }), L"XMLFullFilename is empty!");
    EXPECT_EQ(StatusOf([&] { SaveXmlFile(L"a.xml", m_none); }), L"pDoc is NULL!");
    const auto save = [&] { SaveXmlFile(L"a.xml", m_pointer); };
    m_document.plan.Replace("save", Returns(E_ACCESSDENIED));
    EXPECT_EQ(ErrorOf(save), E_ACCESSDENIED) << "raised, not thrown as a text";
    m_document.plan.Replace("save", Returns(S_FALSE));
    EXPECT_EQ(StatusOf(save), std::wstring(FormatHResultText(S_FALSE).GetString()));
    m_document.plan.Replace("save", []() -> HRESULT { throw QuonEllipsis(); });
    EXPECT_THROW(save(), QuonEllipsis);
}

}  // namespace
