// What the tests of the XML layer share: documents from text, status texts, errors with a description.
#pragma once

#include <gtest/gtest.h>

#include <afx.h>
#include <afxcoll.h>

#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "xml/Msxml2.h"

namespace quon_test
{

/// COM for the test's thread.
class ComApartment
{
public:
    ComApartment() { ::CoInitialize(nullptr); }
    ~ComApartment() { ::CoUninitialize(); }
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;
};

/// A test with COM; derive the suites from it.
class XmlTest : public ::testing::Test
{
protected:
    ComApartment m_com;
};

inline MSXML2::IXMLDOMDocumentPtr EmptyDocument()
{
    MSXML2::IXMLDOMDocumentPtr document;
    EXPECT_HRESULT_SUCCEEDED(document.CreateInstance(MSXML2::CLSID_DOMDocument));
    // By itself a document loads in the background.
    document->Putasync(VARIANT_FALSE);
    return document;
}

/// A document parsed from `text`.
inline MSXML2::IXMLDOMDocumentPtr Parse(const wchar_t* text)
{
    const MSXML2::IXMLDOMDocumentPtr document = EmptyDocument();
    EXPECT_EQ(document->loadXML(text), VARIANT_TRUE) << "not well-formed";
    return document;
}

/// The node that `query` finds; a test that finds none stops.
inline MSXML2::IXMLDOMNodePtr Find(const MSXML2::IXMLDOMDocumentPtr& document, const wchar_t* query)
{
    const MSXML2::IXMLDOMNodePtr node = document->selectSingleNode(query);
    if (!node)
    {
        throw std::runtime_error("the test's own query finds nothing");
    }
    return node;
}

/// The document as text, without the line ends and tabs that some parsers indent it with.
inline std::wstring Xml(const MSXML2::IXMLDOMDocumentPtr& document)
{
    const _bstr_t text = document->Getxml();
    std::wstring result(text.length() == 0 ? L"" : static_cast<const wchar_t*>(text));
    std::erase_if(result, [](wchar_t c) { return c == L'\r' || c == L'\n' || c == L'\t'; });
    return result;
}

/// An attribute's text; "(none)" without it.
inline std::wstring Attribute(const MSXML2::IXMLDOMNodePtr& node, const wchar_t* name)
{
    const MSXML2::IXMLDOMElementPtr element(node);
    _variant_t value;
    if (!element || element->raw_getAttribute(_bstr_t(name), &value) != S_OK || value.vt != VT_BSTR)
    {
        return L"(none)";
    }
    return value.bstrVal;
}

/// The text that `work` throws; "(nothing thrown)" when it does not.
template <typename Work>
std::wstring StatusOf(const Work& work)
{
    try
    {
        work();
    }
    catch (const CString& status)
    {
        return status.GetString();
    }
    return L"(nothing thrown)";
}

/// The result of the `_com_error` that `work` raises; S_OK when it does not.
template <typename Work>
HRESULT ErrorOf(const Work& work)
{
    try
    {
        work();
    }
    catch (const _com_error& error)
    {
        return error.Error();
    }
    return S_OK;
}

/// Raises `_com_error` with `result` and, unless it is null, a description.
[[noreturn]] inline void RaiseDescribed(HRESULT result, const wchar_t* description)
{
    IErrorInfo* info = nullptr;
    if (description != nullptr)
    {
        ICreateErrorInfo* create = nullptr;
        ::CreateErrorInfo(&create);
        create->SetDescription(const_cast<wchar_t*>(description));
        create->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&info));
        create->Release();
    }
    throw _com_error(result, info);
}

inline void Fill(CStringArray& array, std::initializer_list<const wchar_t*> strings)
{
    for (const wchar_t* string : strings)
    {
        array.Add(string);
    }
}

inline std::vector<std::wstring> Contents(const CStringArray& array)
{
    std::vector<std::wstring> strings;
    for (INT_PTR i = 0; i < array.GetSize(); ++i)
    {
        strings.emplace_back(array[i].GetString());
    }
    return strings;
}

/// The contents of a returned array, which is deleted.
inline std::vector<std::wstring> Take(CStringArray* array)
{
    const std::unique_ptr<CStringArray> owned(array);
    return Contents(*owned);
}

using Strings = std::vector<std::wstring>;

}  // namespace quon_test
