// What the XML functions are given and what they make is given back, also when they fail half-way: every BSTR, and
// every reference to the objects that they are handed.
#include "helpers/ImportPatch.h"
#include "xml/NodeTestSupport.h"
#include "xml/QuonXml.h"
#include "xml/XmlDocument.h"
#include "xml/XmlValues.h"

#include <set>

namespace
{

using namespace quon_test;

constexpr wchar_t kLibrary[] = L"QuonWin32Utils.dll";

// The BSTRs that the library made or was handed and has not freed yet.
std::set<BSTR> g_texts;

BSTR Record(BSTR text)
{
    if (text != nullptr)
    {
        g_texts.insert(text);
    }
    return text;
}

HRESULT WINAPI ClearVariant(VARIANTARG* value)
{
    if (value->vt == VT_BSTR)
    {
        g_texts.erase(value->bstrVal);
    }
    return ::VariantClear(value);
}

HRESULT WINAPI ChangeVariant(VARIANTARG* to, const VARIANTARG* from, USHORT flags, VARTYPE type)
{
    BSTR const before = to->vt == VT_BSTR ? to->bstrVal : nullptr;
    const HRESULT result = ::VariantChangeType(to, const_cast<VARIANTARG*>(from), flags, type);
    if (to->vt != VT_BSTR || to->bstrVal != before)
    {
        g_texts.erase(before);
    }
    if (to->vt == VT_BSTR)
    {
        Record(to->bstrVal);
    }
    return result;
}

// Keeps the account as long as it lives.
class TextAccount
{
public:
    TextAccount() { g_texts.clear(); }

private:
    const ImportPatch<decltype(&::SysAllocString)> m_making{
        kLibrary, "SysAllocString", [](const OLECHAR* text) -> BSTR { return Record(::SysAllocString(text)); }};
    const ImportPatch<decltype(&::SysFreeString)> m_freeing{kLibrary, "SysFreeString", [](BSTR text) -> void {
                                                                g_texts.erase(text);
                                                                ::SysFreeString(text);
                                                            }};
    const ImportPatch<decltype(&::VariantClear)> m_clearing{kLibrary, "VariantClear", &ClearVariant};
    const ImportPatch<HRESULT(WINAPI*)(VARIANTARG*, const VARIANTARG*, USHORT, VARTYPE)> m_changing{
        kLibrary, "VariantChangeType", &ChangeVariant};
};

// An element whose texts are on the account once they are handed out.
class CountedElement : public ForwardingElement
{
public:
    using ForwardingElement::ForwardingElement;
    MSXML2::IXMLDOMDocument* owner = nullptr;
    MSXML2::IXMLDOMNode* found = nullptr;
    MSXML2::IXMLDOMNode* child = nullptr;

    HRESULT STDMETHODCALLTYPE get_nodeName(BSTR* out) override
    {
        return Handed(out, ForwardingElement::get_nodeName(out));
    }
    HRESULT STDMETHODCALLTYPE get_text(BSTR* out) override { return Handed(out, ForwardingElement::get_text(out)); }
    HRESULT STDMETHODCALLTYPE get_nodeValue(VARIANT* out) override
    {
        return Handed(out, ForwardingElement::get_nodeValue(out));
    }
    HRESULT STDMETHODCALLTYPE get_nodeTypedValue(VARIANT* out) override
    {
        return Handed(out, ForwardingElement::get_nodeTypedValue(out));
    }
    HRESULT STDMETHODCALLTYPE get_ownerDocument(MSXML2::IXMLDOMDocument** out) override
    {
        return owner != nullptr ? (Give(owner, out), S_OK) : ForwardingElement::get_ownerDocument(out);
    }
    HRESULT STDMETHODCALLTYPE raw_selectSingleNode(BSTR query, MSXML2::IXMLDOMNode** out) override
    {
        return found != nullptr ? (Give(found, out), S_OK) : ForwardingElement::raw_selectSingleNode(query, out);
    }
    HRESULT STDMETHODCALLTYPE get_firstChild(MSXML2::IXMLDOMNode** out) override
    {
        return child != nullptr ? (Give(child, out), S_OK) : ForwardingElement::get_firstChild(out);
    }

private:
    static HRESULT Handed(BSTR* out, HRESULT result)
    {
        if (SUCCEEDED(result))
        {
            Record(*out);
        }
        return result;
    }
    static HRESULT Handed(VARIANT* out, HRESULT result)
    {
        if (SUCCEEDED(result) && out->vt == VT_BSTR)
        {
            Record(out->bstrVal);
        }
        return result;
    }
};

// A document whose only child is "r", with the attribute "k" and the text "12".
class XmlLeaks : public XmlTest
{
protected:
    // Runs `work` as it is and then with each method of `failing` failing; errors of any kind are expected.
    void Check(const char* what, const std::function<void()>& work, std::initializer_list<const char*> failing)
    {
        CheckOnce(what, work);
        for (const char* method : failing)
        {
            for (CallPlan* plan : {&m_root.plan, &m_value.plan, &m_document.plan, &m_list.plan, &m_map.plan})
            {
                plan->Replace(method, Returns(E_ACCESSDENIED));
            }
            CheckOnce((std::string(what) + " without " + method).c_str(), work);
            for (CallPlan* plan : {&m_root.plan, &m_value.plan, &m_document.plan, &m_list.plan, &m_map.plan})
            {
                plan->Replace(method, nullptr, INT_MAX);
            }
        }
    }

