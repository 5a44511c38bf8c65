// Growing one node array by the nodes of another.
#include "xml/NodeTestSupport.h"

namespace
{

using namespace quon_test;

class XmlNodesAdd : public XmlTest
{
protected:
    // The children of the root.
    static void AddChildren(const MSXML2::IXMLDOMDocumentPtr& document, QuonNodeArray& nodes)
    {
        const MSXML2::IXMLDOMNodeListPtr children = Find(document, L"*")->GetchildNodes();
        while (const MSXML2::IXMLDOMNodePtr child = children->nextNode())
        {
            AddNode(nodes, child);
        }
    }
};

TEST_F(XmlNodesAdd, AddsNodesOfANewNameOrText)
{
    const MSXML2::IXMLDOMDocumentPtr document =
        Parse(L"<a><p id='1'>x</p><p id='2'>x</p><p id='3'>X</p><q id='4'>x</q><p id='5'>x</p><q id='6'>x</q></a>");
    QuonNodeArray toAdd;
    AddChildren(document, toAdd);
    QuonNodeArray growing;
    AddNodes(&growing, &toAdd);
    EXPECT_EQ(Ids(growing), L"134");
    AddNodes(&growing, &toAdd);
    EXPECT_EQ(Ids(growing), L"134");
    ReleaseNodeArray(&growing);

    AddNode(growing, toAdd[4]);
    AddNode(growing, nullptr);
    AddNodes(&growing, &toAdd);
    ASSERT_EQ(growing.GetSize(), 4);
    EXPECT_EQ(Attribute(MSXML2::IXMLDOMNodePtr(growing[2]), L"id"), L"3");
    EXPECT_EQ(Attribute(MSXML2::IXMLDOMNodePtr(growing[3]), L"id"), L"4");
    ReleaseNodeArray(&growing);
    ReleaseNodeArray(&toAdd);
}

TEST_F(XmlNodesAdd, NamesAndTextsAreComparedEachForItself)
{
    const MSXML2::IXMLDOMDocumentPtr document = Parse(L"<r><a id='1'>bc</a><ab id='2'>c</ab><abc id='3'/></r>");
    QuonNodeArray toAdd;
    AddChildren(document, toAdd);
    QuonNodeArray growing;
    AddNodes(&growing, &toAdd);
    EXPECT_EQ(Ids(growing), L"123");
    ReleaseNodeArray(&growing);
    ReleaseNodeArray(&toAdd);
}

TEST_F(XmlNodesAdd, AnAddedEntryHoldsAReferenceOfItsOwn)
{
    ForwardingAnyNode node(Find(Parse(L"<p k='v'>x</p>"), L"p"));
    QuonNodeArray toAdd;
    QuonNodeArray growing;
    AddNode(toAdd, &node);
    AddNode(toAdd, nullptr);
    AddNodes(&growing, &toAdd);
    ASSERT_EQ(growing.GetSize(), 1);
    EXPECT_EQ(node.references, 3);
    ReleaseNodeArray(&toAdd);
    EXPECT_EQ(node.references, 2);
    ReleaseNodeArray(&growing);
    EXPECT_EQ(node.references, 1);

    AddNode(toAdd, &node);
    AddNodesByAttribute(&growing, &toAdd, L"k");
    EXPECT_EQ(node.references, 3);
    ReleaseNodeArray(&growing);
    ReleaseNodeArray(&toAdd);
    EXPECT_EQ(node.references, 1);
}

TEST_F(XmlNodesAdd, AddingSkipsWhatCannotBeRead)
{
    const MSXML2::IXMLDOMDocumentPtr document = Parse(L"<a><p id='1'>x</p><p id='2'>y</p><p id='3'>z</p></a>");
    const MSXML2::IXMLDOMNodePtr first = Find(document, L"a")->GetfirstChild();
    ForwardingAnyNode nameless(first);
    nameless.plan.Replace("get_nodeName", Returns(E_FAIL));
    ForwardingAnyNode textless(first->GetnextSibling());
    textless.plan.Replace("get_text", Returns(E_FAIL));
    QuonNodeArray toAdd;
    AddNode(toAdd, &nameless);
    AddNode(toAdd, &textless);
    AddNode(toAdd, first->GetnextSibling()->GetnextSibling());
    QuonNodeArray growing;
    AddNode(growing, &nameless);
    AddNodes(&growing, &toAdd);
    EXPECT_EQ(growing.GetSize(), 2) << "one that cannot be read equals nothing and is not added";
    EXPECT_EQ(nameless.references, 3);
    EXPECT_EQ(textless.references, 2);
    ReleaseNodeArray(&growing);
    ReleaseNodeArray(&toAdd);
}

TEST_F(XmlNodesAdd, AddsNodesByTheValueOfAnAttribute)
{
    const MSXML2::IXMLDOMDocumentPtr document =
        Parse(L"<a><p id='1' k='v'/><q id='2' k='v'/><p id='3' k='V'/><p id='4'/><q id='5'/><p id='6' k=''/></a>");
    QuonNodeArray toAdd;
    AddChildren(document, toAdd);
    QuonNodeArray growing;
    AddNodesByAttribute(&growing, &toAdd, L"k");
    EXPECT_EQ(Ids(growing), L"134") << "without the attribute the value is empty";
    ReleaseNodeArray(&growing);
    AddNodesByAttribute(&growing, &toAdd, L"id");
    EXPECT_EQ(Ids(growing), L"123456");
    ReleaseNodeArray(&growing);
    ReleaseNodeArray(&toAdd);
}

TEST_F(XmlNodesAdd, AddingNothingSucceeds)
{
    const QuonNodeArray none;
    QuonNodeArray growing;
    AddNodes(&growing, &none);
    AddNodesByAttribute(&growing, &none, L"k");
    EXPECT_EQ(growing.GetSize(), 0);

    ForwardingAnyNode node(Find(Parse(L"<p/>"), L"p"));
    AddNode(growing, &node);
    AddNodes(&growing, &none);
    AddNodesByAttribute(&growing, &none, L"k");
    EXPECT_EQ(growing.GetSize(), 1);
    EXPECT_EQ(node.plan.Count("get_nodeName"), 0) << "there is nothing to compare with";
    EXPECT_EQ(node.plan.Count("get_attributes"), 0);
    ReleaseNodeArray(&growing);
}

}  // namespace
