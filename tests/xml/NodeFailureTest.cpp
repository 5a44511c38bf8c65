// Every status text of the node functions, and the order in which the arguments are looked at.
#include "support/ImportPatch.h"
#include "xml/NodeTestSupport.h"

#include "module/QuonEllipsis.h"

#include <cstdlib>

namespace
{

using namespace quon_test;
using namespace MSXML2;

constexpr wchar_t kNoInfo[] = L"_com_error = No IErrorInfo recorded - Error is undefined!";

// The next allocation of the framework fails: arrays live in its memory.
bool g_failNext = false;

void* FailOnce(size_t size)
{
    return std::exchange(g_failNext, false) ? nullptr : std::malloc(size);
}

class OutOfMemory
{
public:
    OutOfMemory() { g_failNext = true; }
    ~OutOfMemory()
    {
        EXPECT_FALSE(g_failNext) << "nothing was allocated";
        g_failNext = false;
    }

private:
    ImportPatch<void* (*)(size_t)> m_patch{L"QuonFramework.dll", "malloc", &FailOnce};
};

class XmlNodesFailure : public XmlTest
{
protected:
    const IXMLDOMDocumentPtr m_document = Parse(L"<r k='v'><p k='v'>t</p></r>");
    const IXMLDOMNodePtr m_root = Find(m_document, L"r");
    const IXMLDOMNodePtr m_text = GetFirstChild(Find(m_document, L"r/p"));
    const IXMLDOMDocumentPtr m_noDocument;
    const IXMLDOMNodePtr m_noNode;
    const IXMLDOMNodeListPtr m_noList;
    IXMLDOMNodePtr m_result;
    QuonNodeArray m_array;
    CStringArray m_names;
    CStringArray m_values;

