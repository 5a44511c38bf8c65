// Bodies for the compiler's COM support (abi/stubs/comdef.h), as far as the library and the program of this check call
// it.

#include <windows.h>
#include <comdef.h>

class _bstr_t::Data_t
{
public:
    BSTR text = nullptr;
    char* ansi = nullptr;
    long count = 1;
};

namespace
{

BSTR NewText(const wchar_t* text)
{
    if (text == nullptr)
    {
        return nullptr;
    }
    BSTR const made = ::SysAllocString(text);
    if (made == nullptr)
    {
        _com_issue_error(E_OUTOFMEMORY);
    }
    return made;
}

void CheckResult(HRESULT result)
{
    if (FAILED(result))
    {
        _com_issue_error(result);
    }
}

}  // namespace

_bstr_t::_bstr_t() noexcept : m_Data(nullptr) {}
_bstr_t::_bstr_t(const _bstr_t& other) noexcept : m_Data(other.m_Data)
{
    if (m_Data)
    {
        ::InterlockedIncrement(&m_Data->count);
    }
}

_bstr_t::_bstr_t(const wchar_t* text) : m_Data(new Data_t)
{
    m_Data->text = NewText(text);
}

_bstr_t::_bstr_t(BSTR text, bool copy) : m_Data(new Data_t)
{
    m_Data->text = copy ? NewText(text) : text;
}

_bstr_t::~_bstr_t() noexcept
{
    if (m_Data && ::InterlockedDecrement(&m_Data->count) == 0)
    {
        ::SysFreeString(m_Data->text);
        delete[] m_Data->ansi;
        delete m_Data;
    }
}

_bstr_t& _bstr_t::operator=(const _bstr_t& other) noexcept
{
    _bstr_t copy(other);
    Data_t* const mine = m_Data;
    m_Data = copy.m_Data;
    copy.m_Data = mine;
    return *this;
}

_bstr_t::operator const wchar_t*() const noexcept
{
    return m_Data ? m_Data->text : nullptr;
}

_bstr_t::operator wchar_t*() const noexcept
{
    return m_Data ? m_Data->text : nullptr;
}

_bstr_t::operator const char*() const
{
    if (!m_Data || !m_Data->text)
    {
        return nullptr;
    }
    if (!m_Data->ansi)
    {
        const int size = ::WideCharToMultiByte(CP_ACP, 0, m_Data->text, -1, nullptr, 0, nullptr, nullptr);
        m_Data->ansi = new char[static_cast<size_t>(size)];
        ::WideCharToMultiByte(CP_ACP, 0, m_Data->text, -1, m_Data->ansi, size, nullptr, nullptr);
    }
    return m_Data->ansi;
}

unsigned int _bstr_t::length() const noexcept
{
    return m_Data ? ::SysStringLen(m_Data->text) : 0;
}

BSTR* _bstr_t::GetAddress()
{
    *this = _bstr_t(nullptr, false);
    return &m_Data->text;
}

bool _bstr_t::operator!() const noexcept
{
    return !m_Data || !m_Data->text;
}

_variant_t::_variant_t() noexcept
{
    ::VariantInit(this);
}

_variant_t::_variant_t(const _variant_t& o)
{
    ::VariantInit(this);
    CheckResult(::VariantCopy(this, const_cast<_variant_t*>(&o)));
}

_variant_t::_variant_t(short v, VARTYPE type)
{
    ::VariantInit(this);
    vt = type;
    V_I2(this) = type == VT_BOOL ? (v ? VARIANT_TRUE : VARIANT_FALSE) : v;
}

_variant_t::_variant_t(long v, VARTYPE type)
{
    ::VariantInit(this);
    vt = type;
    V_I4(this) = v;
}

_variant_t::_variant_t(unsigned long v) noexcept
{
    ::VariantInit(this);
    vt = VT_UI4;
    V_UI4(this) = v;
}

_variant_t::_variant_t(double v, VARTYPE type)
{
    ::VariantInit(this);
    vt = type;
    V_R8(this) = v;
}

_variant_t::_variant_t(__int64 v) noexcept
{
    ::VariantInit(this);
    vt = VT_I8;
    V_I8(this) = v;
}

_variant_t::_variant_t(bool v) noexcept
{
    ::VariantInit(this);
    vt = VT_BOOL;
    V_BOOL(this) = v ? VARIANT_TRUE : VARIANT_FALSE;
}

_variant_t::_variant_t(const wchar_t* text)
{
    ::VariantInit(this);
    vt = VT_BSTR;
    V_BSTR(this) = NewText(text);
}

_variant_t::_variant_t(int value) noexcept
{
    ::VariantInit(this);
    vt = VT_INT;
    V_INT(this) = value;
}

_variant_t::_variant_t(unsigned int value) noexcept
{
    ::VariantInit(this);
    vt = VT_UINT;
    V_UINT(this) = value;
}

_variant_t::_variant_t(IDispatch* object, bool add) noexcept
{
    ::VariantInit(this);
    vt = VT_DISPATCH;
    V_DISPATCH(this) = object;
    if (object != nullptr && add)
    {
        object->AddRef();
    }
}

_variant_t::_variant_t(IUnknown* object, bool add) noexcept
{
    ::VariantInit(this);
    vt = VT_UNKNOWN;
    V_UNKNOWN(this) = object;
    if (object != nullptr && add)
    {
        object->AddRef();
    }
}

_variant_t::~_variant_t() noexcept
{
    ::VariantClear(this);
}

_variant_t& _variant_t::operator=(const _variant_t& other)
{
    CheckResult(::VariantCopy(this, const_cast<_variant_t*>(&other)));
    return *this;
}

_com_error::_com_error(HRESULT r, IErrorInfo* info, bool add) noexcept
    : m_hresult(r), m_perrinfo(info), m_pszMsg(nullptr)
{
    if (info && add)
    {
        info->AddRef();
    }
}

_com_error::_com_error(const _com_error& o) noexcept
    : m_hresult(o.m_hresult), m_perrinfo(o.m_perrinfo), m_pszMsg(nullptr)
{
    if (m_perrinfo)
    {
        m_perrinfo->AddRef();
    }
}

_com_error::~_com_error() noexcept
{
    if (m_perrinfo)
    {
        m_perrinfo->Release();
    }
}

HRESULT _com_error::Error() const noexcept
{
    return m_hresult;
}

_bstr_t _com_error::Description() const
{
    BSTR text = nullptr;
    if (m_perrinfo)
    {
        m_perrinfo->GetDescription(&text);
    }
    return _bstr_t(text, false);
}

void __stdcall _com_raise_error(HRESULT r, IErrorInfo* info)
{
    throw _com_error(r, info);
}

void __stdcall _com_issue_error(HRESULT r)
{
    throw _com_error(r, nullptr);
}

void __stdcall _com_issue_errorex(HRESULT r, IUnknown*, REFIID)
{
    throw _com_error(r, nullptr);
}
