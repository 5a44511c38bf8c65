// The status texts for calls that fail, and the errors that pass through.
#include "helpers/ImportPatch.h"
#include "helpers/ModuleNames.h"
#include "xml/NodeFailureTestSupport.h"

#include "base/QuonEllipsis.h"

#include <cstdlib>
#include <utility>

namespace
{

using namespace quon_test;

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
    ImportPatch<void* (*)(size_t)> m_patch{quon_test::kFrameworkModule, "malloc", &FailOnce};
};

TEST_F(XmlNodesFailure, ListsThatCannotBeRead)
{
    ForwardingDocument document(m_document);
    const MSXML2::IXMLDOMDocumentPtr pointer(&document);
    document.plan.Replace("get_childNodes", Returns(S_FALSE));
    EXPECT_EQ(StatusOf([&] { GetDocumentChildNodes(pointer); }), L"get_childNodes failed!");
    EXPECT_EQ(StatusOf([&] { GetChildNodesOfRoot(pointer, L"r", L"p"); }), L"get_childNodes failed!");
    EXPECT_EQ(StatusOf([&] { AppendTextNode(pointer, L"r", L"k", L"v", L"t"); }), L"get_childNodes failed!");
    EXPECT_EQ(StatusOf([&] { GetNodeNames(MSXML2::IXMLDOMNodePtr(&document), false); }), L"pNodeList is NULL!");

    FakeList list;
    ForwardingDocument listed(m_document);
    listed.children = &list;
    list.plan.Replace("get_length", Returns(E_ACCESSDENIED));
    EXPECT_EQ(StatusOf([&] { GetDocumentChildNodes(MSXML2::IXMLDOMDocumentPtr(&listed)); }), kNoInfo);
    list.plan.Replace("get_length", []() -> HRESULT { RaiseDescribed(E_FAIL, L"gone away"); });
    EXPECT_EQ(StatusOf([&] { GetDocumentChildNodes(MSXML2::IXMLDOMDocumentPtr(&listed)); }), L"_com_error = gone away");
    list.plan.Replace("get_length", []() -> HRESULT { throw QuonEllipsis(); });
    EXPECT_EQ(StatusOf([&] { GetDocumentChildNodes(MSXML2::IXMLDOMDocumentPtr(&listed)); }), L"Unhandled Exception!");
    EXPECT_EQ(list.references, 1);
    EXPECT_EQ(listed.references, 1);

    FakeList longer;
    longer.nodes.emplace_back(m_text);
    longer.plan.Replace("get_length", Returns(S_OK));
    ForwardingAnyNode parent(m_root);
    parent.children = &longer;
    EXPECT_EQ(Take(GetNodeNames(MSXML2::IXMLDOMNodePtr(&parent), false)), Strings{})
        << "the list says that it is empty";
    FakeList shorter;
    shorter.nodes.emplace_back(m_text);
    shorter.plan.Replace("nextNode", Returns(S_FALSE));
    parent.children = &shorter;
    EXPECT_EQ(StatusOf([&] { GetNodeNames(MSXML2::IXMLDOMNodePtr(&parent), false); }), L"pCurNode is NULL!");
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
        EXPECT_EQ(StatusOf([&] { FindNodesByName(MSXML2::IXMLDOMNodeListPtr(&list), L"r", false); }), row.status);
        EXPECT_EQ(first.references, 2) << "the array that was begun is released";
        EXPECT_EQ(failing.references, 2);

        EXPECT_THROW(
            {
                try
                {
                    FindFirstNodeByName(MSXML2::IXMLDOMNodeListPtr(&list), L"none", false);
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
    const MSXML2::IXMLDOMNodeListPtr pointer(&list);
    CheckStatuses({
        {L"pNodes is NULL!", [&] { FindFirstNodeByName(pointer, L"none", true); }},
        {L"pNodes is NULL!", [&] { FindNodesByName(pointer, L"none", true); }},
        {L"pNodes is NULL!", [&] { FindNodeByNameAndText(pointer, L"none", L"", true); }},
        {L"pNodes is NULL!", [&] { CollectNodesWithAttributes(m_array, pointer, L"none", L"k", L"v", true); }},
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
    EXPECT_TRUE(IsResultText(StatusOf([&] { GetChildNodesOfRoot(MSXML2::IXMLDOMDocumentPtr(&document), L"r", L"p"); }),
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
    const MSXML2::IXMLDOMNodeListPtr pointer(&list);
    const auto collect = [&] { CollectNodesWithAttributes(m_array, pointer, L"r", L"k", L"v", false); };

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
    const MSXML2::IXMLDOMNodePtr pointer(&node);

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
        MSXML2::IXMLDOMNode* appended = nullptr;
        HRESULT STDMETHODCALLTYPE raw_appendChild(MSXML2::IXMLDOMNode*, MSXML2::IXMLDOMNode** out) override
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
    EXPECT_TRUE(
        IsResultText(StatusOf([&] { AppendTextNode(MSXML2::IXMLDOMDocumentPtr(&document), L"r", L"k", L"v", L"t"); }),
                     L"pNewNode->put_text failed!\n", E_ACCESSDENIED));
    EXPECT_EQ(added.references, 1);
}

TEST_F(XmlNodesFailure, SettingAnAttributeTurnsErrorsIntoTexts)
{
    ForwardingElement element{MSXML2::IXMLDOMElementPtr(m_root)};
    const MSXML2::IXMLDOMNodePtr pointer(&element);
    const auto set = [&] { SetAttributeOnNode(m_document, pointer, L"a", L"1"); };
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
    const MSXML2::IXMLDOMNodeListPtr list = GetDocumentChildNodes(m_document);
    const auto failing = [](const std::function<void()>& work) {
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