    void SetUp() override
    {
        Fill(m_names, {L"a"});
        Fill(m_values, {L"1"});
    }
    void TearDown() override { ReleaseNodeArray(&m_array); }
};

struct Case
{
    const wchar_t* status;
    std::function<void()> work;
};

void Check(const std::vector<Case>& cases)
{
    int row = 0;
    for (const Case& each : cases)
    {
        SCOPED_TRACE("row " + std::to_string(++row));
        EXPECT_EQ(StatusOf(each.work), each.status);
    }
}

TEST_F(XmlNodesFailure, NullArgumentsAreNamedInOrder)
{
    QuonNodeArray* const noArray = nullptr;
    CStringArray pairs;
    Check({
        {L"pDoc is NULL!",
         [&]
         {
             GetDocumentChildNodes(m_noDocument);
         }},
        {L"pNodes is NULL!",
         [&]
         {
             FindFirstNodeByName(m_noList, L"r", true);
         }},
        {L"pNodes is NULL!",
         [&]
         {
             FindNodesByName(m_noList, L"r", true);
         }},
        {L"pNodes is NULL!",
         [&]
         {
             FindNodeByNameAndText(m_noList, L"r", L"t", true);
         }},
        {L"pDoc is NULL!",
         [&]
         {
             GetChildNodesOfRoot(m_noDocument, L"r", L"p");
         }},
        {L"pTargetRootNode is NULL!",
         [&]
         {
             GetChildNodesOfRoot(m_document, L"none", L"p");
         }},
        {L"pNodes is NULL!",
         [&]
         {
             CollectNodesWithAttributes(m_array, m_noList, L"p", L"k", L"v", true);
         }},
        {L"pNodes is NULL!",
         [&]
         {
             CollectNodesWithAttributes(m_array, m_noList, L"p", pairs, true);
         }},
        {L"pDesiredChildNodes is NULL!",
         [&]
         {
             GetTextsOfNodes(nullptr);
         }},
        {L"DesiredChildNodesLen = 0!",
         [&]
         {
             GetTextsOfNodes(&m_array);
         }},
        {L"pNodes is NULL!",
         [&]
         {
             GetAttributeValuesOfNodes(nullptr, L"k");
         }},
        {L"DesiredChildNodesLen = 0!",
         [&]
         {
             GetAttributeValuesOfNodes(&m_array, L"k");
         }},
        {L"pNode is NULL!",
         [&]
         {
             GetAttributeValue(m_noNode, L"k");
         }},
        {L"pNode is NULL!",
         [&]
         {
             GetNodeNames(m_noNode, true);
         }},
        {L"pNode is NULL!",
         [&]
         {
             GetAllAttributes(m_noNode, m_names, m_values);
         }},
        {L"pGrowingNodes is NULL!",
         [&]
         {
             AddNodes(nullptr, noArray);
         }},
        {L"pGrowingNodes is NULL!",
         [&]
         {
             AddNodes(nullptr, &m_array);
         }},
        {L"pNodesToAdd is NULL!",
         [&]
         {
             AddNodes(&m_array, noArray);
         }},
        {L"AttributeName is empty!",
         [&]
         {
             AddNodesByAttribute(nullptr, noArray, L"");
         }},
        {L"pGrowingNodes is NULL!",
         [&]
         {
             AddNodesByAttribute(nullptr, noArray, L"k");
         }},
        {L"pNodesToAdd is NULL!",
         [&]
         {
             AddNodesByAttribute(&m_array, noArray, L"k");
         }},
        {L"pAttributes is NULL!",
         [&]
         {
             GetAllAttributes(m_text, m_names, m_values);
         }},
        {L"get_Attributes failed!",
         [&]
         {
             GetAttributeValueByName(m_text, L"");
         }},
        {L"DesiredAttributeName is empty!",
         [&]
         {
             GetAttributeValueByName(m_root, L"");
         }},
        {L"pDoc is NULL!",
         [&]
         {
             AppendTextNode(m_noDocument, L"r", L"k", L"v", L"t");
         }},
        {L"pTargetRootNode is NULL!",
         [&]
         {
             AppendTextNode(m_document, L"r", L"k", L"other", L"t");
         }},
        {L"pRootNode is NULL!",
         [&]
         {
             AppendNewElementToRoot(m_noDocument, m_noNode, L"e");
         }},
        {L"pDoc is NULL!",
         [&]
         {
             AppendNewElementToRoot(m_noDocument, m_root, L"e");
         }},
        {L"pDoc is NULL!",
         [&]
         {
             AppendNodeOfType(m_result, m_noDocument, m_noNode, NODE_ELEMENT, L"e", L"");
         }},
        {L"pRootNode is NULL!",
         [&]
         {
             AppendNodeOfType(m_result, m_document, m_noNode, NODE_ELEMENT, L"e", L"");
         }},
        {L"pRootElement is NULL!",
         [&]
         {
             AppendNodeOfType(m_result, m_document, m_text, NODE_ELEMENT, L"e", L"");
         }},
        {L"pDoc is NULL!",
         [&]
         {
             SetAttributeOnNode(m_noDocument, m_noNode, L"a", L"1");
         }},
        {L"pRootNode is NULL!",
         [&]
         {
             SetAttributeOnNode(m_document, m_noNode, L"a", L"1");
         }},
        {L"pRootNode is NULL!",
         [&]
         {
             SetAttributeOnNode(m_document, m_text, L"a", L"1");
         }},
        {L"pDoc is NULL!",
         [&]
         {
             SetAttributesOnNode(m_noDocument, m_noNode, m_names, m_values);
         }},
        {L"pRootNode is NULL!",
         [&]
         {
             SetAttributesOnNode(m_document, m_noNode, m_names, m_values);
         }},
        {L"pRootNode is NULL!",
         [&]
         {
             SetAttributesOnNode(m_document, m_text, m_names, m_values);
         }},
        {L"pRootNode is NULL!",
         [&]
         {
             SetAttributesViaOwnerDocument(m_noNode, m_names, m_values);
         }},
    });
    EXPECT_EQ(ErrorOf([&] { GetAttributeValueByName(m_noNode, L"k"); }), E_POINTER) << "no text names this argument";
    // A document that owns no other one.
    ForwardingElement orphan{IXMLDOMElementPtr(m_root)};
    orphan.plan.Replace("get_ownerDocument", Returns(S_FALSE));
    EXPECT_EQ(StatusOf([&] { SetAttributesViaOwnerDocument(IXMLDOMNodePtr(&orphan), m_names, m_values); }),
              L"pDoc is NULL!");
}

TEST_F(XmlNodesFailure, AppendingChecksDocumentThenNodeThenRootThenResult)
{
    struct Row
    {
        const char* factory;
        void (*append)(IXMLDOMNodePtr&, const IXMLDOMDocumentPtr&, const IXMLDOMNodePtr&, const CString&);
    };
    for (const Row& row : {Row{"createElement", &AppendElement}, Row{"createTextNode", &AppendTextChild},
                           Row{"createCDATASection", &AppendCDataChild}})
    {
        SCOPED_TRACE(row.factory);
        EXPECT_EQ(StatusOf([&] { row.append(m_result, m_noDocument, m_noNode, L"x"); }), L"pDoc is NULL!");
        EXPECT_EQ(StatusOf([&] { row.append(m_result, m_document, m_noNode, L"x"); }), L"pRootNode is NULL!");
        ForwardingAnyNode root(m_root);
        root.plan.Replace("appendChild", Returns(S_FALSE));
        EXPECT_EQ(StatusOf([&] { row.append(m_result, m_document, IXMLDOMNodePtr(&root), L"x"); }),
                  L"pAppendedNode is NULL!");
        ForwardingDocument document(m_document);
        document.plan.Replace(row.factory, Returns(S_FALSE));
        EXPECT_EQ(StatusOf([&] { row.append(m_result, IXMLDOMDocumentPtr(&document), m_noNode, L"x"); }),
                  L"pCreatedNode is NULL!");
        document.plan.Replace(row.factory, Returns(E_ACCESSDENIED));
        EXPECT_EQ(ErrorOf([&] { row.append(m_result, IXMLDOMDocumentPtr(&document), m_root, L"x"); }), E_ACCESSDENIED);
        EXPECT_EQ(document.references, 1);
        EXPECT_EQ(root.references, 1);
    }
    EXPECT_FALSE(m_result);
}

TEST_F(XmlNodesFailure, CreatedNodesThatAreMissing)
{
    ForwardingDocument document(m_document);
    const IXMLDOMDocumentPtr pointer(&document);
    document.plan.Replace("createElement", Returns(S_FALSE));
    document.plan.Replace("createNode", Returns(S_FALSE));
    document.plan.Replace("createAttribute", Returns(S_FALSE));
    Check({
        {L"pNewElement is NULL!",
         [&]
         {
             AppendNewElementToRoot(pointer, m_root, L"e");
         }},
        {L"pAppendedNode is NULL!",
         [&]
         {
             AppendNodeOfType(m_result, pointer, m_root, NODE_ELEMENT, L"e", L"");
         }},
        {L"pCreatedNode is NULL!",
         [&]
         {
             SetAttributeOnNode(pointer, m_noNode, L"a", L"1");
         }},
        {L"pDesiredAttribute is NULL!",
         [&]
         {
             SetAttributesOnNode(pointer, m_root, m_names, m_values);
         }},
    });
}

TEST_F(XmlNodesFailure, AppendedNodesThatAreMissing)
{
    ForwardingElement root{IXMLDOMElementPtr(m_root)};
    root.plan.Replace("appendChild", Returns(S_FALSE));
    EXPECT_EQ(StatusOf([&] { AppendNodeOfType(m_result, m_document, IXMLDOMNodePtr(&root), NODE_ELEMENT, L"e", L""); }),
              L"pAppendedNode is NULL!");
    EXPECT_EQ(root.references, 1);
}

TEST_F(XmlNodesFailure, ListsThatCannotBeRead)
{
    ForwardingDocument document(m_document);
    const IXMLDOMDocumentPtr pointer(&document);
    document.plan.Replace("get_childNodes", Returns(S_FALSE));
    EXPECT_EQ(StatusOf([&] { GetDocumentChildNodes(pointer); }), L"get_childNodes failed!");
    EXPECT_EQ(StatusOf([&] { GetChildNodesOfRoot(pointer, L"r", L"p"); }), L"get_childNodes failed!");
    EXPECT_EQ(StatusOf([&] { AppendTextNode(pointer, L"r", L"k", L"v", L"t"); }), L"get_childNodes failed!");
    EXPECT_EQ(StatusOf([&] { GetNodeNames(IXMLDOMNodePtr(&document), false); }), L"pNodeList is NULL!");

    FakeList list;
    ForwardingDocument listed(m_document);
    listed.children = &list;
    list.plan.Replace("get_length", Returns(E_ACCESSDENIED));
    EXPECT_EQ(StatusOf([&] { GetDocumentChildNodes(IXMLDOMDocumentPtr(&listed)); }), kNoInfo);
    list.plan.Replace("get_length", []() -> HRESULT { RaiseDescribed(E_FAIL, L"gone away"); });
    EXPECT_EQ(StatusOf([&] { GetDocumentChildNodes(IXMLDOMDocumentPtr(&listed)); }), L"_com_error = gone away");
    list.plan.Replace("get_length", []() -> HRESULT { throw QuonEllipsis(); });
    EXPECT_EQ(StatusOf([&] { GetDocumentChildNodes(IXMLDOMDocumentPtr(&listed)); }), L"Unhandled Exception!");
    EXPECT_EQ(list.references, 1);
    EXPECT_EQ(listed.references, 1);

    FakeList longer;
    longer.nodes.emplace_back(m_text);
    longer.plan.Replace("get_length", Returns(S_OK));
    ForwardingAnyNode parent(m_root);
    parent.children = &longer;
    EXPECT_EQ(Take(GetNodeNames(IXMLDOMNodePtr(&parent), false)), Strings{}) << "the list says that it is empty";
    FakeList shorter;
    shorter.nodes.emplace_back(m_text);
    shorter.plan.Replace("nextNode", Returns(S_FALSE));
    parent.children = &shorter;
    EXPECT_EQ(StatusOf([&] { GetNodeNames(IXMLDOMNodePtr(&parent), false); }), L"pCurNode is NULL!");
}

TEST_F(XmlNodesFailure, SearchesTurnErrorsIntoTextsOnlyWhereTheySaySo)
{
    struct Row
    {
        const char* what;
        Action action;
        const wchar_t* status;
    };
    const Row rows[] = {
        {"fails", Returns(E_ACCESSDENIED), kNoInfo},
        {"described", []() -> HRESULT { RaiseDescribed(E_ACCESSDENIED, L"keep out"); }, L"_com_error = keep out"},
        {"ellipsis", []() -> HRESULT { throw QuonEllipsis(); }, L"Unhandled Exception!"},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.what);
        ForwardingAnyNode first(m_root);
        ForwardingAnyNode failing(m_root);
        failing.plan.Replace("get_nodeName", row.action);
        FakeList list;
        list.nodes.emplace_back(&first);
        list.nodes.emplace_back(&failing);
        EXPECT_EQ(StatusOf([&] { FindNodesByName(IXMLDOMNodeListPtr(&list), L"r", false); }), row.status);
        EXPECT_EQ(first.references, 2) << "the array that was begun is released";
        EXPECT_EQ(failing.references, 2);

        EXPECT_THROW(
            {
                try
                {
                    FindFirstNodeByName(IXMLDOMNodeListPtr(&list), L"none", false);
                }
                catch (const _com_error&)
                {
                    throw 1;
                }
                catch (const QuonEllipsis&)
                {
                    throw 1;
                }
            },
            int)
            << "the other searches let errors through";
        EXPECT_EQ(first.references, 2);
    }
}

