// Walks over a document.
#include "xml/QuonXmlTestSupport.h"

namespace
{

using namespace quon_test;

struct Visits
{
    std::wstring names;
    size_t stopAfter = SIZE_MAX;
    size_t count = 0;
};

bool Visit(CString name, MSXML2::IXMLDOMNodePtr& node, __int64 user)
{
    auto* const visits = reinterpret_cast<Visits*>(user);
    EXPECT_STREQ(name, node->GetnodeName());
    visits->names += name.GetString();
    visits->names += L' ';
    return ++visits->count < visits->stopAfter;
}

TEST_F(QuonXmlTest, WalksNodesThenAttributesThenChildren)
{
    QuonXml xml(L"", false, false, false);
    xml.m_pDoc = Parse(L"<a x='1' y='2'><b z='3'>t</b><!--c--><d/></a>");
    const std::wstring all = L"#document a x y b z #text #comment d ";
    Visits visits;
    EXPECT_TRUE(xml.WalkTree(&Visit, reinterpret_cast<__int64>(&visits)));
    EXPECT_EQ(visits.names, all);
    EXPECT_TRUE(xml.WalkTree(nullptr, 0));
    EXPECT_TRUE(xml.WalkNode(xml.m_pDoc, 0, nullptr, 0));

    for (size_t stop = 1; stop <= 9; ++stop)
    {
        SCOPED_TRACE(stop);
        Visits part;
        part.stopAfter = stop;
        EXPECT_FALSE(xml.WalkTree(&Visit, reinterpret_cast<__int64>(&part)));
        EXPECT_EQ(part.count, stop) << "nothing is visited after the first false";
        EXPECT_EQ(all.compare(0, part.names.size(), part.names), 0);
    }
}

TEST_F(QuonXmlTest, ADocumentThatIsNoNodeIsNotWalked)
{
    QuonXml xml(L"", false, false, false);
    Visits visits;
    xml.m_pDoc = m_pointer;
    for (const HRESULT result : {E_NOINTERFACE, E_UNEXPECTED})
    {
        m_document.plan.Replace("QueryInterface", Returns(result));
        EXPECT_TRUE(xml.WalkTree(&Visit, reinterpret_cast<__int64>(&visits)));
    }
    EXPECT_EQ(visits.count, 0u);
    xml.m_pDoc = nullptr;
    EXPECT_TRUE(xml.WalkTree(&Visit, reinterpret_cast<__int64>(&visits))) << "nor is one that is not there";
}

TEST_F(QuonXmlTest, WalksFromAnyNode)
{
    QuonXml xml(L"", false, false, false);
    Visits visits;
    EXPECT_TRUE(xml.WalkNode(MSXML2::IXMLDOMNodePtr(), 0, &Visit, reinterpret_cast<__int64>(&visits)));
    EXPECT_EQ(visits.count, 0u);
    const MSXML2::IXMLDOMNodePtr node = Find(Parse(L"<a><b z='3'>t</b></a>"), L"a/b");
    EXPECT_TRUE(xml.WalkNode(node, 17, &Visit, reinterpret_cast<__int64>(&visits)));
    EXPECT_EQ(visits.names, L"b z #text ");
}

}  // namespace
