#include "xml/XmlStatusInternal.h"

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

}  // namespace xml_internal