TEST_F(XmlNodesFailure, ChildrenThatAreMissingInARecursiveSearch)
{
    ForwardingAnyNode node(m_root);
    node.plan.Replace("get_childNodes", Returns(S_FALSE));
    FakeList list;
    list.nodes.emplace_back(&node);
    const IXMLDOMNodeListPtr pointer(&list);
    Check({
        {L"pNodes is NULL!",
         [&]
         {
             FindFirstNodeByName(pointer, L"none", true);
         }},
        {L"pNodes is NULL!",
         [&]
         {
             FindNodesByName(pointer, L"none", true);
         }},
        {L"pNodes is NULL!",
         [&]
         {
             FindNodeByNameAndText(pointer, L"none", L"", true);
         }},
        {L"pNodes is NULL!",
         [&]
         {
             CollectNodesWithAttributes(m_array, pointer, L"none", L"k", L"v", true);
         }},
    });
    EXPECT_EQ(node.references, 2);
}

TEST_F(XmlNodesFailure, RootsWhoseChildrenCannotBeRead)
{
    ForwardingAnyNode root(m_root);
    root.plan.Replace("get_childNodes", Returns(E_ACCESSDENIED));
    FakeList list;
    list.nodes.emplace_back(&root);
    ForwardingDocument document(m_document);
    document.children = &list;
    EXPECT_TRUE(IsResultText(StatusOf([&] { GetChildNodesOfRoot(IXMLDOMDocumentPtr(&document), L"r", L"p"); }),
                             L"pTargetRootNode->get_childNodes failed:\n", E_ACCESSDENIED));
    EXPECT_EQ(root.references, 2);
}

