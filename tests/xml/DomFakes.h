// DOM objects for the tests: documents, nodes, lists and maps that forward to real ones, fail when told to and count
// their references, and a parse error that says what a test wants.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "xml/Msxml2.h"

namespace quon_test
{

/// What a fake does in place of a call. `S_FALSE` without a result is how the DOM says "nothing".
using Action = std::function<HRESULT()>;

inline Action Returns(HRESULT result)
{
    return [result] { return result; };
}

/// Counts the calls of a fake by method and replaces chosen ones.
class CallPlan
{
public:
    /// From the call number `from` on (1 is the first) `method` does `action` instead of its work.
    void Replace(const std::string& method, Action action, int from = 1)
    {
        m_rules[method] = {from, std::move(action)};
    }
    int Count(const std::string& method) const
    {
        const auto found = m_counts.find(method);
        return found == m_counts.end() ? 0 : found->second;
    }

    template <typename Work>
    HRESULT Run(const char* method, const Work& work)
    {
        const int call = ++m_counts[method];
        const auto rule = m_rules.find(method);
        return rule != m_rules.end() && call >= rule->second.first ? rule->second.second() : work();
    }

private:
    std::map<std::string, int> m_counts;
    std::map<std::string, std::pair<int, Action>> m_rules;
};

/// `IUnknown` and `IDispatch` of a fake. Fakes live on the stack or in the test: the last release does not delete them.
template <typename Interface>
class Fake : public Interface
{
public:
    virtual ~Fake() = default;

    CallPlan plan;
    LONG references = 1;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override
    {
        return plan.Run("QueryInterface", [&]() -> HRESULT {
            if (!Offers(iid))
            {
                return QueryInner(iid, object);
            }
            *object = static_cast<Interface*>(this);
            ++references;
            return S_OK;
        });
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(++references); }
    ULONG STDMETHODCALLTYPE Release() override { return static_cast<ULONG>(--references); }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override
    {
        return E_NOTIMPL;
    }

protected:
    virtual bool Offers(REFIID iid) const
    {
        return ::IsEqualIID(iid, IID_IUnknown) || ::IsEqualIID(iid, IID_IDispatch) ||
               ::IsEqualIID(iid, __uuidof(Interface));
    }
    virtual HRESULT QueryInner(REFIID, void** object)
    {
        *object = nullptr;
        return E_NOINTERFACE;
    }
};

template <typename Interface>
void Give(Interface* object, Interface** out)
{
    object->AddRef();
    *out = object;
}

/// What a list and a map of given nodes have in common.
template <typename Interface>
class FakeNodes : public Fake<Interface>
{
public:
    std::vector<MSXML2::IXMLDOMNodePtr> nodes;
    std::optional<LONG> length;  ///< what it says it holds, when that is not the truth
    size_t cursor = 0;

