#include "xml/NodeTestSupport.h"

namespace
{

using namespace quon_test;

using XmlNodesEdit = XmlTest;

TEST_F(XmlNodesEdit, AppendsNodesOfEachKindAndReturnsThem)
{
    const MSXML2::IXMLDOMDocumentPtr document = Parse(L"<r/>");
    const MSXML2::IXMLDOMNodePtr root = Find(document, L"r");
    MSXML2::IXMLDOMNodePtr element;
    AppendElement(element, document, root, L"e");
    EXPECT_STREQ(element->GetnodeName(), L"e");
    MSXML2::IXMLDOMNodePtr text;
    AppendTextChild(text, document, element, L"a<b");
    EXPECT_STREQ(text->GetnodeName(), L"#text");
    MSXML2::IXMLDOMNodePtr data;
    AppendCDataChild(data, document, root, L"x<y");
    EXPECT_STREQ(data->GetnodeName(), L"#cdata-section");
    MSXML2::IXMLDOMNodePtr comment;
    AppendNodeOfType(comment, document, root, MSXML2::NODE_COMMENT, L"", L"");
    EXPECT_STREQ(comment->GetnodeName(), L"#comment");
    comment->put_text(_bstr_t(L"c"));
    MSXML2::IXMLDOMNodePtr qualified;
    AppendNodeOfType(qualified, document, root, MSXML2::NODE_ELEMENT, L"q:n", L"urn:q");
    EXPECT_STREQ(qualified->GetnodeName(), L"q:n");
    const MSXML2::IXMLDOMNodePtr last = AppendNewElementToRoot(document, root, L"last");
    EXPECT_STREQ(last->GetnodeName(), L"last");
    EXPECT_EQ(Xml(document), L"<r><e>a&lt;b</e><![CDATA[x<y]]><!--c--><q:n xmlns:q=\"urn:q\"/><last/></r>");
}

TEST_F(XmlNodesEdit, TheRootMayBeTheResult)
{
    const MSXML2::IXMLDOMDocumentPtr document = Parse(L"<r/>");
    MSXML2::IXMLDOMNodePtr node = Find(document, L"r");
    AppendElement(node, document, node, L"a");
    AppendElement(node, document, node, L"b");
    EXPECT_EQ(Xml(document), L"<r><a><b/></a></r>");
}

TEST_F(XmlNodesEdit, AFailureLeavesTheResultAlone)
{
    const MSXML2::IXMLDOMDocumentPtr document = Parse(L"<r/>");
    const MSXML2::IXMLDOMNodePtr root = Find(document, L"r");
    MSXML2::IXMLDOMNodePtr result = root;
    StatusOf([&] { AppendElement(result, document, MSXML2::IXMLDOMNodePtr(), L"a"); });
    EXPECT_EQ(result.GetInterfacePtr(), root.GetInterfacePtr());
}

TEST_F(XmlNodesEdit, AppendsATextNodeToTheRootWithTheAttribute)
{
    const MSXML2::IXMLDOMDocumentPtr document = Parse(L"<d><g k='1'/><s><g k='2'><h/></g></s><g k='2'/></d>");
    const MSXML2::IXMLDOMNodePtr added = AppendTextNode(document, L"g", L"k", L"2", L"N 45");
    EXPECT_STREQ(added->GetnodeName(), L"#text");
    EXPECT_EQ(Xml(document), L"<d><g k=\"1\"/><s><g k=\"2\"><h/>N 45</g></s><g k=\"2\"/></d>")
        << "the first one, however deep";
}

TEST_F(XmlNodesEdit, SetsOneAttribute)
{
    const MSXML2::IXMLDOMDocumentPtr document = Parse(L"<r a='old'/>");
    const MSXML2::IXMLDOMNodePtr root = Find(document, L"r");
    EXPECT_TRUE(SetAttributeOnNode(document, root, L"a", L"new"));
    EXPECT_TRUE(SetAttributeOnNode(document, root, L"b", L""));
    EXPECT_EQ(Xml(document), L"<r a=\"new\" b=\"\"/>");
}

TEST_F(XmlNodesEdit, NamesMayBeOfAnyLength)
{
    const MSXML2::IXMLDOMDocumentPtr document = Parse(L"<r/>");
    const MSXML2::IXMLDOMNodePtr root = Find(document, L"r");
    for (const std::size_t length : {1U, 62U, 63U, 64U, 65U, 1000U})
    {
        SCOPED_TRACE(length);
        const std::wstring name(length, L'n');
        MSXML2::IXMLDOMNodePtr element;
        AppendElement(element, document, root, name.c_str());
        EXPECT_STREQ(element->GetnodeName(), name.c_str());
        EXPECT_TRUE(SetAttributeOnNode(document, element, name.c_str(), L"v"));
        EXPECT_EQ(Attribute(element, name.c_str()), L"v");
        EXPECT_STREQ(GetAttributeValue(element, name.c_str()), L"v");
        EXPECT_STREQ(GetAttributeValue(element, (name + L"n").c_str()), L"");
    }
}

TEST_F(XmlNodesEdit, SetsSeveralAttributes)
{
    const MSXML2::IXMLDOMDocumentPtr document = Parse(L"<r b='old'/>");
    const MSXML2::IXMLDOMNodePtr root = Find(document, L"r");
    CStringArray names;
    CStringArray values;
    Fill(names, {L"a", L"b", L"c"});
    Fill(values, {L"1", L"2"});
    EXPECT_TRUE(SetAttributesOnNode(document, root, names, values)) << "a name without a value is left out";
    EXPECT_EQ(Xml(document), L"<r b=\"2\" a=\"1\"/>");
    EXPECT_TRUE(SetAttributesOnNode(document, root, CStringArray(), values));
    EXPECT_EQ(Xml(document), L"<r b=\"2\" a=\"1\"/>");
    values.Add(L"3");
    EXPECT_TRUE(SetAttributesViaOwnerDocument(root, names, values));
    EXPECT_EQ(Xml(document), L"<r b=\"2\" a=\"1\" c=\"3\"/>");
}

}  // namespace