    void SetUp() override
    {
        m_list.nodes.emplace_back(&m_root);
        m_map.nodes.emplace_back(&m_value);
        m_map.length = 1;
        m_root.attributes = &m_map;
        m_root.children = &m_none;
        m_root.owner = &m_document;
        m_root.found = &m_value;
        m_document.children = &m_list;
        AddNode(m_nodes, &m_root);
    }
    void TearDown() override { ReleaseNodeArray(&m_nodes); }

    const MSXML2::IXMLDOMDocumentPtr m_real = Parse(L"<r k='v'>12</r>");
    CountedElement m_root{MSXML2::IXMLDOMElementPtr(Find(m_real, L"r"))};
    CountedElement m_value{MSXML2::IXMLDOMElementPtr(Find(m_real, L"r"))};
    ForwardingDocument m_document{m_real};
    FakeList m_list;
    FakeList m_none;
    FakeMap m_map;
    QuonNodeArray m_nodes;
    const MSXML2::IXMLDOMDocumentPtr m_pointer{&m_document};
    const MSXML2::IXMLDOMNodePtr m_node{static_cast<MSXML2::IXMLDOMNode*>(&m_root)};

private:
    std::vector<LONG> References() const
    {
        return {m_root.references, m_value.references, m_document.references,
                m_list.references, m_none.references,  m_map.references};
    }
    void CheckOnce(const char* what, const std::function<void()>& work)
    {
        SCOPED_TRACE(what);
        m_list.cursor = 0;
        m_map.cursor = 0;
        const std::vector<LONG> before = References();
        {
            const TextAccount account;
            try
            {
                work();
            }
            catch (const CString&)
            {
            }
            catch (const _com_error&)
            {
            }
        }
        EXPECT_TRUE(g_texts.empty()) << g_texts.size() << " texts are left";
        EXPECT_EQ(References(), before);
    }
};

TEST_F(XmlLeaks, SearchesLeaveNothingBehind)
{
    const MSXML2::IXMLDOMNodeListPtr list(&m_list);
    Check("FindFirstNodeByName", [&] { FindFirstNodeByName(list, L"r", true); }, {"get_nodeName", "reset"});
    Check("FindFirstNodeByName, nothing", [&] { FindFirstNodeByName(list, L"x", true); }, {"get_childNodes"});
    Check("FindNodeByNameAndText", [&] { FindNodeByNameAndText(list, L"r", L"12", true); },
          {"get_nodeName", "get_text"});
    Check("FindNodesByName", [&] { const NodeArrayHolder found(FindNodesByName(list, L"r", true)); },
          {"get_nodeName", "get_childNodes", "nextNode"});
    Check("GetChildNodesOfRoot", [&] { const NodeArrayHolder found(GetChildNodesOfRoot(m_pointer, L"r", L"x")); },
          {"get_childNodes", "get_length"});
    Check("CollectNodesWithAttributes",
          [&] {
              QuonNodeArray found;
              const auto release = std::unique_ptr<QuonNodeArray, void (*)(QuonNodeArray*)>(&found, &ReleaseNodeArray);
              CollectNodesWithAttributes(found, list, L"r", L"k", L"v", true);
          },
          {"get_nodeName", "get_attributes", "getNamedItem", "get_nodeValue", "get_childNodes"});
    Check("AddNodes",
          [&] {
              QuonNodeArray growing;
              AddNodes(&growing, &m_nodes);
              ReleaseNodeArray(&growing);
          },
          {"get_nodeName", "get_text"});
    Check("AddNodesByAttribute",
          [&] {
              QuonNodeArray growing;
              AddNodesByAttribute(&growing, &m_nodes, L"k");
              ReleaseNodeArray(&growing);
          },
          {"get_attributes", "getNamedItem", "get_nodeValue"});
}

TEST_F(XmlLeaks, ReadingLeavesNothingBehind)
{
    CStringArray names;
    CStringArray values;
    Check("GetNodeNames", [&] { Take(GetNodeNames(m_pointer, true)); }, {"get_nodeName", "nextNode", "get_length"});
    Check("GetTextsOfNodes", [&] { Take(GetTextsOfNodes(&m_nodes)); }, {"get_text"});
    Check("GetAttributeValuesOfNodes", [&] { Take(GetAttributeValuesOfNodes(&m_nodes, L"k")); },
          {"get_attributes", "getNamedItem", "get_nodeValue"});
    Check("GetAttributeValueByName", [&] { GetAttributeValueByName(m_node, L"k"); },
          {"get_attributes", "getNamedItem", "get_nodeValue"});
    Check("GetAllAttributes", [&] { GetAllAttributes(m_node, names, values); },
          {"get_attributes", "get_length", "nextNode", "get_nodeName", "get_nodeValue"});
    Check("GetTextsOfChildrenByRootText", [&] { Take(GetTextsOfChildrenByRootText(m_pointer, L"r", L"x", L"12")); },
          {"get_childNodes", "get_text"});
    Check("GetValuesOfAttributeByRootAttribute",
          [&] { Take(GetValuesOfAttributeByRootAttribute(m_pointer, L"r", L"x", L"k", L"v", L"k")); },
          {"get_attributes", "getNamedItem", "get_nodeValue"});
    Check("GetXmlString", [&] { GetXmlString(m_node, L"q"); }, {"get_nodeTypedValue"});
    Check("GetXmlLong", [&] { GetXmlLong(m_node, L"q"); }, {"get_nodeTypedValue"});
    Check("GetXmlDouble", [&] { GetXmlDouble(m_node, L"q"); }, {"get_nodeTypedValue"});
}

TEST_F(XmlLeaks, EditingLeavesNothingBehind)
{
    MSXML2::IXMLDOMNodePtr result;
    CStringArray names;
    CStringArray values;
    Fill(names, {L"a", L"b"});
    Fill(values, {L"1", L"2"});
    Check("AppendElement", [&] { AppendElement(result, m_pointer, m_node, L"e"); }, {"createElement", "appendChild"});
    Check("AppendTextChild", [&] { AppendTextChild(result, m_pointer, m_node, L"t"); },
          {"createTextNode", "appendChild"});
    Check("AppendNodeOfType",
          [&] { AppendNodeOfType(result, m_pointer, m_node, MSXML2::NODE_ELEMENT, L"e", L"urn:e"); },
          {"createNode", "appendChild"});
    Check("AppendNewElementToRoot", [&] { AppendNewElementToRoot(m_pointer, m_node, L"e"); },
          {"createElement", "appendChild"});
    Check("AppendNewElement", [&] { AppendNewElement(m_pointer, m_node, L"e"); }, {"createElement", "appendChild"});
    Check("AppendTextNode", [&] { AppendTextNode(m_pointer, L"r", L"k", L"v", L"t"); },
          {"appendChild", "get_nodeValue"});
    Check("SetAttributeOnNode", [&] { SetAttributeOnNode(m_pointer, m_node, L"a", L"1"); },
          {"createAttribute", "setAttribute"});
    Check("SetAttributesViaOwnerDocument", [&] { SetAttributesViaOwnerDocument(m_node, names, values); },
          {"createAttribute", "setAttribute"});
    Check("SetXmlString", [&] { SetXmlString(m_node, L"a", L"1"); }, {"setAttribute"});
    Check("SetXmlLong", [&] { SetXmlLong(m_node, L"a", 1); }, {"setAttribute"});
}

TEST_F(XmlLeaks, DocumentsLeaveNothingBehind)
{
    QuonXml xml(L"", false, false, false);
    const auto visit = [](CString, MSXML2::IXMLDOMNodePtr&, __int64) { return true; };
    const auto stop = [](CString, MSXML2::IXMLDOMNodePtr&, __int64) { return false; };
    Check("WalkNode", [&] { xml.WalkNode(m_node, 0, visit, 0); },
          {"get_nodeName", "get_attributes", "nextNode", "get_firstChild"});
    m_root.child = &m_value;
    Check("WalkNode, below", [&] { xml.WalkNode(m_node, 0, visit, 0); }, {"get_nextSibling"});
    Check("WalkNode, stopped", [&] { xml.WalkNode(m_node, 0, stop, 0); }, {});
    Check("LoadSync", [&] { xml.LoadSync(m_pointer, L"no such file.xml"); }, {"put_async", "load"});
    Check("LoadXmlFile", [&] { LoadXmlFile(L"no such file.xml", m_pointer); }, {"load"});
    Check("SaveXmlFile", [&] { SaveXmlFile(L"no such folder\\file.xml", m_pointer); }, {"save"});
    Check("GetLandXmlRoot", [&] { GetLandXmlRoot(m_pointer); }, {"selectSingleNode"});
}

}  // namespace
