#include "xml/XmlInternal.h"

#include <cwchar>

namespace xml_internal
{

void DomArgument::Allocate(const wchar_t* text)
{
    m_text = ::SysAllocString(text);
    if (m_text == nullptr)
    {
        _com_issue_error(E_OUTOFMEMORY);
    }
}

CString TextOfComError(const _com_error& error)
{
    CString text(L"COM Error:\n");
    text += static_cast<const wchar_t*>(error.Description());
    return text;
}

CString DescribeComError(const _com_error& error)
{
    const CString description(static_cast<const wchar_t*>(error.Description()));
    CString text(L"_com_error = ");
    text += description.IsEmpty() ? L"No IErrorInfo recorded - Error is undefined!" : description.GetString();
    return text;
}

CString TextOfVariant(const VARIANT& value)
{
    if (value.vt == VT_BSTR)
    {
        return CString(value.bstrVal);
    }
    // The source is not changed; some headers declare it as if it were.
    _variant_t text;
    return SUCCEEDED(::VariantChangeType(&text, const_cast<VARIANT*>(&value), 0, VT_BSTR)) ? CString(text.bstrVal)
                                                                                           : CString();
}

bool IsText(const VARIANT& value, const CString& text)
{
    if (value.vt != VT_BSTR)
    {
        return TextOfVariant(value) == text;
    }
    return std::wcscmp(value.bstrVal == nullptr ? L"" : value.bstrVal, text) == 0;
}

CString NameOf(MSXML2::IXMLDOMNode* node)
{
    DomText name;
    MSXML2::Check(MSXML2::NotNull(node)->get_nodeName(name.Out()), node);
    return CString(name.Get());
}

MSXML2::IXMLDOMNodePtr MakeElement(MSXML2::IXMLDOMDocument* document, const CString& name)
{
    MSXML2::IXMLDOMElement* element = nullptr;
    MSXML2::Check(MSXML2::NotNull(document)->createElement(DomArgument(name), &element), document);
    return MSXML2::IXMLDOMNodePtr(element, false);
}

}  // namespace xml_internal
