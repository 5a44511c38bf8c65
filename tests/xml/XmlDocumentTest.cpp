#include "xml/XmlDocument.h"

#include "support/ImportPatch.h"
#include "support/TemporaryFolder.h"
#include "xml/DomFakes.h"
#include "xml/XmlTestSupport.h"

#include "module/QuonEllipsis.h"
#include "xml/ComHelpers.h"
#include "xml/XmlValues.h"

#include <ctime>

namespace
{

using namespace quon_test;
using MSXML2::IXMLDOMDocumentPtr;
using MSXML2::IXMLDOMNodePtr;

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
    ImportPatch<decltype(&::_time64)> m_patch{kLibrary, "_time64",
                                              [](__time64_t*)
                                              {
                                                  ++g_clockReads;
                                                  return g_now;
                                              }};
};

class XmlDocumentTest : public XmlTest
{
protected:
    const TemporaryFolder m_folder;
    ForwardingDocument m_document{EmptyDocument()};
    const IXMLDOMDocumentPtr m_pointer{&m_document};
    const IXMLDOMDocumentPtr m_none;

    CString Path(const wchar_t* name) const { return (m_folder / name).c_str(); }
    std::string Bytes(const wchar_t* name) const { return m_folder.ReadFile(name); }
};

TEST_F(XmlDocumentTest, AppendsElementsToAParentOrTheDocument)
{
    const IXMLDOMDocumentPtr document = EmptyDocument();
    const IXMLDOMNodePtr root = AppendNewElement(document, IXMLDOMNodePtr(), L"root");
    const IXMLDOMNodePtr child = AppendNewElement(document, root, L"child");
    EXPECT_STREQ(MSXML2::GetNodeName(child), L"child");
    EXPECT_EQ(Xml(document), L"<root><child/></root>");
    ForwardingAnyNode refusing(root);
    refusing.plan.Replace("appendChild", Returns(E_ACCESSDENIED));
    EXPECT_FALSE(AppendNewElement(document, IXMLDOMNodePtr(&refusing), L"e")) << "empty, not raised";
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
    HRESULT STDMETHODCALLTYPE setAttribute(BSTR name, VARIANT value) override
    {
        set.emplace_back(name, value.vt == VT_BSTR ? value.bstrVal : L"(no text)");
        return ForwardingElement::setAttribute(name, value);
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
        IXMLDOMNode* root = nullptr;
        HRESULT STDMETHODCALLTYPE appendChild(IXMLDOMNode*, IXMLDOMNode** out) override
        {
            Give(root, out);
            return S_OK;
        }
    };
    const IXMLDOMDocumentPtr real = EmptyDocument();
    Recorder root{MSXML2::CreateElement(real, L"LandXML")};
    Document document(real);
    document.root = &root;
    CreateLandXmlDocument(IXMLDOMDocumentPtr(&document));
    EXPECT_EQ(root.set, expected);
    EXPECT_EQ(root.references, 1);
    EXPECT_EQ(g_clockReads, 1) << "date and time are of one moment";

    const IXMLDOMDocumentPtr written = EmptyDocument();
    CreateLandXmlDocument(written);
    std::wstring text = L"<LandXML";
    for (const auto& [name, value] : expected)
    {
        text += L" " + name + L"=\"" + value + L"\"";
    }
    EXPECT_EQ(Xml(written), text + L"/>") << "one root, nothing else";
    EXPECT_STREQ(MSXML2::GetNodeName(GetLandXmlRoot(written)), L"LandXML");
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
    const IXMLDOMDocumentPtr document = EmptyDocument();
    EXPECT_TRUE(LoadXmlFile(Path(L"in.xml"), document));
    EXPECT_EQ(Xml(document), L"<a>t</a>");
}

