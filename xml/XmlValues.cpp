#include "xml/XmlValues.h"

#include "base/RuntimeInternal.h"
#include "xml/DomTextInternal.h"

namespace
{

using namespace xml_internal;

// -1 until asked, then 1 or 0. Without a lock: a race repeats the same answer.
int g_nWindowsXPOrLater = -1;

// The typed value of what `query` finds, converted to `type`. Nothing found, and a conversion that succeeds without
// giving the type, leave another type in it.
_variant_t ReadValue(const MSXML2::IXMLDOMNodePtr& node, const CString& query, VARTYPE type)
{
    const MSXML2::IXMLDOMNodePtr found = node->selectSingleNode(ToBstr(query));
    _variant_t value = found ? found->GetnodeTypedValue() : _variant_t();
    if (found && value.vt != type)
    {
        const HRESULT result = ::VariantChangeType(&value, &value, 0, type);
        if (FAILED(result))
        {
            _com_issue_error(result);
        }
    }
    return value;
}

void WriteAttribute(const MSXML2::IXMLDOMNodePtr& node, const CString& name, const _variant_t& value)
{
    // Empty for a node that is not an element; any other failed query is raised.
    const MSXML2::IXMLDOMElementPtr element(node);
    if (element)
    {
        element->setAttribute(ToBstr(name), value);
    }
}

// One of the user's separators, forced to a text and put back. PutBack is no destructor: a raised error must leave the
// separators changed. One that cannot be read could not be put back, and is left alone.
class SeparatorSwitch
{
public:
    SeparatorSwitch(LCTYPE type, const wchar_t* needed) : m_type(type), m_needed(needed)
    {
        m_known = ::GetLocaleInfoW(LOCALE_USER_DEFAULT, type, m_saved, 4) != 0;
    }
    void Change()
    {
        if (m_known && std::wcscmp(m_saved, m_needed) != 0)
        {
            ::SetLocaleInfoW(LOCALE_USER_DEFAULT, m_type, m_needed);
            m_changed = true;
        }
    }
    void PutBack() const
    {
        if (m_changed)
        {
            ::SetLocaleInfoW(LOCALE_USER_DEFAULT, m_type, m_saved);
        }
    }

private:
    LCTYPE m_type;
    const wchar_t* m_needed;
    wchar_t m_saved[4] = {};
    bool m_known = false;
    bool m_changed = false;
};

}  // namespace

CString GetXmlString(const MSXML2::IXMLDOMNodePtr& node, const CString& query)
{
    const MSXML2::IXMLDOMNodePtr found = node->selectSingleNode(ToBstr(query));
    if (!found)
    {
        return CString();
    }
    const _variant_t value = found->GetnodeTypedValue();
    return value.vt == VT_BSTR ? CString(value.bstrVal) : CString();
}

bool GetXmlBool(const MSXML2::IXMLDOMNodePtr& node, const CString& query)
{
    const _variant_t value = ReadValue(node, query, VT_BOOL);
    return value.vt == VT_BOOL && value.boolVal != VARIANT_FALSE;
}

short GetXmlShort(const MSXML2::IXMLDOMNodePtr& node, const CString& query)
{
    const _variant_t value = ReadValue(node, query, VT_I2);
    return value.vt == VT_I2 ? value.iVal : short{0};
}

long GetXmlLong(const MSXML2::IXMLDOMNodePtr& node, const CString& query)
{
    const _variant_t value = ReadValue(node, query, VT_I4);
    return value.vt == VT_I4 ? value.lVal : 0;
}

__int64 GetXmlInt64(const MSXML2::IXMLDOMNodePtr& node, const CString& query)
{
    if (!IsWindowsXPOrLater())
    {
        const CString text = GetXmlString(node, query);
        __int64 value = 0;
        return RuntimeSwscanf(text.GetString(), L"%I64d", &value) == 1 ? value : 0;
    }
    const _variant_t value = ReadValue(node, query, VT_I8);
    return value.vt == VT_I8 ? value.llVal : 0;
}

unsigned long GetXmlULong(const MSXML2::IXMLDOMNodePtr& node, const CString& query)
{
    const _variant_t value = ReadValue(node, query, VT_UI4);
    return value.vt == VT_UI4 ? value.ulVal : 0;
}

double GetXmlDouble(const MSXML2::IXMLDOMNodePtr& node, const CString& query)
{
    SeparatorSwitch decimal(LOCALE_SDECIMAL, L".");
    SeparatorSwitch thousands(LOCALE_STHOUSAND, L",");
    decimal.Change();
    thousands.Change();
    const _variant_t value = ReadValue(node, query, VT_R8);
    decimal.PutBack();
    thousands.PutBack();
    return value.vt == VT_R8 ? value.dblVal : 0.0;
}

void SetXmlString(const MSXML2::IXMLDOMNodePtr& node, const CString& name, const CString& value)
{
    WriteAttribute(node, name, _variant_t(value.GetString()));
}

void SetXmlBool(const MSXML2::IXMLDOMNodePtr& node, const CString& name, bool value)
{
    WriteAttribute(node, name, _variant_t(value));
}

void SetXmlShort(const MSXML2::IXMLDOMNodePtr& node, const CString& name, short value)
{
    WriteAttribute(node, name, _variant_t(value));
}

void SetXmlLong(const MSXML2::IXMLDOMNodePtr& node, const CString& name, long value)
{
    WriteAttribute(node, name, _variant_t(value));
}

void SetXmlInt64(const MSXML2::IXMLDOMNodePtr& node, const CString& name, __int64 value)
{
    if (!IsWindowsXPOrLater())
    {
        CString text;
        text.Format(L"%I64d", value);
        SetXmlString(node, name, text);
        return;
    }
    WriteAttribute(node, name, _variant_t(value));
}

void SetXmlULong(const MSXML2::IXMLDOMNodePtr& node, const CString& name, unsigned long value)
{
    WriteAttribute(node, name, _variant_t(value));
}

void SetXmlDouble(const MSXML2::IXMLDOMNodePtr& node, const CString& name, double value)
{
    WriteAttribute(node, name, _variant_t(value));
}

bool IsWindowsXPOrLater()
{
    if (g_nWindowsXPOrLater == -1)
    {
        OSVERSIONINFOW version = {};
        version.dwOSVersionInfoSize = sizeof(version);
#if defined(_MSC_VER)
#pragma warning(suppress : 4996 28159)  // Deprecated, and what is asked for: the version that the system shows us.
#endif
        ::GetVersionExW(&version);
        const bool later = version.dwMajorVersion > 5 || (version.dwMajorVersion == 5 && version.dwMinorVersion > 0);
        g_nWindowsXPOrLater = later ? 1 : 0;
    }
    return g_nWindowsXPOrLater == 1;
}
