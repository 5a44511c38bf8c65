// The status texts for arguments and for nodes that are missing, and the order in which they are looked at.
#include "xml/NodeFailureTestSupport.h"

namespace
{

using namespace quon_test;

TEST_F(XmlNodesFailure, NullArgumentsAreNamedInOrder)
{
    QuonNodeArray* const noArray = nullptr;
    CStringArray pairs;
    CheckStatuses({
        {L"pDoc is NULL!", [&] { GetDocumentChildNodes(m_noDocument); }},
        {L"pNodes is NULL!", [&] { FindFirstNodeByName(m_noList, L"r", true); }},
        {L"pNodes is NULL!", [&] { FindNodesByName(m_noList, L"r", true); }},
        {L"pNodes is NULL!", [&] { FindNodeByNameAndText(m_noList, L"r", L"t", true); }},
        {L"pDoc is NULL!", [&] { GetChildNodesOfRoot(m_noDocument, L"r", L"p"); }},
        {L"pTargetRootNode is NULL!", [&] { GetChildNodesOfRoot(m_document, L"none", L"p"); }},
        {L"pNodes is NULL!", [&] { CollectNodesWithAttributes(m_array, m_noList, L"p", L"k", L"v", true); }},
        {L"pNodes is NULL!", [&] { CollectNodesWithAttributes(m_array, m_noList, L"p", pairs, true); }},
        {L"pDesiredChildNodes is NULL!", [&] { GetTextsOfNodes(nullptr); }},
        {L"DesiredChildNodesLen = 0!", [&] { GetTextsOfNodes(&m_array); }},
        {L"pNodes is NULL!", [&] { GetAttributeValuesOfNodes(nullptr, L"k"); }},
        {L"DesiredChildNodesLen = 0!", [&] { GetAttributeValuesOfNodes(&m_array, L"k"); }},
        {L"pNode is NULL!", [&] { GetAttributeValue(m_noNode, L"k"); }},
        {L"pNode is NULL!", [&] { GetNodeNames(m_noNode, true); }},
        {L"pNode is NULL!", [&] { GetAllAttributes(m_noNode, m_names, m_values); }},
        {L"pGrowingNodes is NULL!", [&] { AddNodes(nullptr, noArray); }},
        {L"pGrowingNodes is NULL!", [&] { AddNodes(nullptr, &m_array); }},
        {L"pNodesToAdd is NULL!", [&] { AddNodes(&m_array, noArray); }},
        {L"AttributeName is empty!", [&] { AddNodesByAttribute(nullptr, noArray, L""); }},
        {L"pGrowingNodes is NULL!", [&] { AddNodesByAttribute(nullptr, noArray, L"k"); }},
        {L"pNodesToAdd is NULL!", [&] { AddNodesByAttribute(&m_array, noArray, L"k"); }},
        {L"pAttributes is NULL!", [&] { GetAllAttributes(m_text, m_names, m_values); }},
        {L"get_Attributes failed!", [&] { GetAttributeValueByName(m_text, L""); }},
        {L"DesiredAttributeName is empty!", [&] { GetAttributeValueByName(m_root, L""); }},
        {L"pDoc is NULL!", [&] { AppendTextNode(m_noDocument, L"r", L"k", L"v", L"t"); }},
        {L"pTargetRootNode is NULL!", [&] { AppendTextNode(m_document, L"r", L"k", L"other", L"t"); }},
        {L"pRootNode is NULL!", [&] { AppendNewElementToRoot(m_noDocument, m_noNode, L"e"); }},
        {L"pDoc is NULL!", [&] { AppendNewElementToRoot(m_noDocument, m_root, L"e"); }},
        {L"pDoc is NULL!",
         [&] { AppendNodeOfType(m_result, m_noDocument, m_noNode, MSXML2::NODE_ELEMENT, L"e", L""); }},
        {L"pRootNode is NULL!",
         [&] { AppendNodeOfType(m_result, m_document, m_noNode, MSXML2::NODE_ELEMENT, L"e", L""); }},
        {L"pRootElement is NULL!",
         [&] { AppendNodeOfType(m_result, m_document, m_text, MSXML2::NODE_ELEMENT, L"e", L""); }},
        {L"pDoc is NULL!", [&] { SetAttributeOnNode(m_noDocument, m_noNode, L"a", L"1"); }},
        {L"pRootNode is NULL!", [&] { SetAttributeOnNode(m_document, m_noNode, L"a", L"1"); }},
        {L"pRootNode is NULL!", [&] { SetAttributeOnNode(m_document, m_text, L"a", L"1"); }},
        {L"pDoc is NULL!", [&] { SetAttributesOnNode(m_noDocument, m_noNode, m_names, m_values); }},
        {L"pRootNode is NULL!", [&] { SetAttributesOnNode(m_document, m_noNode, m_names, m_values); }},
        {L"pRootNode is NULL!", [&] { SetAttributesOnNode(m_document, m_text, m_names, m_values); }},
        {L"pRootNode is NULL!", [&] { SetAttributesViaOwnerDocument(m_noNode, m_names, m_values); }},
    });
    EXPECT_EQ(ErrorOf([&] { GetAttributeValueByName(m_noNode, L"k"); }), E_POINTER) << "no text names this argument";
    // A document that owns no other one.
    ForwardingElement orphan{MSXML2::IXMLDOMElementPtr(m_root)};
    orphan.plan.Replace("get_ownerDocument", Returns(S_FALSE));
    EXPECT_EQ(StatusOf([&] { SetAttributesViaOwnerDocument(MSXML2::IXMLDOMNodePtr(&orphan), m_names, m_values); }),
              L"pDoc is NULL!");
}

TEST_F(XmlNodesFailure, AppendingChecksDocumentThenNodeThenRootThenResult)
{
    struct Row
    {
        const char* factory;
        void (*append)(MSXML2::IXMLDOMNodePtr&, const MSXML2::IXMLDOMDocumentPtr&, const MSXML2::IXMLDOMNodePtr&,
                       const CString&);
    };
    for (const Row& row : {Row{"createElement", &AppendElement}, Row{"createTextNode", &AppendTextChild},
                           Row{"createCDATASection", &AppendCDataChild}})
    {
        SCOPED_TRACE(row.factory);
        EXPECT_EQ(StatusOf([&] { row.append(m_result, m_noDocument, m_noNode, L"x"); }), L"pDoc is NULL!");
        EXPECT_EQ(StatusOf([&] { row.append(m_result, m_document, m_noNode, L"x"); }), L"pRootNode is NULL!");
        ForwardingAnyNode root(m_root);
        root.plan.Replace("appendChild", Returns(S_FALSE));
        EXPECT_EQ(StatusOf([&] { row.append(m_result, m_document, MSXML2::IXMLDOMNodePtr(&root), L"x"); }),
                  L"pAppendedNode is NULL!");
        ForwardingDocument document(m_document);
        document.plan.Replace(row.factory, Returns(S_FALSE));
        EXPECT_EQ(StatusOf([&] { row.append(m_result, MSXML2::IXMLDOMDocumentPtr(&document), m_noNode, L"x"); }),
                  L"pCreatedNode is NULL!");
        document.plan.Replace(row.factory, Returns(E_ACCESSDENIED));
        EXPECT_EQ(ErrorOf([&] { row.append(m_result, MSXML2::IXMLDOMDocumentPtr(&document), m_root, L"x"); }),
                  E_ACCESSDENIED);
        EXPECT_EQ(document.references, 1);
        EXPECT_EQ(root.references, 1);
    }
    EXPECT_FALSE(m_result);
}

TEST_F(XmlNodesFailure, CreatedNodesThatAreMissing)
{
    ForwardingDocument document(m_document);
    const MSXML2::IXMLDOMDocumentPtr pointer(&document);
    document.plan.Replace("createElement", Returns(S_FALSE));
    document.plan.Replace("createNode", Returns(S_FALSE));
    document.plan.Replace("createAttribute", Returns(S_FALSE));
    CheckStatuses({
        {L"pNewElement is NULL!", [&] { AppendNewElementToRoot(pointer, m_root, L"e"); }},
        {L"pAppendedNode is NULL!",
         [&] { AppendNodeOfType(m_result, pointer, m_root, MSXML2::NODE_ELEMENT, L"e", L""); }},
        {L"pCreatedNode is NULL!", [&] { SetAttributeOnNode(pointer, m_noNode, L"a", L"1"); }},
        {L"pDesiredAttribute is NULL!", [&] { SetAttributesOnNode(pointer, m_root, m_names, m_values); }},
    });
}

TEST_F(XmlNodesFailure, AppendedNodesThatAreMissing)
{
    ForwardingElement root{MSXML2::IXMLDOMElementPtr(m_root)};
    root.plan.Replace("appendChild", Returns(S_FALSE));
    EXPECT_EQ(StatusOf([&] {
                  AppendNodeOfType(m_result, m_document, MSXML2::IXMLDOMNodePtr(&root), MSXML2::NODE_ELEMENT, L"e",
                                   L"");
              }),
              L"pAppendedNode is NULL!");
    EXPECT_EQ(root.references, 1);
}

}  // namespace