TEST_F(XmlNodesFailure, CollectingByAttributes)
{
    ForwardingAnyNode attribute(m_text);
    FakeMap map;
    map.nodes.emplace_back(&attribute);
    ForwardingAnyNode first(m_root);
    ForwardingAnyNode node(m_root);
    node.attributes = &map;
    FakeList list;
    list.nodes.emplace_back(&first);
    list.nodes.emplace_back(&node);
    const IXMLDOMNodeListPtr pointer(&list);
    const auto collect = [&]
    {
        CollectNodesWithAttributes(m_array, pointer, L"r", L"k", L"v", false);
    };

    attribute.plan.Replace("get_nodeValue", Returns(E_ACCESSDENIED));
    EXPECT_TRUE(IsResultText(StatusOf(collect), L"", E_ACCESSDENIED));
    EXPECT_EQ(Ids(m_array), L"(none)") << "what was collected before the failure stays";
    map.plan.Replace("getNamedItem", Returns(E_INVALIDARG));
    EXPECT_EQ(ErrorOf(collect), E_INVALIDARG);
    node.plan.Replace("get_attributes", Returns(E_ACCESSDENIED));
    EXPECT_EQ(StatusOf(collect), L"get_Attributes failed");
    node.plan.Replace("get_nodeName", Returns(E_NOTIMPL));
    EXPECT_TRUE(IsResultText(StatusOf(collect), L"", E_NOTIMPL));
}

