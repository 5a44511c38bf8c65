/// @file
/// The same work on an XML document by bare calls of the platform's DOM: no checks, nothing raised, names made once.
#pragma once

#include "xml/Msxml2.h"

#include <cwchar>
#include <string>
#include <vector>

namespace quon_benchmark
{

using DomNodes = std::vector<IXMLDOMNode*>;

inline void ReleaseAll(DomNodes& nodes)
{
    for (IXMLDOMNode* const node : nodes)
    {
        node->Release();
    }
    nodes.clear();
}

/// Appends a reference to each node of the list and below it that has the name.
inline void CollectBare(IXMLDOMNodeList* list, const wchar_t* name, DomNodes& found)
{
    IXMLDOMNode* node = nullptr;
    while (list->nextNode(&node) == S_OK)
    {
        BSTR nodeName = nullptr;
        node->get_nodeName(&nodeName);
        const bool matches = std::wcscmp(nodeName, name) == 0;
        ::SysFreeString(nodeName);
        IXMLDOMNodeList* children = nullptr;
        node->get_childNodes(&children);
        if (matches)
        {
            node->AddRef();
            found.push_back(node);
        }
        CollectBare(children, name, found);
        children->Release();
        node->Release();
    }
}

inline DomNodes FindByNameBare(IXMLDOMDocument* document, const wchar_t* name)
{
    DomNodes found;
    IXMLDOMNodeList* children = nullptr;
    document->get_childNodes(&children);
    CollectBare(children, name, found);
    children->Release();
    return found;
}

inline DomNodes FindByTagName(IXMLDOMDocument* document, BSTR name)
{
    DomNodes found;
    IXMLDOMNodeList* list = nullptr;
    document->getElementsByTagName(name, &list);
    IXMLDOMNode* node = nullptr;
    while (list->nextNode(&node) == S_OK)
    {
        found.push_back(node);
    }
    list->Release();
    return found;
}

/// Texts that the DOM handed out, freed at the end.
class BareTexts
{
public:
    BareTexts() = default;
    BareTexts(BareTexts&&) = default;
    BareTexts& operator=(BareTexts&&) = default;
    ~BareTexts()
    {
        for (BSTR const text : m_texts)
        {
            ::SysFreeString(text);
        }
    }

    void Reserve(std::size_t count) { m_texts.reserve(count); }
    void Add(BSTR text) { m_texts.push_back(text); }

    std::size_t Length() const
    {
        std::size_t length = 0;
        for (BSTR const text : m_texts)
        {
            length += ::SysStringLen(text);
        }
        return length;
    }

private:
    std::vector<BSTR> m_texts;
};

inline BareTexts GetTextsBare(const DomNodes& nodes)
{
    BareTexts texts;
    texts.Reserve(nodes.size());
    for (IXMLDOMNode* const node : nodes)
    {
        BSTR text = nullptr;
        node->get_text(&text);
        texts.Add(text);
    }
    return texts;
}

inline BareTexts GetAttributesBare(const DomNodes& nodes, BSTR name)
{
    BareTexts values;
    values.Reserve(nodes.size());
    for (IXMLDOMNode* const node : nodes)
    {
        IXMLDOMNamedNodeMap* attributes = nullptr;
        node->get_attributes(&attributes);
        IXMLDOMNode* attribute = nullptr;
        attributes->getNamedItem(name, &attribute);
        VARIANT value;
        ::VariantInit(&value);
        attribute->get_nodeValue(&value);
        values.Add(value.bstrVal);
        attribute->Release();
        attributes->Release();
    }
    return values;
}

/// By the call that elements have for it.
inline BareTexts GetAttributesOfElements(const DomNodes& nodes, BSTR name)
{
    BareTexts values;
    values.Reserve(nodes.size());
    for (IXMLDOMNode* const node : nodes)
    {
        IXMLDOMElement* element = nullptr;
        node->QueryInterface(__uuidof(IXMLDOMElement), reinterpret_cast<void**>(&element));
        VARIANT value;
        ::VariantInit(&value);
        element->getAttribute(name, &value);
        values.Add(value.bstrVal);
        element->Release();
    }
    return values;
}

inline void CreateElementsBare(IXMLDOMDocument* document, IXMLDOMNode* root, BSTR name, int count)
{
    for (int index = 0; index < count; ++index)
    {
        IXMLDOMElement* element = nullptr;
        document->createElement(name, &element);
        IXMLDOMNode* appended = nullptr;
        root->appendChild(element, &appended);
        appended->Release();
        element->Release();
    }
}

/// @return the parser's code of an error, 0 for a document that could be loaded
inline long LoadBare(IXMLDOMDocument* document, const VARIANT& fileName)
{
    document->put_async(VARIANT_FALSE);
    VARIANT_BOOL loaded = VARIANT_FALSE;
    document->load(fileName, &loaded);
    IXMLDOMParseError* error = nullptr;
    document->get_parseError(&error);
    long code = 0;
    error->get_errorCode(&code);
    error->Release();
    return loaded == VARIANT_TRUE ? code : -1;
}

}  // namespace quon_benchmark