TEST_F(XmlDocumentTest, LoadFailuresHaveTheirTexts)
{
    m_folder.WriteFile(L"bad.xml", "<a>");
    EXPECT_EQ(StatusOf([&] { LoadXmlFile(L"", m_none); }), L"XMLFullFilename is empty!");
    EXPECT_EQ(StatusOf([&] { LoadXmlFile(L"a.xml", m_none); }), L"pDoc is NULL!");
    EXPECT_EQ(StatusOf([&] { LoadXmlFile(Path(L"bad.xml"), m_pointer); }), L"pDoc->load failed!");
    EXPECT_EQ(StatusOf([&] { LoadXmlFile(Path(L"missing.xml"), m_pointer); }), L"pDoc->load failed!");
    const auto load = [&]
    {
        LoadXmlFile(L"a.xml", m_pointer);
    };
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
    const auto save = [&]
    {
        SaveXmlFile(L"a.xml", m_pointer);
    };
    m_document.plan.Replace("save", Returns(E_ACCESSDENIED));
    EXPECT_EQ(ErrorOf(save), E_ACCESSDENIED) << "raised, not thrown as a text";
    m_document.plan.Replace("save", Returns(S_FALSE));
    EXPECT_EQ(StatusOf(save), std::wstring(FormatHResultText(S_FALSE).GetString()));
    m_document.plan.Replace("save", []() -> HRESULT { throw QuonEllipsis(); });
    EXPECT_THROW(save(), QuonEllipsis);
}

// Writing with processing instructions.

class WriteXmlFileTest : public XmlDocumentTest
{
protected:
    std::wstring Write(std::initializer_list<const wchar_t*> instructions, std::initializer_list<const wchar_t*> roots,
                       const IXMLDOMDocumentPtr& document, bool overwrite = true)
    {
        CStringArray instructionArray;
        CStringArray rootArray;
        Fill(instructionArray, instructions);
        Fill(rootArray, roots);
        return StatusOf([&]
                        { m_root = WriteXmlFile(document, Path(L"out.xml"), instructionArray, rootArray, overwrite); });
    }

    IXMLDOMNodePtr m_root;
};

constexpr wchar_t kWritten[] = L"(nothing thrown)";
constexpr wchar_t kDeclaration[] = L"version=\"1.0\"";

TEST_F(WriteXmlFileTest, WritesInstructionsAndARootWithAttributes)
{
    const IXMLDOMDocumentPtr document = EmptyDocument();
    EXPECT_EQ(Write({L"xml", kDeclaration, L"style", L"href='a'"},
                    {L"LandXML", L" version\t=  1.0 ", L"no equals sign", L"", L"=x", L"y=", L" = ", L"z = a = b "},
                    document),
              kWritten);
    EXPECT_STREQ(MSXML2::GetNodeName(m_root), L"LandXML");
    const IXMLDOMDocumentPtr read = EmptyDocument();
    LoadXmlFile(Path(L"out.xml"), read);
    EXPECT_EQ(Xml(read), L"<?xml version=\"1.0\"?><?style href='a'?><LandXML version=\"1.0\" z=\"a = b\"/>");
}

// The parser has the last word about the data of a declaration; the library hands it over as it is.
TEST_F(WriteXmlFileTest, HandsTheDataOverUnchanged)
{
    class Document : public ForwardingDocument
    {
    public:
        using ForwardingDocument::ForwardingDocument;
        std::wstring target, data;
        HRESULT STDMETHODCALLTYPE createProcessingInstruction(BSTR name, BSTR text,
                                                              IXMLDOMProcessingInstruction** out) override
        {
            target = name;
            data = text;
            return m_inner->createProcessingInstruction(name, _bstr_t(kDeclaration), out);
        }
    };
    Document document(EmptyDocument());
    EXPECT_EQ(
        Write({L"xml", L"version=1.0"}, {L"LandXML", L" version = 1.0 ", L"ignored"}, IXMLDOMDocumentPtr(&document)),
        kWritten);
    EXPECT_EQ(document.target, L"xml");
    EXPECT_EQ(document.data, L"version=1.0");
    EXPECT_EQ(Bytes(L"out.xml").find("ignored"), std::string::npos);
    EXPECT_NE(Bytes(L"out.xml").find("<LandXML version=\"1.0\"/>"), std::string::npos);
}

