// Documents of any depth: what searches and walks keep for each level is not on the stack.
#include "xml/DomFakes.h"
#include "xml/NodeArray.h"
#include "xml/NodeTestSupport.h"
#include "xml/QuonXml.h"
#include "xml/XmlTestSupport.h"

namespace
{

using namespace quon_test;

constexpr int kDepth = 100000;

// A node with so many levels below it, made as they are asked for: nothing depends on what the parser at hand can
// build, and release, without overflowing the stack itself. It and its lists delete themselves.
class DeepNode : public ForwardingAnyNode
{
public:
    DeepNode(MSXML2::IXMLDOMNodePtr model, int below) : ForwardingNode(std::move(model)), m_below(below) {}

    ULONG STDMETHODCALLTYPE Release() override
    {
        const ULONG left = ForwardingNode::Release();
        if (left == 0)
        {
            delete this;
        }
        return left;
    }
    HRESULT STDMETHODCALLTYPE get_nodeName(BSTR* name) override
    {
        *name = ::SysAllocString(m_below == 0 ? L"last" : L"e");
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE get_text(BSTR* text) override
    {
        *text = ::SysAllocString(L"");
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE get_attributes(MSXML2::IXMLDOMNamedNodeMap** map) override
    {
        *map = nullptr;
        return S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE get_nextSibling(MSXML2::IXMLDOMNode** sibling) override
    {
        *sibling = nullptr;
        return S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE get_firstChild(MSXML2::IXMLDOMNode** child) override
    {
        *child = m_below == 0 ? nullptr : new DeepNode(m_inner, m_below - 1);
        return m_below == 0 ? S_FALSE : S_OK;
    }
    HRESULT STDMETHODCALLTYPE get_childNodes(MSXML2::IXMLDOMNodeList** list) override;

private:
    int m_below;
};

class DeepList : public FakeList
{
public:
    ULONG STDMETHODCALLTYPE Release() override
    {
        const ULONG left = FakeList::Release();
        if (left == 0)
        {
            delete this;
        }
        return left;
    }
};

HRESULT DeepNode::get_childNodes(MSXML2::IXMLDOMNodeList** list)
{
    DeepList* const made = new DeepList;
    if (m_below > 0)
    {
        made->nodes.emplace_back(new DeepNode(m_inner, m_below - 1), false);
    }
    *list = made;
    return S_OK;
}

class DeepDocument : public XmlTest
{
protected:
    MSXML2::IXMLDOMNodePtr m_top{new DeepNode(Find(Parse(L"<e/>"), L"e"), kDepth), false};

    MSXML2::IXMLDOMNodeListPtr List() { return m_top->GetchildNodes(); }
};

TEST_F(DeepDocument, TheLastNodeIsFoundByName)
{
    EXPECT_TRUE(FindFirstNodeByName(List(), L"last", true));
    EXPECT_FALSE(FindFirstNodeByName(List(), L"none", true));
    EXPECT_FALSE(FindFirstNodeByName(List(), L"last", false));
}

TEST_F(DeepDocument, TheLastNodeIsFoundByNameAndText)
{
    EXPECT_TRUE(FindNodeByNameAndText(List(), L"last", L"", true));
}

TEST_F(DeepDocument, AllNodesAreFoundByName)
{
    const QuonNodeArrayOwner found(FindNodesByName(List(), L"e", true));
    EXPECT_EQ(found->GetSize(), kDepth - 1);
}

TEST_F(DeepDocument, AllNodesAreCollectedByAttributes)
{
    const QuonNodeArrayOwner found(new QuonNodeArray);
    CollectNodesWithAttributes(*found, List(), L"e", CStringArray(), true);
    EXPECT_EQ(found->GetSize(), kDepth - 1);
}

TEST_F(DeepDocument, AllNamesAreRead)
{
    EXPECT_EQ(Take(GetNodeNames(m_top, true)), (Strings{L"e", L"last"}));
}

TEST_F(DeepDocument, TheWalkVisitsAllNodes)
{
    QuonXml xml(L"", false, false, false);
    __int64 count = 0;
    EXPECT_TRUE(xml.WalkNode(
        m_top, 0,
        [](CString, MSXML2::IXMLDOMNodePtr&, __int64 user) { return ++*reinterpret_cast<__int64*>(user) != 0; },
        reinterpret_cast<__int64>(&count)));
    EXPECT_EQ(count, kDepth + 1);
}

}  // namespace