    HRESULT STDMETHODCALLTYPE get_item(LONG index, MSXML2::IXMLDOMNode** item) override
    {
        return this->plan.Run("get_item", [&] { return GiveNode(static_cast<size_t>(index), item); });
    }
    HRESULT STDMETHODCALLTYPE get_length(LONG* out) override
    {
        return this->plan.Run("get_length",
                              [&] { return *out = length.value_or(static_cast<LONG>(nodes.size())), S_OK; });
    }
    HRESULT STDMETHODCALLTYPE raw_nextNode(MSXML2::IXMLDOMNode** item) override
    {
        return this->plan.Run("nextNode", [&] { return GiveNode(cursor++, item); });
    }
    HRESULT STDMETHODCALLTYPE raw_reset() override
    {
        return this->plan.Run("reset", [&] { return cursor = 0, S_OK; });
    }
    HRESULT STDMETHODCALLTYPE get__newEnum(IUnknown**) override { return E_NOTIMPL; }

protected:
    HRESULT GiveNode(size_t index, MSXML2::IXMLDOMNode** item)
    {
        if (index >= nodes.size())
        {
            *item = nullptr;
            return S_FALSE;
        }
        Give(nodes[index].GetInterfacePtr(), item);
        return S_OK;
    }
};

/// A list of given nodes.
using FakeList = FakeNodes<MSXML2::IXMLDOMNodeList>;

/// A map of given attributes: whatever name it is asked for, it gives the first.
class FakeMap : public FakeNodes<MSXML2::IXMLDOMNamedNodeMap>
{
public:
    HRESULT STDMETHODCALLTYPE raw_getNamedItem(BSTR, MSXML2::IXMLDOMNode** item) override
    {
        return plan.Run("getNamedItem", [&] { return GiveNode(0, item); });
    }
    HRESULT STDMETHODCALLTYPE raw_setNamedItem(MSXML2::IXMLDOMNode*, MSXML2::IXMLDOMNode**) override
    {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE raw_removeNamedItem(BSTR, MSXML2::IXMLDOMNode**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE raw_getQualifiedItem(BSTR, BSTR, MSXML2::IXMLDOMNode**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE raw_removeQualifiedItem(BSTR, BSTR, MSXML2::IXMLDOMNode**) override { return E_NOTIMPL; }
};

/// A parse error with given properties.
class FakeParseError : public Fake<MSXML2::IXMLDOMParseError>
{
public:
    LONG code = 0;
    LONG line = 0;
    LONG position = 0;
    const wchar_t* reason = nullptr;
    const wchar_t* url = nullptr;

    HRESULT STDMETHODCALLTYPE get_errorCode(LONG* out) override
    {
        return plan.Run("get_errorCode", [&] { return *out = code, code == 0 ? S_FALSE : S_OK; });
    }
    HRESULT STDMETHODCALLTYPE get_url(BSTR* out) override
    {
        return plan.Run("get_url", [&] { return *out = ::SysAllocString(url), S_OK; });
    }
    HRESULT STDMETHODCALLTYPE get_reason(BSTR* out) override
    {
        return plan.Run("get_reason", [&] { return *out = ::SysAllocString(reason), S_OK; });
    }
    HRESULT STDMETHODCALLTYPE get_srcText(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_line(LONG* out) override
    {
        return plan.Run("get_line", [&] { return *out = line, S_OK; });
    }
    HRESULT STDMETHODCALLTYPE get_linepos(LONG* out) override
    {
        return plan.Run("get_linepos", [&] { return *out = position, S_OK; });
    }
    HRESULT STDMETHODCALLTYPE get_filepos(LONG*) override { return E_NOTIMPL; }
};

// One method that forwards: FORWARD(get_text, (BSTR* text), (text)). In plans each has its name without "raw_".
#define FORWARD_AS(name, method, parameters, arguments)                          \
    HRESULT STDMETHODCALLTYPE method parameters override                         \
    {                                                                            \
        return this->plan.Run(#name, [&] { return m_inner->method arguments; }); \
    }
#define FORWARD(method, parameters, arguments) FORWARD_AS(method, method, parameters, arguments)
#define FORWARD_RAW(method, parameters, arguments) FORWARD_AS(method, raw_##method, parameters, arguments)

/// Forwards every operation of a node to a real one. Set `children` or `attributes` to hand out those instead.
template <typename Interface, typename Pointer>
class ForwardingNode : public Fake<Interface>
{
public:
    explicit ForwardingNode(Pointer inner) : m_inner(std::move(inner)) {}

    MSXML2::IXMLDOMNodeList* children = nullptr;
    MSXML2::IXMLDOMNamedNodeMap* attributes = nullptr;

    HRESULT STDMETHODCALLTYPE get_childNodes(MSXML2::IXMLDOMNodeList** out) override
    {
        return this->plan.Run("get_childNodes", [&] {
            return children != nullptr ? (Give(children, out), S_OK) : m_inner->get_childNodes(out);
        });
    }
    HRESULT STDMETHODCALLTYPE get_attributes(MSXML2::IXMLDOMNamedNodeMap** out) override
    {
        return this->plan.Run("get_attributes", [&] {
            return attributes != nullptr ? (Give(attributes, out), S_OK) : m_inner->get_attributes(out);
        });
    }
    FORWARD(get_nodeName, (BSTR * out), (out))
    FORWARD(get_nodeValue, (VARIANT * out), (out))
    FORWARD(put_nodeValue, (VARIANT value), (value))
    FORWARD(get_nodeType, (MSXML2::DOMNodeType * out), (out))
    FORWARD(get_parentNode, (MSXML2::IXMLDOMNode * *out), (out))
    FORWARD(get_firstChild, (MSXML2::IXMLDOMNode * *out), (out))
    FORWARD(get_lastChild, (MSXML2::IXMLDOMNode * *out), (out))
    FORWARD(get_previousSibling, (MSXML2::IXMLDOMNode * *out), (out))
    FORWARD(get_nextSibling, (MSXML2::IXMLDOMNode * *out), (out))
    FORWARD_RAW(insertBefore, (MSXML2::IXMLDOMNode * node, VARIANT before, MSXML2::IXMLDOMNode** out),
                (node, before, out))
    FORWARD_RAW(replaceChild, (MSXML2::IXMLDOMNode * node, MSXML2::IXMLDOMNode* old, MSXML2::IXMLDOMNode** out),
                (node, old, out))
    FORWARD_RAW(removeChild, (MSXML2::IXMLDOMNode * node, MSXML2::IXMLDOMNode** out), (node, out))
    FORWARD_RAW(appendChild, (MSXML2::IXMLDOMNode * node, MSXML2::IXMLDOMNode** out), (node, out))
    FORWARD_RAW(hasChildNodes, (VARIANT_BOOL * out), (out))
    FORWARD(get_ownerDocument, (MSXML2::IXMLDOMDocument * *out), (out))
    FORWARD_RAW(cloneNode, (VARIANT_BOOL deep, MSXML2::IXMLDOMNode** out), (deep, out))
    FORWARD(get_nodeTypeString, (BSTR * out), (out))
    FORWARD(get_text, (BSTR * out), (out))
    FORWARD(put_text, (BSTR text), (text))
    FORWARD(get_specified, (VARIANT_BOOL * out), (out))
    FORWARD(get_definition, (MSXML2::IXMLDOMNode * *out), (out))
    FORWARD(get_nodeTypedValue, (VARIANT * out), (out))
    FORWARD(put_nodeTypedValue, (VARIANT value), (value))
    FORWARD(get_dataType, (VARIANT * out), (out))
    FORWARD(put_dataType, (BSTR name), (name))
    FORWARD(get_xml, (BSTR * out), (out))
    FORWARD_RAW(transformNode, (MSXML2::IXMLDOMNode * sheet, BSTR* out), (sheet, out))
    FORWARD_RAW(selectNodes, (BSTR query, MSXML2::IXMLDOMNodeList** out), (query, out))
    FORWARD_RAW(selectSingleNode, (BSTR query, MSXML2::IXMLDOMNode** out), (query, out))
    FORWARD(get_parsed, (VARIANT_BOOL * out), (out))
    FORWARD(get_namespaceURI, (BSTR * out), (out))
    FORWARD(get_prefix, (BSTR * out), (out))
    FORWARD(get_baseName, (BSTR * out), (out))
    FORWARD_RAW(transformNodeToObject, (MSXML2::IXMLDOMNode * sheet, VARIANT out), (sheet, out))

protected:
    bool Offers(REFIID iid) const override
    {
        return Fake<Interface>::Offers(iid) || ::IsEqualIID(iid, __uuidof(MSXML2::IXMLDOMNode));
    }
    HRESULT QueryInner(REFIID iid, void** object) override { return m_inner->QueryInterface(iid, object); }

    Pointer m_inner;
};

using ForwardingAnyNode = ForwardingNode<MSXML2::IXMLDOMNode, MSXML2::IXMLDOMNodePtr>;

/// Forwards every operation of an element.
class ForwardingElement : public ForwardingNode<MSXML2::IXMLDOMElement, MSXML2::IXMLDOMElementPtr>
{
public:
    using ForwardingNode::ForwardingNode;

    FORWARD(get_tagName, (BSTR * out), (out))
    FORWARD_RAW(getAttribute, (BSTR name, VARIANT* out), (name, out))
    FORWARD_RAW(setAttribute, (BSTR name, VARIANT value), (name, value))
    FORWARD_RAW(removeAttribute, (BSTR name), (name))
    FORWARD_RAW(getAttributeNode, (BSTR name, MSXML2::IXMLDOMAttribute** out), (name, out))
    FORWARD_RAW(setAttributeNode, (MSXML2::IXMLDOMAttribute * attribute, MSXML2::IXMLDOMAttribute** out),
                (attribute, out))
    FORWARD_RAW(removeAttributeNode, (MSXML2::IXMLDOMAttribute * attribute, MSXML2::IXMLDOMAttribute** out),
                (attribute, out))
    FORWARD_RAW(getElementsByTagName, (BSTR name, MSXML2::IXMLDOMNodeList** out), (name, out))
    FORWARD_RAW(normalize, (), ())
};

/// Forwards every operation of a document. Set `parseError` to hand out that.
class ForwardingDocument : public ForwardingNode<MSXML2::IXMLDOMDocument, MSXML2::IXMLDOMDocumentPtr>
{
public:
    using ForwardingNode::ForwardingNode;

    MSXML2::IXMLDOMParseError* parseError = nullptr;
    /// Consulted by `get_readyState` when it is set.
    std::function<LONG()> readyState;

    HRESULT STDMETHODCALLTYPE get_parseError(MSXML2::IXMLDOMParseError** out) override
    {
        return plan.Run("get_parseError", [&] {
            return parseError != nullptr ? (Give(parseError, out), S_OK) : m_inner->get_parseError(out);
        });
    }
    HRESULT STDMETHODCALLTYPE get_readyState(LONG* out) override
    {
        return plan.Run("get_readyState",
                        [&] { return readyState ? (*out = readyState(), S_OK) : m_inner->get_readyState(out); });
    }
    FORWARD(get_doctype, (MSXML2::IXMLDOMDocumentType * *out), (out))
    FORWARD(get_implementation, (MSXML2::IXMLDOMImplementation * *out), (out))
    FORWARD(get_documentElement, (MSXML2::IXMLDOMElement * *out), (out))
    FORWARD(putref_documentElement, (MSXML2::IXMLDOMElement * element), (element))
    FORWARD_RAW(createElement, (BSTR name, MSXML2::IXMLDOMElement** out), (name, out))
    FORWARD_RAW(createDocumentFragment, (MSXML2::IXMLDOMDocumentFragment * *out), (out))
    FORWARD_RAW(createTextNode, (BSTR text, MSXML2::IXMLDOMText** out), (text, out))
    FORWARD_RAW(createComment, (BSTR text, MSXML2::IXMLDOMComment** out), (text, out))
    FORWARD_RAW(createCDATASection, (BSTR data, MSXML2::IXMLDOMCDATASection** out), (data, out))
    FORWARD_RAW(createProcessingInstruction, (BSTR target, BSTR data, MSXML2::IXMLDOMProcessingInstruction** out),
                (target, data, out))
    FORWARD_RAW(createAttribute, (BSTR name, MSXML2::IXMLDOMAttribute** out), (name, out))
    FORWARD_RAW(createEntityReference, (BSTR name, MSXML2::IXMLDOMEntityReference** out), (name, out))
    FORWARD_RAW(getElementsByTagName, (BSTR name, MSXML2::IXMLDOMNodeList** out), (name, out))
    FORWARD_RAW(createNode, (VARIANT type, BSTR name, BSTR uri, MSXML2::IXMLDOMNode** out), (type, name, uri, out))
    FORWARD_RAW(nodeFromID, (BSTR id, MSXML2::IXMLDOMNode** out), (id, out))
    FORWARD_RAW(load, (VARIANT source, VARIANT_BOOL* out), (source, out))
    FORWARD(get_url, (BSTR * out), (out))
    FORWARD(get_async, (VARIANT_BOOL * out), (out))
    FORWARD(put_async, (VARIANT_BOOL value), (value))
    FORWARD_RAW(abort, (), ())
    FORWARD_RAW(loadXML, (BSTR text, VARIANT_BOOL* out), (text, out))
    FORWARD_RAW(save, (VARIANT destination), (destination))
    FORWARD(get_validateOnParse, (VARIANT_BOOL * out), (out))
    FORWARD(put_validateOnParse, (VARIANT_BOOL value), (value))
    FORWARD(get_resolveExternals, (VARIANT_BOOL * out), (out))
    FORWARD(put_resolveExternals, (VARIANT_BOOL value), (value))
    FORWARD(get_preserveWhiteSpace, (VARIANT_BOOL * out), (out))
    FORWARD(put_preserveWhiteSpace, (VARIANT_BOOL value), (value))
    FORWARD(put_onreadystatechange, (VARIANT sink), (sink))
    FORWARD(put_ondataavailable, (VARIANT sink), (sink))
    FORWARD(put_ontransformnode, (VARIANT sink), (sink))
};

#undef FORWARD
#undef FORWARD_RAW
#undef FORWARD_AS

/// A list whose failures carry an error object, as the platform's do.
class DescribingList : public Fake<MSXML2::IXMLDOMNodeList>, public ISupportErrorInfo
{
public:
    HRESULT supports = S_OK;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override
    {
        if (::IsEqualIID(iid, IID_ISupportErrorInfo))
        {
            *object = static_cast<ISupportErrorInfo*>(this);
            ++references;
            return S_OK;
        }
        return Fake::QueryInterface(iid, object);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return Fake::AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return Fake::Release(); }
    HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID iid) override
    {
        return ::IsEqualIID(iid, __uuidof(MSXML2::IXMLDOMNodeList)) ? supports : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE get_item(LONG, MSXML2::IXMLDOMNode**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE raw_nextNode(MSXML2::IXMLDOMNode**) override { return Refuse(); }
    HRESULT STDMETHODCALLTYPE raw_reset() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE get__newEnum(IUnknown**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_length(LONG*) override { return Refuse(); }

private:
    static HRESULT Refuse()
    {
        ICreateErrorInfo* create = nullptr;
        ::CreateErrorInfo(&create);
        create->SetDescription(const_cast<wchar_t*>(L"not today"));
        IErrorInfo* info = nullptr;
        create->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&info));
        create->Release();
        ::SetErrorInfo(0, info);
        info->Release();
        return E_ACCESSDENIED;
    }
};

}  // namespace quon_test