TEST_F(WriteXmlFileTest, MissingDeclarations)
{
    struct Row
    {
        std::initializer_list<const wchar_t*> instructions;
        const wchar_t* status;
    };
    const Row rows[] = {
        {{}, L"bXmlInstruction is FALSE!"},
        {{L"style", L"a"}, L"bXmlInstruction is FALSE!"},
        {{L"XML1", L"a"}, L"bXmlInstruction is FALSE!"},
        {{L"xml", L""}, L"bXmlInstruction is FALSE!"},
        {{L"", L"a"}, L"bXmlInstruction is FALSE!"},
        {{L"xml"}, L"E_FAILInstructionsIndex >= InstructionsSize!bXmlInstruction is FALSE!"},
        {{L"style", L"a", L"xml"}, L"E_FAILInstructionsIndex >= InstructionsSize!bXmlInstruction is FALSE!"},
        {{L"", L"a", L"xml"},
         L"E_FAILCurNodeName is empty!InstructionsIndex >= InstructionsSize!bXmlInstruction is FALSE!"},
        {{L"xml", L"", L"xml"},
         L"E_FAILCurNodeValue is empty!InstructionsIndex >= InstructionsSize!bXmlInstruction is FALSE!"},
        {{L"", L"", L"xml"},
         L"E_FAILCurNodeName is empty!CurNodeValue is empty!InstructionsIndex >= "
         L"InstructionsSize!bXmlInstruction is FALSE!"},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(
            ::testing::PrintToString(std::vector<std::wstring>(row.instructions.begin(), row.instructions.end())));
        EXPECT_EQ(Write(row.instructions, {L"r"}, EmptyDocument()), row.status);
        EXPECT_FALSE(m_folder.Exists(L"out.xml"));
    }
    EXPECT_EQ(Write({L"", L"a"}, {L"r"}, m_none), L"pDoc is NULL!") << "the document comes first";
}

TEST_F(WriteXmlFileTest, AnOddLastEntryIsIgnoredBehindADeclaration)
{
    EXPECT_EQ(Write({L"xml", kDeclaration, L"style"}, {L"r"}, EmptyDocument()), kWritten);
    EXPECT_NE(Bytes(L"out.xml").find("<r/>"), std::string::npos);
    EXPECT_EQ(Bytes(L"out.xml").find("style"), std::string::npos);
}

TEST_F(WriteXmlFileTest, InstructionsThatCannotBeMadeOrAppended)
{
    // The odd entry makes the collected messages visible.
    m_document.plan.Replace("createProcessingInstruction", Returns(S_FALSE));
    EXPECT_EQ(Write({L"xml", kDeclaration, L"x"}, {L"r"}, m_pointer),
              L"E_FAILCreatedAdditionalNode is NULL!InstructionsIndex >= InstructionsSize!bXmlInstruction is FALSE!");
    m_document.plan.Replace("createProcessingInstruction", Returns(E_ACCESSDENIED));
    EXPECT_EQ(ErrorOf([&] { Write({L"xml", kDeclaration}, {L"r"}, m_pointer); }), E_ACCESSDENIED);
    ForwardingDocument second(EmptyDocument());
    second.plan.Replace("appendChild", Returns(S_FALSE));
    EXPECT_EQ(Write({L"xml", kDeclaration, L"x"}, {L"r"}, IXMLDOMDocumentPtr(&second)),
              L"E_FAILpAppendedAdditionalNode is empty!InstructionsIndex >= InstructionsSize!"
              L"bXmlInstruction is FALSE!");
}

TEST_F(WriteXmlFileTest, MissingRoots)
{
    EXPECT_EQ(Write({L"xml", kDeclaration}, {}, EmptyDocument()), L"pAppendedNode is NULL!");
    EXPECT_EQ(Write({L"xml", kDeclaration}, {L"", L"a=1"}, EmptyDocument()), L"pAppendedNode is NULL!");
    m_document.plan.Replace("createElement", Returns(S_FALSE));
    EXPECT_EQ(Write({L"xml", kDeclaration}, {L"r", L"a=1"}, m_pointer), L"pAppendedNode is NULL!");
    ForwardingDocument second(EmptyDocument());
    second.plan.Replace("appendChild", Returns(S_FALSE), 2);
    EXPECT_EQ(Write({L"xml", kDeclaration}, {L"r", L"a=1"}, IXMLDOMDocumentPtr(&second)), L"pAppendedNode is NULL!");
    EXPECT_FALSE(m_folder.Exists(L"out.xml"));
}

TEST_F(WriteXmlFileTest, AnAttributeThatCannotBeSetTellsWhy)
{
    EXPECT_EQ(Write({L"xml", kDeclaration}, {L"r", L"a=1"}, EmptyDocument()), kWritten);
    m_document.plan.Replace("createAttribute", Returns(S_FALSE));
    EXPECT_EQ(Write({L"xml", kDeclaration}, {L"r", L"a=1"}, m_pointer), L"pCreatedNode is NULL!");
}

