#include "xml/NodeTestSupport.h"

namespace
{

using namespace quon_test;

class XmlNodesFind : public XmlTest
{
protected:
    // Matching nodes inside matching ones, and the same name at several depths.
    const wchar_t* const kTree =
        L"<a id='1'>"
        L"<b id='2'><b id='3'>x</b><c id='4'><b id='5'>y</b></c></b>"
        L"<B id='6'>y</B>"
        L"<b id='7'>y</b>"
        L"</a>";

    static MSXML2::IXMLDOMNodeListPtr ChildrenOf(const MSXML2::IXMLDOMDocumentPtr& document, const wchar_t* query)
    {
        return Find(document, query)->GetchildNodes();
    }
};

TEST_F(XmlNodesFind, ReleasesAnArrayFromLastToFirst)
{
    ReleaseNodeArray(nullptr);
    static std::vector<int> order;
    order.clear();
    class Ordered : public ForwardingAnyNode
    {
    public:
        explicit Ordered(int number) : ForwardingAnyNode(MSXML2::IXMLDOMNodePtr()), m_number(number) {}
        ULONG STDMETHODCALLTYPE Release() override
        {
            order.push_back(m_number);
            return ForwardingAnyNode::Release();
        }

    private:
        int m_number;
    };
    Ordered first(1), second(2), third(3);
    QuonNodeArray nodes;
    AddNode(nodes, &first);
    AddNode(nodes, &second);
    AddNode(nodes, nullptr);
    AddNode(nodes, &third);
    ReleaseNodeArray(&nodes);
    EXPECT_EQ(nodes.GetSize(), 0);
    EXPECT_EQ(order, (std::vector<int>{3, 2, 1}));
    EXPECT_EQ(first.references, 1);
    EXPECT_EQ(second.references, 1);
    EXPECT_EQ(third.references, 1);
    ReleaseNodeArray(&nodes);
    EXPECT_EQ(nodes.GetSize(), 0);

    struct Seen : QuonNodeArray
    {
        INT_PTR Growth() const { return m_nGrowBy; }
    } growing;
    growing.SetSize(3, 77);
    ReleaseNodeArray(&growing);
    EXPECT_EQ(growing.Growth(), 77) << "emptied without a new growth step";
}

TEST_F(XmlNodesFind, GivesTheChildNodesOfTheDocument)
{
    const MSXML2::IXMLDOMNodeListPtr nodes = GetDocumentChildNodes(Parse(L"<?p q?><!--c--><r/>"));
    ASSERT_EQ(nodes->Getlength(), 3);
    EXPECT_STREQ(nodes->nextNode()->GetnodeName(), L"p");
    EXPECT_STREQ(nodes->nextNode()->GetnodeName(), L"#comment");
    EXPECT_STREQ(nodes->nextNode()->GetnodeName(), L"r");
    EXPECT_EQ(GetDocumentChildNodes(EmptyDocument())->Getlength(), 0);
}

TEST_F(XmlNodesFind, FindsTheFirstNodeByName)
{
    const MSXML2::IXMLDOMDocumentPtr document = Parse(kTree);
    struct Row
    {
        const wchar_t* list;
        const wchar_t* name;
        bool recursive;
        const wchar_t* id;
    };
    const Row rows[] = {
        {L"a", L"b", false, L"2"},           {L"a", L"b", true, L"2"},     {L"a", L"B", false, L"6"},
        {L"a", L"c", false, L"(none)"},      {L"a", L"c", true, L"4"},     {L"a/b/c", L"b", false, L"5"},
        {L"a", L"missing", true, L"(none)"}, {L"a", L"", true, L"(none)"}, {L"a/b/b", L"#text", true, L"(none)"},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(::testing::PrintToString(row.list) + ::testing::PrintToString(row.name));
        const MSXML2::IXMLDOMNodePtr found =
            FindFirstNodeByName(ChildrenOf(document, row.list), row.name, row.recursive);
        EXPECT_EQ(Attribute(found, L"id"), row.id);
    }
    EXPECT_TRUE(FindFirstNodeByName(ChildrenOf(document, L"a/b/b"), L"#text", false)) << "names of texts count too";
}

TEST_F(XmlNodesFind, SearchesDepthFirstBeforeTheNextSibling)
{
    const MSXML2::IXMLDOMDocumentPtr document = Parse(L"<a><x><y><t id='deep'/></y></x><t id='flat'/></a>");
    EXPECT_EQ(Attribute(FindFirstNodeByName(ChildrenOf(document, L"a"), L"t", true), L"id"), L"deep");
    EXPECT_EQ(Attribute(FindFirstNodeByName(ChildrenOf(document, L"a"), L"t", false), L"id"), L"flat");
}

TEST_F(XmlNodesFind, StartsAtTheFirstNodeOfAListThatWasUsedBefore)
{
    const MSXML2::IXMLDOMDocumentPtr document = Parse(kTree);
    const MSXML2::IXMLDOMNodeListPtr nodes = ChildrenOf(document, L"a");
    nodes->nextNode();
    nodes->nextNode();
    EXPECT_EQ(Attribute(FindFirstNodeByName(nodes, L"b", false), L"id"), L"2");
    EXPECT_EQ(Attribute(FindFirstNodeByName(nodes, L"b", false), L"id"), L"2") << "and again";
    EXPECT_EQ(Ids(FindNodesByName(nodes, L"b", false)), L"27");
    EXPECT_EQ(Attribute(FindNodeByNameAndText(nodes, L"b", L"y", false), L"id"), L"7");
    QuonNodeArray collected;
    CollectNodesWithAttributes(collected, nodes, L"b", L"id", L"2", false);
    EXPECT_EQ(Ids(collected), L"2");
    ReleaseNodeArray(&collected);
}

// Callers who read the list themselves lose their place.
TEST_F(XmlNodesFind, LeavesTheCursorOfTheListWhereTheSearchEnded)
{
    const MSXML2::IXMLDOMDocumentPtr document = Parse(L"<a><b id='1'/><b id='2'/><b id='3'/></a>");
    const MSXML2::IXMLDOMNodeListPtr nodes = ChildrenOf(document, L"a");
    FindFirstNodeByName(nodes, L"b", true);
    EXPECT_EQ(Attribute(nodes->nextNode(), L"id"), L"2");
    EXPECT_EQ(Ids(FindNodesByName(nodes, L"b", true)), L"123");
    EXPECT_FALSE(nodes->nextNode());
}

TEST_F(XmlNodesFind, FindsAllNodesByNameOuterFirst)
{
    const MSXML2::IXMLDOMDocumentPtr document = Parse(kTree);
    EXPECT_EQ(Ids(FindNodesByName(ChildrenOf(document, L"a"), L"b", false)), L"27");
    EXPECT_EQ(Ids(FindNodesByName(ChildrenOf(document, L"a"), L"b", true)), L"2357");
    EXPECT_EQ(Ids(FindNodesByName(GetDocumentChildNodes(document), L"a", true)), L"1");
    EXPECT_EQ(Ids(FindNodesByName(ChildrenOf(document, L"a"), L"missing", true)), L"");
    EXPECT_EQ(Ids(FindNodesByName(GetDocumentChildNodes(EmptyDocument()), L"a", true)), L"");
}

TEST_F(XmlNodesFind, EachEntryHoldsOneReference)
{
    ForwardingAnyNode match(Find(Parse(L"<b/>"), L"b"));
    FakeList list;
    list.nodes.emplace_back(&match);
    EXPECT_EQ(match.references, 2) << "the test's and the list's";
    QuonNodeArray* const found = FindNodesByName(MSXML2::IXMLDOMNodeListPtr(&list), L"b", false);
    ASSERT_EQ(found->GetSize(), 1);
    EXPECT_EQ(match.references, 3);
    ReleaseNodeArray(found);
    delete found;
    EXPECT_EQ(match.references, 2);

    QuonNodeArray collected;
    CollectNodesWithAttributes(collected, MSXML2::IXMLDOMNodeListPtr(&list), L"b", CStringArray(), false);
    EXPECT_EQ(match.references, 3);
    ReleaseNodeArray(&collected);
    EXPECT_EQ(match.references, 2);

    const MSXML2::IXMLDOMNodePtr first = FindFirstNodeByName(MSXML2::IXMLDOMNodeListPtr(&list), L"b", true);
    EXPECT_EQ(match.references, 3);
    EXPECT_EQ(list.references, 1);
}

TEST_F(XmlNodesFind, EachSearchAsksANodeOnce)
{
    FakeList none;
    ForwardingAnyNode node(Find(Parse(L"<b/>"), L"b"));
    node.children = &none;
    FakeList list;
    list.nodes.emplace_back(&node);
    list.nodes.emplace_back(&node);
    Ids(FindNodesByName(MSXML2::IXMLDOMNodeListPtr(&list), L"b", true));
    EXPECT_EQ(node.plan.Count("get_nodeName"), 2);
    EXPECT_EQ(node.plan.Count("get_childNodes"), 2);
    EXPECT_EQ(list.plan.Count("nextNode"), 3);
    EXPECT_EQ(list.plan.Count("get_item"), 0) << "reaching a node by its index may take as long as walking there";
}

TEST_F(XmlNodesFind, AListThatSaysItIsEmptyIsNotRead)
{
    ForwardingAnyNode node(Find(Parse(L"<b/>"), L"b"));
    FakeList list;
    list.nodes.emplace_back(&node);
    const MSXML2::IXMLDOMNodeListPtr pointer(&list);
    for (const LONG length : {0, -1})
    {
        list.length = length;
        EXPECT_FALSE(FindFirstNodeByName(pointer, L"b", true));
        EXPECT_FALSE(FindNodeByNameAndText(pointer, L"b", L"", true));
        EXPECT_EQ(Ids(FindNodesByName(pointer, L"b", true)), L"");
    }
    EXPECT_EQ(list.plan.Count("nextNode"), 0);
    list.plan.Replace("get_length", Returns(E_ACCESSDENIED));
    EXPECT_EQ(ErrorOf([&] { FindFirstNodeByName(pointer, L"b", true); }), E_ACCESSDENIED);
    EXPECT_EQ(ErrorOf([&] { FindNodeByNameAndText(pointer, L"b", L"", true); }), E_ACCESSDENIED);
    EXPECT_EQ(StatusOf([&] { FindNodesByName(pointer, L"b", true); }),
              L"_com_error = No IErrorInfo recorded - Error is undefined!");
}

TEST_F(XmlNodesFind, TheTextIsReadOnlyBehindTheName)
{
    ForwardingAnyNode other(Find(Parse(L"<c>y</c>"), L"c"));
    ForwardingAnyNode node(Find(Parse(L"<b>y</b>"), L"b"));
    FakeList list;
    list.nodes.emplace_back(&other);
    list.nodes.emplace_back(&node);
    EXPECT_TRUE(FindNodeByNameAndText(MSXML2::IXMLDOMNodeListPtr(&list), L"b", L"y", false));
    EXPECT_EQ(other.plan.Count("get_text"), 0);
    EXPECT_EQ(node.plan.Count("get_text"), 1);
}

TEST_F(XmlNodesFind, FindsByNameAndText)
{
    const MSXML2::IXMLDOMDocumentPtr document = Parse(kTree);
    const MSXML2::IXMLDOMNodeListPtr nodes = ChildrenOf(document, L"a");
    EXPECT_EQ(Attribute(FindNodeByNameAndText(nodes, L"b", L"y", false), L"id"), L"7");
    EXPECT_EQ(Attribute(FindNodeByNameAndText(nodes, L"b", L"y", true), L"id"), L"5");
    EXPECT_EQ(Attribute(FindNodeByNameAndText(nodes, L"b", L"x", true), L"id"), L"3");
    EXPECT_EQ(Attribute(FindNodeByNameAndText(nodes, L"b", L"Y", true), L"id"), L"(none)");
    EXPECT_FALSE(FindNodeByNameAndText(nodes, L"b", L"", true));
    EXPECT_FALSE(FindNodeByNameAndText(GetDocumentChildNodes(EmptyDocument()), L"b", L"", true));
}

TEST_F(XmlNodesFind, GetsTheChildrenOfARoot)
{
    const MSXML2::IXMLDOMDocumentPtr document = Parse(kTree);
    EXPECT_EQ(Ids(GetChildNodesOfRoot(document, L"a", L"b")), L"2357");
    EXPECT_EQ(Ids(GetChildNodesOfRoot(document, L"c", L"b")), L"5") << "the root lies anywhere";
    EXPECT_EQ(Ids(GetChildNodesOfRoot(document, L"a", L"none")), L"");
}

TEST_F(XmlNodesFind, CollectsByOneAttribute)
{
    const MSXML2::IXMLDOMDocumentPtr document = Parse(
        L"<a><p id='1' k='v'><p id='2' k='v'/><q id='3' k='v'/></p><p id='4' k='V'/><p id='5'/>text<!--c--><p id='6' "
        L"k='v'/></a>");
    struct Row
    {
        const wchar_t* name;
        const wchar_t* attribute;
        const wchar_t* value;
        bool recursive;
        const wchar_t* ids;
    };
    const Row rows[] = {
        {L"p", L"k", L"v", false, L"16"},  {L"p", L"k", L"v", true, L"126"},     {L"p", L"k", L"V", true, L"4"},
        {L"p", L"K", L"v", true, L""},     {L"q", L"k", L"v", true, L"3"},       {L"q", L"k", L"v", false, L""},
        {L"p", L"k", L"", true, L""},      {L"p", L"", L"v", true, L""},         {L"P", L"k", L"v", true, L""},
        {L"#text", L"k", L"v", true, L""}, {L"#comment", L"k", L"v", true, L""},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(::testing::PrintToString(row.name) + ::testing::PrintToString(row.value));
        QuonNodeArray found;
        CollectNodesWithAttributes(found, ChildrenOf(document, L"a"), row.name, row.attribute, row.value,
                                   row.recursive);
        EXPECT_EQ(Ids(found), row.ids);
        ReleaseNodeArray(&found);
    }
}

TEST_F(XmlNodesFind, CollectsByAllPairsThatHaveAName)
{
    const MSXML2::IXMLDOMDocumentPtr document =
        Parse(L"<a><p id='1' k='v' l='w'><p id='2' k='v' l='w'/></p><p id='3' k='v'/><p id='4'/><q id='5'/></a>");
    struct Row
    {
        std::initializer_list<const wchar_t*> pairs;
        bool recursive;
        const wchar_t* ids;
    };
    const Row rows[] = {
        {{}, false, L"134"},
        {{}, true, L"1234"},
        {{L"", L"v"}, false, L"134"},
        {{L"", L"v", L"", L""}, true, L"1234"},
        {{L"k", L"v"}, false, L"13"},
        {{L"k", L"v", L"l", L"w"}, true, L"12"},
        {{L"k", L"v", L"", L"x", L"l", L"w"}, true, L"12"},
        {{L"k", L"v", L"l", L"x"}, true, L""},
        {{L"k", L"v", L"l"}, false, L"13"},
        {{L"none", L""}, true, L""},
    };
    for (const Row& row : rows)
    {
        CStringArray pairs;
        Fill(pairs, row.pairs);
        SCOPED_TRACE(::testing::PrintToString(Contents(pairs)));
        QuonNodeArray found;
        CollectNodesWithAttributes(found, ChildrenOf(document, L"a"), L"p", pairs, row.recursive);
        EXPECT_EQ(Ids(found), row.ids);
        ReleaseNodeArray(&found);
    }
}

TEST_F(XmlNodesFind, ValuesThatAreNoTextsAreComparedAsTexts)
{
    class Valued : public ForwardingAnyNode
    {
    public:
        using ForwardingAnyNode::ForwardingAnyNode;
        _variant_t value;
        HRESULT STDMETHODCALLTYPE get_nodeValue(VARIANT* out) override { return ::VariantCopy(out, &value); }
    };
    const MSXML2::IXMLDOMNodePtr real = Find(Parse(L"<p/>"), L"p");
    Valued attribute(real);
    FakeMap map;
    map.nodes.emplace_back(&attribute);
    ForwardingAnyNode node(real);
    node.attributes = &map;
    FakeList list;
    list.nodes.emplace_back(&node);
    _variant_t null;
    null.vt = VT_NULL;
    struct Row
    {
        _variant_t value;
        const wchar_t* text;
    };
    for (const Row& row : {Row{_variant_t(12L), L"12"}, Row{_variant_t(L"v"), L"v"}, Row{_variant_t(L""), L""},
                           Row{_variant_t(), L""}, Row{null, L""}})
    {
        SCOPED_TRACE(row.value.vt);
        attribute.value = row.value;
        EXPECT_EQ(GetAttributeValue(MSXML2::IXMLDOMNodePtr(&node), L"k"), row.text);
        QuonNodeArray found;
        CollectNodesWithAttributes(found, MSXML2::IXMLDOMNodeListPtr(&list), L"p", L"k", row.text, false);
        EXPECT_EQ(found.GetSize(), 1);
        CollectNodesWithAttributes(found, MSXML2::IXMLDOMNodeListPtr(&list), L"p", L"k", L"other", false);
        EXPECT_EQ(found.GetSize(), 1);
        ReleaseNodeArray(&found);
    }
}

TEST_F(XmlNodesFind, CollectingAppends)
{
    const MSXML2::IXMLDOMDocumentPtr document = Parse(L"<a><p id='1' k='v'/><q id='2' k='v'/></a>");
    QuonNodeArray found;
    CollectNodesWithAttributes(found, ChildrenOf(document, L"a"), L"q", L"k", L"v", false);
    CollectNodesWithAttributes(found, ChildrenOf(document, L"a"), L"p", CStringArray(), false);
    EXPECT_EQ(Ids(found), L"21");
    ReleaseNodeArray(&found);
}

TEST_F(XmlNodesFind, FindsAnyNumberOfNodesInTheirOrder)
{
    // The last ones lie around the size from which an array that grows node by node doubles.
    for (const int count : {0, 1, 15, 16, 17, 32, 33, 1000, 1023, 1024, 1025, 2049})
    {
        SCOPED_TRACE(count);
        std::wstring text = L"<r>";
        std::wstring ids;
        for (int index = 0; index < count; ++index)
        {
            text += L"<q><p c='x' id='" + std::to_wstring(index) + L"'/></q>";
            ids += std::to_wstring(index);
        }
        const MSXML2::IXMLDOMDocumentPtr document = Parse((text + L"</r>").c_str());
        const NodeArrayHolder found(FindNodesByName(GetDocumentChildNodes(document), L"p", true));
        EXPECT_EQ(found->GetSize(), count);
        EXPECT_EQ(Ids(*found), ids);
        const NodeArrayHolder matching(new QuonNodeArray);
        CollectNodesWithAttributes(*matching, GetDocumentChildNodes(document), L"p", L"c", L"x", true);
        EXPECT_EQ(matching->GetSize(), count);
        EXPECT_EQ(Ids(*matching), ids);
    }
}

}  // namespace
