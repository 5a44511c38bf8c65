#include "xml/NodeTestSupport.h"

namespace
{

using namespace quon_test;
using namespace MSXML2;

using XmlNodesEdit = XmlTest;

TEST_F(XmlNodesEdit, AppendsNodesOfEachKindAndReturnsThem)
{
    const IXMLDOMDocumentPtr document = Parse(L"<r/>");
    const IXMLDOMNodePtr root = Find(document, L"r");
    IXMLDOMNodePtr element;
    AppendElement(element, document, root, L"e");
    EXPECT_STREQ(GetNodeName(element), L"e");
    IXMLDOMNodePtr text;
    AppendTextChild(text, document, element, L"a<b");
    EXPECT_STREQ(GetNodeName(text), L"#text");
    IXMLDOMNodePtr data;
    AppendCDataChild(data, document, root, L"x<y");
    EXPECT_STREQ(GetNodeName(data), L"#cdata-section");
    IXMLDOMNodePtr comment;
    AppendNodeOfType(comment, document, root, NODE_COMMENT, L"", L"");
    EXPECT_STREQ(GetNodeName(comment), L"#comment");
    comment->put_text(_bstr_t(L"c"));
    IXMLDOMNodePtr qualified;
    AppendNodeOfType(qualified, document, root, NODE_ELEMENT, L"q:n", L"urn:q");
    EXPECT_STREQ(GetNodeName(qualified), L"q:n");
    const IXMLDOMNodePtr last = AppendNewElementToRoot(document, root, L"last");
    EXPECT_STREQ(GetNodeName(last), L"last");
    EXPECT_EQ(Xml(document), L"<r><e>a&lt;b</e><![CDATA[x<y]]><!--c--><q:n xmlns:q=\"urn:q\"/><last/></r>");
}

TEST_F(XmlNodesEdit, TheRootMayBeTheResult)
{
    const IXMLDOMDocumentPtr document = Parse(L"<r/>");
    IXMLDOMNodePtr node = Find(document, L"r");
    AppendElement(node, document, node, L"a");
    AppendElement(node, document, node, L"b");
    EXPECT_EQ(Xml(document), L"<r><a><b/></a></r>");
}

TEST_F(XmlNodesEdit, AFailureLeavesTheResultAlone)
{
    const IXMLDOMDocumentPtr document = Parse(L"<r/>");
    const IXMLDOMNodePtr root = Find(document, L"r");
    IXMLDOMNodePtr result = root;
    StatusOf([&] { AppendElement(result, document, IXMLDOMNodePtr(), L"a"); });
    EXPECT_EQ(result.GetInterfacePtr(), root.GetInterfacePtr());
}

TEST_F(XmlNodesEdit, AppendsATextNodeToTheRootWithTheAttribute)
{
    const IXMLDOMDocumentPtr document = Parse(L"<d><g k='1'/><s><g k='2'><h/></g></s><g k='2'/></d>");
    const IXMLDOMNodePtr added = AppendTextNode(document, L"g", L"k", L"2", L"N 45");
    EXPECT_STREQ(GetNodeName(added), L"#text");
    EXPECT_EQ(Xml(document), L"<d><g k=\"1\"/><s><g k=\"2\"><h/>N 45</g></s><g k=\"2\"/></d>")
        << "the first one, however deep";
}

TEST_F(XmlNodesEdit, SetsOneAttribute)
{
    const IXMLDOMDocumentPtr document = Parse(L"<r a='old'/>");
    const IXMLDOMNodePtr root = Find(document, L"r");
    EXPECT_TRUE(SetAttributeOnNode(document, root, L"a", L"new"));
    EXPECT_TRUE(SetAttributeOnNode(document, root, L"b", L""));
    EXPECT_EQ(Xml(document), L"<r a=\"new\" b=\"\"/>");
}

TEST_F(XmlNodesEdit, NamesMayBeOfAnyLength)
{
    const IXMLDOMDocumentPtr document = Parse(L"<r/>");
    const IXMLDOMNodePtr root = Find(document, L"r");
    for (const std::size_t length : {1U, 62U, 63U, 64U, 65U, 1000U})
    {
        SCOPED_TRACE(length);
        const std::wstring name(length, L'n');
        IXMLDOMNodePtr element;
        AppendElement(element, document, root, name.c_str());
        EXPECT_STREQ(GetNodeName(element), name.c_str());
        EXPECT_TRUE(SetAttributeOnNode(document, element, name.c_str(), L"v"));
        EXPECT_EQ(Attribute(element, name.c_str()), L"v");
        EXPECT_STREQ(GetAttributeValue(element, name.c_str()), L"v");
        EXPECT_STREQ(GetAttributeValue(element, (name + L"n").c_str()), L"");
    }
}

TEST_F(XmlNodesEdit, SetsSeveralAttributes)
{
    const IXMLDOMDocumentPtr document = Parse(L"<r b='old'/>");
    const IXMLDOMNodePtr root = Find(document, L"r");
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
