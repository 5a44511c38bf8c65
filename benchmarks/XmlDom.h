/// @file
/// The same work on an XML document by bare calls of the platform's DOM: no checks, nothing raised, names made once.
#pragma once

#include <afx.h>
#include <afxcoll.h>

#include "xml/Msxml2.h"

#include <cwchar>
#include <memory>
#include <string>
#include <vector>

namespace quon_benchmark
{

using DomNodes = std::vector<MSXML2::IXMLDOMNode*>;

inline void ReleaseAll(DomNodes& nodes)
{
    for (MSXML2::IXMLDOMNode* const node : nodes)
    {
        node->Release();
    }
    nodes.clear();
}

/// Appends a reference to each node of the list and below it that has the name.
inline void CollectBare(MSXML2::IXMLDOMNodeList* list, const wchar_t* name, DomNodes& found)
{
    MSXML2::IXMLDOMNode* node = nullptr;
    while (list->raw_nextNode(&node) == S_OK)
    {
        BSTR nodeName = nullptr;
        node->get_nodeName(&nodeName);
        const bool matches = std::wcscmp(nodeName, name) == 0;
        ::SysFreeString(nodeName);
        MSXML2::IXMLDOMNodeList* children = nullptr;
        node->get_childNodes(&children);
        if (matches)
        {
            found.push_back(node);
        }
        CollectBare(children, name, found);
        children->Release();
        if (!matches)
        {
            node->Release();
        }
    }
}

inline DomNodes FindByNameBare(MSXML2::IXMLDOMDocument* document, const wchar_t* name)
{
    DomNodes found;
    MSXML2::IXMLDOMNodeList* children = nullptr;
    document->get_childNodes(&children);
    CollectBare(children, name, found);
    children->Release();
    return found;
}

inline DomNodes FindByTagName(MSXML2::IXMLDOMDocument* document, BSTR name)
{
    DomNodes found;
    MSXML2::IXMLDOMNodeList* list = nullptr;
    document->raw_getElementsByTagName(name, &list);
    MSXML2::IXMLDOMNode* node = nullptr;
    while (list->raw_nextNode(&node) == S_OK)
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
    explicit BareTexts(std::size_t count) { m_texts.reserve(count); }
    BareTexts(BareTexts&&) = default;
    BareTexts& operator=(BareTexts&&) = default;
    ~BareTexts()
    {
        for (BSTR const text : m_texts)
        {
            ::SysFreeString(text);
        }
    }

    void Take(BSTR text) { m_texts.push_back(text); }

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

/// Strings of the framework, copied from the texts that the DOM handed out.
class BareStrings
{
public:
    explicit BareStrings(std::size_t count) : m_strings(std::make_unique<CStringArray>())
    {
        m_strings->SetSize(static_cast<INT_PTR>(count));
        m_next = m_strings->GetData();
    }

    void Take(BSTR text)
    {
        m_next++->SetString(text, static_cast<int>(::SysStringLen(text)));
        ::SysFreeString(text);
    }

    std::size_t Length() const
    {
        std::size_t length = 0;
        for (const CString* string = m_strings->GetData(); string != m_next; ++string)
        {
            length += static_cast<std::size_t>(string->GetLength());
        }
        return length;
    }

private:
    std::unique_ptr<CStringArray> m_strings;
    CString* m_next;
};

template <typename Texts>
Texts GetTextsBare(const DomNodes& nodes)
{
    Texts texts(nodes.size());
    for (MSXML2::IXMLDOMNode* const node : nodes)
    {
        BSTR text = nullptr;
        node->get_text(&text);
        texts.Take(text);
    }
    return texts;
}

template <typename Texts>
Texts GetAttributesBare(const DomNodes& nodes, BSTR name)
{
    Texts values(nodes.size());
    for (MSXML2::IXMLDOMNode* const node : nodes)
    {
        MSXML2::IXMLDOMNamedNodeMap* attributes = nullptr;
        node->get_attributes(&attributes);
        MSXML2::IXMLDOMNode* attribute = nullptr;
        attributes->raw_getNamedItem(name, &attribute);
        VARIANT value;
        ::VariantInit(&value);
        attribute->get_nodeValue(&value);
        values.Take(value.bstrVal);
        attribute->Release();
        attributes->Release();
    }
    return values;
}

/// By the call that elements have for it.
template <typename Texts>
Texts GetAttributesOfElements(const DomNodes& nodes, BSTR name)
{
    Texts values(nodes.size());
    for (MSXML2::IXMLDOMNode* const node : nodes)
    {
        MSXML2::IXMLDOMElement* element = nullptr;
        node->QueryInterface(__uuidof(MSXML2::IXMLDOMElement), reinterpret_cast<void**>(&element));
        VARIANT value;
        ::VariantInit(&value);
        element->raw_getAttribute(name, &value);
        values.Take(value.bstrVal);
        element->Release();
    }
    return values;
}

inline void CreateElementsBare(MSXML2::IXMLDOMDocument* document, MSXML2::IXMLDOMNode* root, BSTR name, int count)
{
    for (int index = 0; index < count; ++index)
    {
        MSXML2::IXMLDOMElement* element = nullptr;
        document->raw_createElement(name, &element);
        MSXML2::IXMLDOMNode* appended = nullptr;
        root->raw_appendChild(element, &appended);
        appended->Release();
        element->Release();
    }
}

/// @return the parser's code of an error, 0 for a document that could be loaded
inline long LoadBare(MSXML2::IXMLDOMDocument* document, const VARIANT& fileName)
{
    document->put_async(VARIANT_FALSE);
    VARIANT_BOOL loaded = VARIANT_FALSE;
    document->raw_load(fileName, &loaded);
    MSXML2::IXMLDOMParseError* error = nullptr;
    document->get_parseError(&error);
    long code = 0;
    error->get_errorCode(&code);
    error->Release();
    return loaded == VARIANT_TRUE ? code : -1;
}

}  // namespace quon_benchmark
