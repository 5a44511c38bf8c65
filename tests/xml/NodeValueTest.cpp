#include "xml/NodeTestSupport.h"

namespace
{

using namespace quon_test;

using XmlNodesRead = XmlTest;

TEST_F(XmlNodesRead, NodeNamesAreUniqueAndInDocumentOrder)
{
    const MSXML2::IXMLDOMDocumentPtr document = Parse(L"<r><b><c/><a/></b><a/><b/>t<!--x--><A/></r>");
    const MSXML2::IXMLDOMNodePtr root = Find(document, L"r");
    EXPECT_EQ(Take(GetNodeNames(root, false)), (Strings{L"b", L"a", L"#text", L"#comment", L"A"}));
    EXPECT_EQ(Take(GetNodeNames(root, true)), (Strings{L"b", L"c", L"a", L"#text", L"#comment", L"A"}));
    EXPECT_EQ(Take(GetNodeNames(document, false)), Strings{L"r"});
    EXPECT_EQ(Take(GetNodeNames(Find(document, L"r/b/c"), true)), Strings{});
}

TEST_F(XmlNodesRead, TextsAndValuesComeInOrder)
{
    const MSXML2::IXMLDOMDocumentPtr document = Parse(L"<r><p k='1'>one</p><p>two<i>!</i></p><p k=''/></r>");
    const NodeArrayHolder nodes(GetChildNodesOfRoot(document, L"r", L"p"));
    EXPECT_EQ(Take(GetTextsOfNodes(nodes.get())), (Strings{L"one", L"two!", L""}));
    EXPECT_EQ(Take(GetAttributeValuesOfNodes(nodes.get(), L"k")), (Strings{L"1", L"", L""}));
}

TEST_F(XmlNodesRead, NullEntriesAreSkipped)
{
    const MSXML2::IXMLDOMDocumentPtr document = Parse(L"<r k='v'>t</r>");
    QuonNodeArray nodes;
    AddNode(nodes, nullptr);
    AddNode(nodes, Find(document, L"r"));
    AddNode(nodes, nullptr);
    EXPECT_EQ(Take(GetTextsOfNodes(&nodes)), Strings{L"t"});
    EXPECT_EQ(Take(GetAttributeValuesOfNodes(&nodes, L"k")), Strings{L"v"});
    ReleaseNodeArray(&nodes);
}

TEST_F(XmlNodesRead, ReadingAttributesAsksANodeOnce)
{
    ForwardingAnyNode node(Find(Parse(L"<p k='v'>t</p>"), L"p"));
    QuonNodeArray nodes;
    AddNode(nodes, &node);
    EXPECT_EQ(Take(GetAttributeValuesOfNodes(&nodes, L"k")), Strings{L"v"});
    EXPECT_EQ(node.plan.Count("get_attributes"), 1);
    EXPECT_EQ(Take(GetTextsOfNodes(&nodes)), Strings{L"t"});
    EXPECT_EQ(node.plan.Count("get_text"), 1);
    ReleaseNodeArray(&nodes);
    EXPECT_EQ(node.references, 1);
}

TEST_F(XmlNodesRead, OneAttribute)
{
    const MSXML2::IXMLDOMDocumentPtr document = Parse(L"<r k='v' K='w'>t</r>");
    const MSXML2::IXMLDOMNodePtr root = Find(document, L"r");
    EXPECT_EQ(GetAttributeValue(root, L"k"), L"v");
    EXPECT_EQ(GetAttributeValue(root, L"K"), L"w");
    EXPECT_EQ(GetAttributeValue(root, L"none"), L"");
    EXPECT_EQ(GetAttributeValue(root->GetfirstChild(), L"k"), L"") << "a text has no attributes";
    EXPECT_EQ(GetAttributeValue(document, L"k"), L"");
    EXPECT_EQ(GetAttributeValueByName(root, L"k"), L"v");
    EXPECT_EQ(GetAttributeValueByName(root, L"none"), L"");
}

TEST_F(XmlNodesRead, AllAttributes)
{
    const MSXML2::IXMLDOMNodePtr root = Find(Parse(L"<r b='2' a='1' c=''><e/></r>"), L"r");
    CStringArray names;
    CStringArray values;
    Fill(names, {L"old"});
    Fill(values, {L"old"});
    GetAllAttributes(root, names, values);
    EXPECT_EQ(Contents(names), (Strings{L"b", L"a", L"c"}));
    EXPECT_EQ(Contents(values), (Strings{L"2", L"1", L""}));
    GetAllAttributes(root->GetfirstChild(), names, values);
    EXPECT_EQ(names.GetSize(), 0);
    EXPECT_EQ(values.GetSize(), 0);
}

// Two groups that differ by text and by attribute, one of them deeper than the document's children.
constexpr wchar_t kGroups[] =
    L"<doc><g kind='x'><p k='1'>a</p></g>"
    L"<s><g kind='y'><q><p k='2'>b</p></q><p>c</p></g></s></doc>";

TEST_F(XmlNodesRead, ValuePaths)
{
    const MSXML2::IXMLDOMDocumentPtr document = Parse(kGroups);
    EXPECT_EQ(Take(GetTextsOfChildren(document, L"g", L"p")), Strings{L"a"});
    EXPECT_EQ(Take(GetTextsOfChildren(document, L"doc", L"p")), (Strings{L"a", L"b", L"c"}));
    EXPECT_EQ(Take(GetTextsOfChildrenByRootText(document, L"g", L"p", L"bc")), (Strings{L"b", L"c"}));
    EXPECT_EQ(Take(GetTextsOfChildrenByRootAttribute(document, L"g", L"p", L"kind", L"y")), (Strings{L"b", L"c"}));
    EXPECT_EQ(Take(GetValuesOfAttribute(document, L"s", L"p", L"k")), (Strings{L"2", L""}));
    EXPECT_EQ(Take(GetValuesOfAttributeByRootText(document, L"g", L"p", L"a", L"k")), Strings{L"1"});
    EXPECT_EQ(Take(GetValuesOfAttributeByRootAttribute(document, L"g", L"p", L"kind", L"y", L"k")),
              (Strings{L"2", L""}));
}

// One value path of each kind with its prefix of arguments.
struct ValuePath
{
    const char* name;
    CStringArray* (*call)(const MSXML2::IXMLDOMDocumentPtr& document, const wchar_t* root, const wchar_t* child);
};

const ValuePath kValuePaths[] = {
    {"GetValuesOfAttribute", [](const MSXML2::IXMLDOMDocumentPtr& d, const wchar_t* r,
                                const wchar_t* c) { return GetValuesOfAttribute(d, r, c, L"k"); }},
    {"GetValuesOfAttributeByRootText",
     [](const MSXML2::IXMLDOMDocumentPtr& d, const wchar_t* r, const wchar_t* c) {
         return GetValuesOfAttributeByRootText(d, r, c, L"a", L"k");
     }},
    {"GetValuesOfAttributeByRootAttribute",
     [](const MSXML2::IXMLDOMDocumentPtr& d, const wchar_t* r, const wchar_t* c) {
         return GetValuesOfAttributeByRootAttribute(d, r, c, L"kind", L"x", L"k");
     }},
    {"GetTextsOfChildren", [](const MSXML2::IXMLDOMDocumentPtr& d, const wchar_t* r,
                              const wchar_t* c) { return GetTextsOfChildren(d, r, c); }},
    {"GetTextsOfChildrenByRootText", [](const MSXML2::IXMLDOMDocumentPtr& d, const wchar_t* r,
                                        const wchar_t* c) { return GetTextsOfChildrenByRootText(d, r, c, L"a"); }},
    {"GetTextsOfChildrenByRootAttribute",
     [](const MSXML2::IXMLDOMDocumentPtr& d, const wchar_t* r, const wchar_t* c) {
         return GetTextsOfChildrenByRootAttribute(d, r, c, L"kind", L"x");
     }},
};

TEST_F(XmlNodesRead, ValuePathsTellTheirOwnFailuresPlainly)
{
    const MSXML2::IXMLDOMDocumentPtr document = Parse(kGroups);
    for (const ValuePath& path : kValuePaths)
    {
        SCOPED_TRACE(path.name);
        EXPECT_EQ(StatusOf([&] { path.call(document, L"none", L"p"); }), L"pTargetRootNode is NULL!");
        EXPECT_EQ(StatusOf([&] { path.call(document, L"G", L"p"); }), L"pTargetRootNode is NULL!");

        ForwardingAnyNode root(Find(document, L"//g"));
        // The search by attribute has read the children of the root before; the others stop at a node that matches.
        const bool byAttribute = std::string(path.name).find("ByRootAttribute") != std::string::npos;
        root.plan.Replace("get_childNodes", Returns(E_ACCESSDENIED), byAttribute ? 2 : 1);
        FakeList list;
        list.nodes.emplace_back(&root);
        ForwardingDocument failing(document);
        failing.children = &list;
        EXPECT_TRUE(IsResultText(StatusOf([&] { path.call(MSXML2::IXMLDOMDocumentPtr(&failing), L"g", L"p"); }),
                                 L"pTargetRootNode->get_childNodes failed:\n", E_ACCESSDENIED));
        list.nodes.clear();
        EXPECT_EQ(root.references, 1);
    }
}

TEST_F(XmlNodesRead, ValuePathsCatchNothingButTexts)
{
    const MSXML2::IXMLDOMDocumentPtr document = Parse(kGroups);
    ForwardingAnyNode root(Find(document, L"//g"));
    FakeList list;
    list.nodes.emplace_back(&root);
    ForwardingDocument failing(document);
    failing.children = &list;
    const MSXML2::IXMLDOMDocumentPtr pointer(&failing);
    for (const ValuePath& path : kValuePaths)
    {
        SCOPED_TRACE(path.name);
        root.plan.Replace("get_nodeName", Returns(E_ACCESSDENIED));
        if (std::string(path.name).find("ByRootAttribute") == std::string::npos)
        {
            EXPECT_EQ(ErrorOf([&] { path.call(pointer, L"g", L"p"); }), E_ACCESSDENIED);
        }
        else
        {
            EXPECT_TRUE(IsResultText(StatusOf([&] { path.call(pointer, L"g", L"p"); }),
                                     L"Exception in GetValuesOfAttribute():\n", E_ACCESSDENIED));
        }
        root.plan.Replace("get_nodeName", []() -> HRESULT { throw 7; });
        EXPECT_THROW(path.call(pointer, L"g", L"p"), int);
    }
    EXPECT_EQ(root.references, 2);
    EXPECT_EQ(list.references, 1);
}

TEST_F(XmlNodesRead, ValuePathsPassOnWhatTheyCatchBehindOnePrefix)
{
    const MSXML2::IXMLDOMDocumentPtr document = Parse(kGroups);
    const std::wstring prefix = L"Exception in GetValuesOfAttribute():\n";
    for (const ValuePath& path : kValuePaths)
    {
        SCOPED_TRACE(path.name);
        EXPECT_EQ(StatusOf([&] { path.call(MSXML2::IXMLDOMDocumentPtr(), L"g", L"p"); }), prefix + L"pDoc is NULL!");
        EXPECT_EQ(StatusOf([&] { path.call(document, L"g", L"none"); }), prefix + L"DesiredChildNodesLen = 0!");
        ForwardingDocument failing(document);
        failing.plan.Replace("get_childNodes", Returns(E_FAIL));
        EXPECT_EQ(StatusOf([&] { path.call(MSXML2::IXMLDOMDocumentPtr(&failing), L"g", L"p"); }),
                  prefix + L"get_childNodes failed!");
    }
}

}  // namespace