TEST_F(WriteXmlFileTest, AnExistingFileIsLoadedInsteadOfWritten)
{
    m_folder.WriteFile(L"out.xml", "<old/>");
    const IXMLDOMDocumentPtr document = EmptyDocument();
    EXPECT_EQ(Write({}, {}, document, false), kWritten) << "the lists are not looked at";
    EXPECT_FALSE(m_root);
    EXPECT_EQ(Xml(document), L"<old/>");
    EXPECT_EQ(Bytes(L"out.xml"), "<old/>");
}

TEST_F(WriteXmlFileTest, TheTextOfAFailedLoadIsDropped)
{
    m_folder.WriteFile(L"out.xml", "<old>");
    EXPECT_EQ(Write({}, {}, EmptyDocument(), false), L"E_FAIL");
    EXPECT_EQ(Write({}, {}, m_none, false), L"E_FAIL") << "not \"pDoc is NULL!\"";
}

TEST_F(WriteXmlFileTest, AnExistingFileIsRemovedToBeOverwritten)
{
    m_folder.WriteFile(L"out.xml", "<old/>");
    EXPECT_EQ(Write({L"xml", kDeclaration}, {L"new"}, EmptyDocument()), kWritten);
    EXPECT_NE(Bytes(L"out.xml").find("<new/>"), std::string::npos);

    m_folder.WriteFile(L"out.xml", "<old/>", FILE_ATTRIBUTE_READONLY);
    const CString path = Path(L"out.xml");
    EXPECT_EQ(Write({L"xml", kDeclaration}, {L"new"}, m_none),
              L"Removal of file failed!\nFile = " + std::wstring(path.GetString()));
    EXPECT_EQ(Bytes(L"out.xml"), "<old/>");
}

TEST_F(WriteXmlFileTest, AFailedSaveIsRaisedAndASuccessCodeDropped)
{
    m_document.plan.Replace("save", Returns(E_ACCESSDENIED));
    EXPECT_EQ(ErrorOf([&] { Write({L"xml", kDeclaration}, {L"r"}, m_pointer); }), E_ACCESSDENIED);
    ForwardingDocument second(EmptyDocument());
    second.plan.Replace("save", Returns(S_FALSE));
    EXPECT_EQ(Write({L"xml", kDeclaration}, {L"r"}, IXMLDOMDocumentPtr(&second)), L"E_FAIL");
    ForwardingDocument third(EmptyDocument());
    third.plan.Replace("save", Returns(S_FALSE));
    EXPECT_EQ(Write({L"xml", kDeclaration, L"odd"}, {L"r"}, IXMLDOMDocumentPtr(&third)),
              L"E_FAILInstructionsIndex >= InstructionsSize!");
}

TEST_F(WriteXmlFileTest, WithoutAFileTheDocumentIsNeeded)
{
    EXPECT_EQ(Write({L"xml", kDeclaration}, {L"r"}, m_none), L"pDoc is NULL!");
    EXPECT_EQ(Write({L"xml", kDeclaration}, {L"r"}, m_none, false), L"pDoc is NULL!");
}

// Documents for a validator of its own: the test xml_written_documents_are_well_formed reads this folder.
TEST_F(WriteXmlFileTest, LeavesDocumentsForTheValidator)
{
    ::CreateDirectoryW(L"xml-written-documents", nullptr);
    const IXMLDOMDocumentPtr landXml = EmptyDocument();
    CreateLandXmlDocument(landXml);
    const IXMLDOMNodePtr root = GetLandXmlRoot(landXml);
    const IXMLDOMNodePtr points = AppendNewElement(landXml, root, L"CgPoints");
    const IXMLDOMNodePtr point = AppendNewElement(landXml, points, L"CgPoint");
    SetXmlString(point, L"name", L"1 < \"2\" & \x00E4\x4E2D");
    SetXmlDouble(point, L"scale", 0.1);
    point->put_text(_bstr_t(L"100.25 <200> & 3.5 \x00E4\x4E2D"));
    EXPECT_TRUE(SaveXmlFile(L"xml-written-documents\\landxml.xml", landXml));

    CStringArray instructions;
    CStringArray roots;
    Fill(instructions, {L"xml", L"version=\"1.0\"", L"style", L"href='a'"});
    Fill(roots, {L"LandXML", L"desc = <&\">", L"version = 1.0"});
    EXPECT_TRUE(WriteXmlFile(EmptyDocument(), L"xml-written-documents\\written.xml", instructions, roots, true));
}

}  // namespace
