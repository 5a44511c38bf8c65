#include "xml/DomTextInternal.h"

#include "base/MemoryInternal.h"

namespace xml_internal
{

_bstr_t ToBstr(const CString& text)
{
    _bstr_t copy;
    if (!RunsInMemory([&] { copy = text.GetString(); }))
    {
        _com_issue_error(E_OUTOFMEMORY);
    }
    return copy;
}

CString TextOfVariant(const _variant_t& value)
{
    if (value.vt == VT_BSTR)
    {
        return CString(value.bstrVal);
    }
    // The source is not changed; some headers declare it as if it were.
    _variant_t text;
    return SUCCEEDED(::VariantChangeType(&text, const_cast<_variant_t*>(&value), 0, VT_BSTR)) ? CString(text.bstrVal)
                                                                                              : CString();
}

CString AttributeText(MSXML2::IXMLDOMNode& node, const _bstr_t& name)
{
    const MSXML2::IXMLDOMNamedNodeMapPtr attributes = node.Getattributes();
    const MSXML2::IXMLDOMNodePtr attribute = attributes ? attributes->getNamedItem(name) : MSXML2::IXMLDOMNodePtr();
    return attribute ? TextOfVariant(attribute->GetnodeValue()) : CString();
}

}  // namespace xml_internal
