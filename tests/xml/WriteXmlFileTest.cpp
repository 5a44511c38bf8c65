// Writing a document with processing instructions and a root.
#include "xml/XmlDocumentTestSupport.h"

#include "xml/XmlValues.h"

namespace
{

using namespace quon_test;

class WriteXmlFileTest : public XmlDocumentTest
{
protected:
    std::wstring Write(std::initializer_list<const wchar_t*> instructions, std::initializer_list<const wchar_t*> roots,
                       const MSXML2::IXMLDOMDocumentPtr& document, bool overwrite = true)
    {
        CStringArray instructionArray;
        CStringArray rootArray;
        Fill(instructionArray, instructions);
        Fill(rootArray, roots);
        return StatusOf(
            [&] { m_root = WriteXmlFile(document, Path(L"out.xml"), instructionArray, rootArray, overwrite); });
    }

    MSXML2::IXMLDOMNodePtr m_root;
};

constexpr wchar_t kWritten[] = L"(nothing thrown)";
constexpr wchar_t kDeclaration[] = L"version=\"1.0\"";

TEST_F(WriteXmlFileTest, WritesInstructionsAndARootWithAttributes)
{
    const MSXML2::IXMLDOMDocumentPtr document = EmptyDocument();
    EXPECT_EQ(Write({L"xml", kDeclaration, L"style", L"href='a'"},
                    {L"LandXML", L" version\t=  1.0 ", L"no equals sign", L"", L"=x", L"y=", L" = ", L"z = a = b "},
                    document),
              kWritten);
    EXPECT_STREQ(m_root->GetnodeName(), L"LandXML");
    const MSXML2::IXMLDOMDocumentPtr read = EmptyDocument();
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
        HRESULT STDMETHODCALLTYPE raw_createProcessingInstruction(BSTR name, BSTR text,
                                                                  MSXML2::IXMLDOMProcessingInstruction** out) override
        {
            target = name;
            data = text;
            return m_inner->raw_createProcessingInstruction(name, _bstr_t(kDeclaration), out);
        }
    };
    Document document(EmptyDocument());
    EXPECT_EQ(Write({L"xml", L"version=1.0"}, {L"LandXML", L" version = 1.0 ", L"ignored"},
                    MSXML2::IXMLDOMDocumentPtr(&document)),
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

TEST_F(WriteXmlFileTest, TheNameOfADeclarationHasSmallLetters)
{
    // A parser that makes an instruction of any name.
    class Document : public ForwardingDocument
    {
    public:
        using ForwardingDocument::ForwardingDocument;
        HRESULT STDMETHODCALLTYPE raw_createProcessingInstruction(BSTR, BSTR,
                                                                  MSXML2::IXMLDOMProcessingInstruction** out) override
        {
            return m_inner->raw_createProcessingInstruction(_bstr_t(L"style"), _bstr_t(L"a"), out);
        }
    };
    for (const wchar_t* target : {L"XML", L"Xml", L"xml ", L"xmls"})
    {
        Document document(EmptyDocument());
        EXPECT_EQ(Write({target, kDeclaration}, {L"r"}, MSXML2::IXMLDOMDocumentPtr(&document)),
                  L"bXmlInstruction is FALSE!");
    }
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
    EXPECT_EQ(Write({L"xml", kDeclaration, L"x"}, {L"r"}, MSXML2::IXMLDOMDocumentPtr(&second)),
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
    EXPECT_EQ(Write({L"xml", kDeclaration}, {L"r", L"a=1"}, MSXML2::IXMLDOMDocumentPtr(&second)),
              L"pAppendedNode is NULL!");
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
    const MSXML2::IXMLDOMDocumentPtr document = EmptyDocument();
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
    EXPECT_EQ(Write({L"xml", kDeclaration}, {L"r"}, MSXML2::IXMLDOMDocumentPtr(&second)), L"E_FAIL");
    ForwardingDocument third(EmptyDocument());
    third.plan.Replace("save", Returns(S_FALSE));
    EXPECT_EQ(Write({L"xml", kDeclaration, L"odd"}, {L"r"}, MSXML2::IXMLDOMDocumentPtr(&third)),
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
    const MSXML2::IXMLDOMDocumentPtr landXml = EmptyDocument();
    CreateLandXmlDocument(landXml);
    const MSXML2::IXMLDOMNodePtr root = GetLandXmlRoot(landXml);
    const MSXML2::IXMLDOMNodePtr points = AppendNewElement(landXml, root, L"CgPoints");
    const MSXML2::IXMLDOMNodePtr point = AppendNewElement(landXml, points, L"CgPoint");
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
