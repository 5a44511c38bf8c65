#include "xml/XmlInternal.h"

namespace xml_internal
{

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

}  // namespace xml_internal