TEST_F(XmlNodesFailure, TextsThatCannotBeRead)
{
    ForwardingAnyNode node(m_root);
    node.plan.Replace("get_text", Returns(E_ACCESSDENIED));
    AddNode(m_array, &node);
    EXPECT_TRUE(IsResultText(StatusOf([&] { GetTextsOfNodes(&m_array); }), L"Exception on CurNode->get_nodeValue():\n",
                             E_ACCESSDENIED));
    node.plan.Replace("get_attributes", Returns(E_ACCESSDENIED));
    EXPECT_EQ(ErrorOf([&] { GetAttributeValuesOfNodes(&m_array, L"k"); }), E_ACCESSDENIED);
    ReleaseNodeArray(&m_array);
    EXPECT_EQ(node.references, 1);
}

TEST_F(XmlNodesFailure, AttributesThatCannotBeRead)
{
    ForwardingAnyNode attribute(m_text);
    FakeMap map;
    map.nodes.emplace_back(&attribute);
    map.length = 2;
    ForwardingAnyNode node(m_root);
    node.attributes = &map;
    const IXMLDOMNodePtr pointer(&node);

    EXPECT_EQ(StatusOf([&] { GetAllAttributes(pointer, m_names, m_values); }), L"pCurAttribute is NULL!");
    EXPECT_EQ(Contents(m_names), Strings{L"#text"}) << "what was read before stays";
    map.length = -1;
    EXPECT_EQ(StatusOf([&] { GetAllAttributes(pointer, m_names, m_values); }), L"AttributesSize < 0!");

    attribute.plan.Replace("get_nodeValue", Returns(E_ACCESSDENIED));
    EXPECT_EQ(StatusOf([&] { GetAttributeValueByName(pointer, L"k"); }), L"get_nodeValue failed!");
    node.plan.Replace("get_attributes", Returns(E_ACCESSDENIED));
    EXPECT_EQ(StatusOf([&] { GetAttributeValueByName(pointer, L"k"); }), L"get_Attributes failed!");
    EXPECT_EQ(attribute.references, 2);
}

