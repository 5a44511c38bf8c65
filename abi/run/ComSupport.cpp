// Bodies for the compiler's COM support (abi/stubs/comdef.h), as far as the library and the program of this check call
// it.

#include <windows.h>
#include <comdef.h>
#include <msxml.h>

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

_variant_t::~_variant_t() noexcept
{
    ::VariantClear(this);
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

template <class I>
_com_ptr_t<I>::_com_ptr_t() noexcept : m_pInterface(nullptr)
{
}

template <class I>
_com_ptr_t<I>::_com_ptr_t(std::nullptr_t) noexcept : m_pInterface(nullptr)
{
}

template <class I>
_com_ptr_t<I>::_com_ptr_t(const _com_ptr_t& o) noexcept : m_pInterface(o.m_pInterface)
{
    if (m_pInterface)
    {
        m_pInterface->AddRef();
    }
}

template <class I>
_com_ptr_t<I>::_com_ptr_t(_com_ptr_t&& o) noexcept : m_pInterface(o.m_pInterface)
{
    o.m_pInterface = nullptr;
}

template <class I>
_com_ptr_t<I>::_com_ptr_t(Interface* p) noexcept : m_pInterface(p)
{
    if (p)
    {
        p->AddRef();
    }
}

template <class I>
_com_ptr_t<I>::_com_ptr_t(Interface* p, bool add) noexcept : m_pInterface(p)
{
    if (p && add)
    {
        p->AddRef();
    }
}

template <class I>
_com_ptr_t<I>::~_com_ptr_t() noexcept
{
    if (m_pInterface)
    {
        m_pInterface->Release();
    }
}

template <class I>
_com_ptr_t<I>& _com_ptr_t<I>::operator=(Interface* p) noexcept
{
    if (p)
    {
        p->AddRef();
    }
    if (m_pInterface)
    {
        m_pInterface->Release();
    }
    m_pInterface = p;
    return *this;
}

template <class I>
_com_ptr_t<I>& _com_ptr_t<I>::operator=(const _com_ptr_t& o) noexcept
{
    return *this = o.m_pInterface;
}

template <class I>
_com_ptr_t<I>& _com_ptr_t<I>::operator=(_com_ptr_t&& o) noexcept
{
    Interface* p = o.m_pInterface;
    o.m_pInterface = m_pInterface;
    m_pInterface = p;
    return *this;
}

template <class I>
_com_ptr_t<I>& _com_ptr_t<I>::operator=(std::nullptr_t) noexcept
{
    return *this = static_cast<Interface*>(nullptr);
}

template <class I>
_com_ptr_t<I>::operator Interface*() const noexcept
{
    return m_pInterface;
}

template <class I>
_com_ptr_t<I>::operator bool() const noexcept
{
    return m_pInterface != nullptr;
}

template <class I>
bool _com_ptr_t<I>::operator==(Interface* p)
{
    return m_pInterface == p;
}

template <class I>
bool _com_ptr_t<I>::operator!=(Interface* p)
{
    return m_pInterface != p;
}

template <class I>
typename _com_ptr_t<I>::Interface* _com_ptr_t<I>::operator->() const
{
    if (!m_pInterface)
    {
        _com_issue_error(E_POINTER);
    }
    return m_pInterface;
}

template <class I>
typename _com_ptr_t<I>::Interface** _com_ptr_t<I>::operator&() noexcept
{
    if (m_pInterface)
    {
        m_pInterface->Release();
    }
    m_pInterface = nullptr;
    return &m_pInterface;
}

template <class I>
typename _com_ptr_t<I>::Interface* _com_ptr_t<I>::GetInterfacePtr() const noexcept
{
    return m_pInterface;
}

template <class I>
typename _com_ptr_t<I>::Interface*& _com_ptr_t<I>::GetInterfacePtr() noexcept
{
    return m_pInterface;
}

template <class I>
typename _com_ptr_t<I>::Interface* _com_ptr_t<I>::Detach() noexcept
{
    Interface* p = m_pInterface;
    m_pInterface = nullptr;
    return p;
}

template <class I>
HRESULT _com_ptr_t<I>::CreateInstance(const CLSID& c, IUnknown* outer, DWORD context) noexcept
{
    *this = static_cast<Interface*>(nullptr);
    return ::CoCreateInstance(c, outer, context, GetIID(), reinterpret_cast<void**>(&m_pInterface));
}

template <class I>
template <class O>
_com_ptr_t<I>::_com_ptr_t(O* p) : m_pInterface(nullptr)
{
    const HRESULT r = p ? p->QueryInterface(GetIID(), reinterpret_cast<void**>(&m_pInterface)) : E_NOINTERFACE;
    if (FAILED(r) && r != E_NOINTERFACE)
    {
        _com_issue_error(r);
    }
}

template <class I>
template <class O>
_com_ptr_t<I>::_com_ptr_t(const _com_ptr_t<O>& o) : _com_ptr_t(static_cast<IUnknown*>(o.GetInterfacePtr()))
{
}

template class _com_ptr_t<_com_IIID<IXMLDOMNode>>;
template class _com_ptr_t<_com_IIID<IXMLDOMDocument>>;
template class _com_ptr_t<_com_IIID<IXMLDOMElement>>;
template class _com_ptr_t<_com_IIID<IXMLDOMAttribute>>;
template class _com_ptr_t<_com_IIID<IXMLDOMCDATASection>>;
template class _com_ptr_t<_com_IIID<IXMLDOMNamedNodeMap>>;
template class _com_ptr_t<_com_IIID<IXMLDOMNodeList>>;
template class _com_ptr_t<_com_IIID<IXMLDOMParseError>>;
template class _com_ptr_t<_com_IIID<IXMLDOMProcessingInstruction>>;
template class _com_ptr_t<_com_IIID<IXMLDOMText>>;
template class _com_ptr_t<_com_IIID<IPersistStreamInit>>;
template class _com_ptr_t<_com_IIID<IStream>>;
template class _com_ptr_t<_com_IIID<IUnknown>>;
template _com_ptr_t<_com_IIID<IXMLDOMNode>>::_com_ptr_t(const _com_ptr_t<_com_IIID<IXMLDOMDocument>>&);
template _com_ptr_t<_com_IIID<IXMLDOMNode>>::_com_ptr_t(IXMLDOMDocument*);
template _com_ptr_t<_com_IIID<IXMLDOMNode>>::_com_ptr_t(const _com_ptr_t<_com_IIID<IXMLDOMElement>>&);
template _com_ptr_t<_com_IIID<IXMLDOMNode>>::_com_ptr_t(IXMLDOMElement*);
template _com_ptr_t<_com_IIID<IXMLDOMNode>>::_com_ptr_t(const _com_ptr_t<_com_IIID<IXMLDOMAttribute>>&);
template _com_ptr_t<_com_IIID<IXMLDOMNode>>::_com_ptr_t(IXMLDOMAttribute*);
template _com_ptr_t<_com_IIID<IXMLDOMNode>>::_com_ptr_t(const _com_ptr_t<_com_IIID<IXMLDOMCDATASection>>&);
template _com_ptr_t<_com_IIID<IXMLDOMNode>>::_com_ptr_t(IXMLDOMCDATASection*);
template _com_ptr_t<_com_IIID<IXMLDOMNode>>::_com_ptr_t(const _com_ptr_t<_com_IIID<IXMLDOMProcessingInstruction>>&);
template _com_ptr_t<_com_IIID<IXMLDOMNode>>::_com_ptr_t(IXMLDOMProcessingInstruction*);
template _com_ptr_t<_com_IIID<IXMLDOMNode>>::_com_ptr_t(const _com_ptr_t<_com_IIID<IXMLDOMText>>&);
template _com_ptr_t<_com_IIID<IXMLDOMNode>>::_com_ptr_t(IXMLDOMText*);
template _com_ptr_t<_com_IIID<IXMLDOMElement>>::_com_ptr_t(const _com_ptr_t<_com_IIID<IXMLDOMNode>>&);
template _com_ptr_t<_com_IIID<IXMLDOMElement>>::_com_ptr_t(IXMLDOMNode*);
template _com_ptr_t<_com_IIID<IXMLDOMAttribute>>::_com_ptr_t(const _com_ptr_t<_com_IIID<IXMLDOMNode>>&);
template _com_ptr_t<_com_IIID<IXMLDOMAttribute>>::_com_ptr_t(IXMLDOMNode*);
template _com_ptr_t<_com_IIID<IXMLDOMDocument>>::_com_ptr_t(const _com_ptr_t<_com_IIID<IXMLDOMNode>>&);
template _com_ptr_t<_com_IIID<IXMLDOMDocument>>::_com_ptr_t(IXMLDOMNode*);
template _com_ptr_t<_com_IIID<IPersistStreamInit>>::_com_ptr_t(const _com_ptr_t<_com_IIID<IXMLDOMDocument>>&);
template _com_ptr_t<_com_IIID<IPersistStreamInit>>::_com_ptr_t(IXMLDOMDocument*);