TEST_F(XmlNodesFailure, TextsThatCannotBeWritten)
{
    ForwardingAnyNode added(m_text);
    added.plan.Replace("put_text", Returns(E_ACCESSDENIED));
    class Root : public ForwardingAnyNode
    {
    public:
        using ForwardingAnyNode::ForwardingAnyNode;
        IXMLDOMNode* appended = nullptr;
        HRESULT STDMETHODCALLTYPE appendChild(IXMLDOMNode*, IXMLDOMNode** out) override
        {
            Give(appended, out);
            return S_OK;
        }
    };
    Root root(m_root);
    root.appended = &added;
    FakeList list;
    list.nodes.emplace_back(&root);
    ForwardingDocument document(m_document);
    document.children = &list;
    EXPECT_TRUE(IsResultText(StatusOf([&] { AppendTextNode(IXMLDOMDocumentPtr(&document), L"r", L"k", L"v", L"t"); }),
                             L"pNewNode->put_text failed!\n", E_ACCESSDENIED));
    EXPECT_EQ(added.references, 1);
}

TEST_F(XmlNodesFailure, SettingAnAttributeTurnsErrorsIntoTexts)
{
    ForwardingElement element{IXMLDOMElementPtr(m_root)};
    const IXMLDOMNodePtr pointer(&element);
    const auto set = [&]
    {
        SetAttributeOnNode(m_document, pointer, L"a", L"1");
    };
    element.plan.Replace("setAttribute", Returns(E_ACCESSDENIED));
    EXPECT_EQ(StatusOf(set), L"COM Error:\n");
    element.plan.Replace("setAttribute", []() -> HRESULT { RaiseDescribed(E_FAIL, L"read only"); });
    EXPECT_EQ(StatusOf(set), L"COM Error:\nread only");
    element.plan.Replace("setAttribute", []() -> HRESULT { throw QuonEllipsis(); });
    EXPECT_EQ(StatusOf(set), L"Unhandled Exception.") << "with a full stop";
    EXPECT_EQ(StatusOf([&] { SetAttributeOnNode(m_document, m_root, L"", L"1"); }).rfind(L"COM Error:\n", 0), 0u)
        << "the parser refuses the name";

    element.plan.Replace("setAttribute", Returns(E_ACCESSDENIED));
    EXPECT_EQ(ErrorOf([&] { SetAttributesOnNode(m_document, pointer, m_names, m_values); }), E_ACCESSDENIED)
        << "the function for several does not catch";
    element.plan.Replace("get_ownerDocument", Returns(E_ACCESSDENIED));
    EXPECT_TRUE(IsResultText(StatusOf([&] { SetAttributesViaOwnerDocument(pointer, m_names, m_values); }), L"",
                             E_ACCESSDENIED));
    EXPECT_EQ(element.references, 2);
}

TEST_F(XmlNodesFailure, ArraysThatCannotBeMade)
{
    const IXMLDOMNodeListPtr list = GetDocumentChildNodes(m_document);
    const auto failing = [](const std::function<void()>& work)
    {
        const OutOfMemory patch;
        return StatusOf(work);
    };
    // Made beforehand: their characters lie in the framework's memory too.
    const CString root(L"r");
    const CString child(L"p");
    EXPECT_EQ(failing([&] { FindNodesByName(list, root, true); }), L"pFound is NULL!");
    EXPECT_EQ(failing([&] { GetChildNodesOfRoot(m_document, root, child); }), L"pNodes is NULL!");
    EXPECT_EQ(failing([&] { GetNodeNames(m_root, true); }), L"pNames is NULL!");
}

}  // namespace
