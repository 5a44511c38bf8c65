/// @file
/// The compiler's COM support: the interface that its documentation gives, as far as the library uses it. What is no
/// template has its body in abi/run/ComSupport.cpp.
#pragma once

#include <ole2.h>
#include <oleauto.h>
#include <olectl.h>

class _com_error;
void __stdcall _com_issue_error(HRESULT);
void __stdcall _com_issue_errorex(HRESULT, IUnknown*, REFIID);
[[noreturn]] void __stdcall _com_raise_error(HRESULT, IErrorInfo* = nullptr);

class _bstr_t
{
public:
    _bstr_t() noexcept;
    _bstr_t(const _bstr_t&) noexcept;
    _bstr_t(const wchar_t*);
    _bstr_t(BSTR, bool);
    ~_bstr_t() noexcept;
    _bstr_t& operator=(const _bstr_t&) noexcept;
    operator const wchar_t*() const noexcept;
    operator wchar_t*() const noexcept;
    operator const char*() const;
    bool operator!() const noexcept;
    unsigned int length() const noexcept;
    BSTR* GetAddress();

private:
    class Data_t;
    Data_t* m_Data;
};

class _variant_t : public ::tagVARIANT
{
public:
    _variant_t() noexcept;
    _variant_t(const _variant_t&);
    _variant_t(short, VARTYPE = VT_I2);
    _variant_t(long, VARTYPE = VT_I4);
    _variant_t(double, VARTYPE = VT_R8);
    _variant_t(const wchar_t*);
    _variant_t(bool) noexcept;
    _variant_t(unsigned long) noexcept;
    _variant_t(__int64) noexcept;
    _variant_t(int) noexcept;
    _variant_t(unsigned int) noexcept;
    _variant_t(IDispatch*, bool = true) noexcept;
    _variant_t(IUnknown*, bool = true) noexcept;
    ~_variant_t() noexcept;
    _variant_t& operator=(const _variant_t&);
};

class _com_error
{
public:
    _com_error(HRESULT, IErrorInfo* = nullptr, bool = false) noexcept;
    _com_error(const _com_error&) noexcept;
    virtual ~_com_error() noexcept;
    HRESULT Error() const noexcept;
    const wchar_t* ErrorMessage() const noexcept;
    _bstr_t Description() const;

private:
    const HRESULT m_hresult;
    IErrorInfo* m_perrinfo;
    mutable TCHAR* m_pszMsg;
};

template <typename _Interface, const IID* _IIID = &__uuidof(_Interface)>
class _com_IIID
{
public:
    typedef _Interface Interface;
    static const IID& GetIID() noexcept { return *_IIID; }
};

template <typename _IIID>
class _com_ptr_t
{
public:
    typedef _IIID ThisIIID;
    typedef typename _IIID::Interface Interface;

    static const IID& GetIID() noexcept { return ThisIIID::GetIID(); }

    template <typename _OtherIID>
    _com_ptr_t(const _com_ptr_t<_OtherIID>& other) : m_pInterface(nullptr)
    {
        Query(other.GetInterfacePtr());
    }
    template <typename _InterfaceType>
    _com_ptr_t(_InterfaceType* other) : m_pInterface(nullptr)
    {
        Query(other);
    }
    _com_ptr_t() noexcept : m_pInterface(nullptr) {}
    _com_ptr_t(std::nullptr_t) noexcept : m_pInterface(nullptr) {}
    _com_ptr_t(const _com_ptr_t& other) noexcept : _com_ptr_t(other.m_pInterface) {}
    _com_ptr_t(_com_ptr_t&& other) noexcept : m_pInterface(other.Detach()) {}
    _com_ptr_t(Interface* other) noexcept : _com_ptr_t(other, true) {}
    _com_ptr_t(Interface* other, bool add) noexcept : m_pInterface(other)
    {
        if (other != nullptr && add)
        {
            other->AddRef();
        }
    }
    explicit _com_ptr_t(const CLSID& id, IUnknown* outer = nullptr, DWORD context = CLSCTX_ALL) : m_pInterface(nullptr)
    {
        const HRESULT result = CreateInstance(id, outer, context);
        if (FAILED(result) && result != E_NOINTERFACE)
        {
            _com_issue_error(result);
        }
    }
    ~_com_ptr_t() noexcept { Attach(nullptr); }

    template <typename _OtherIID>
    _com_ptr_t& operator=(const _com_ptr_t<_OtherIID>& other)
    {
        return *this = _com_ptr_t(other);
    }
    template <typename _InterfaceType>
    _com_ptr_t& operator=(_InterfaceType* other)
    {
        return *this = _com_ptr_t(other);
    }
    _com_ptr_t& operator=(Interface* other) noexcept
    {
        Attach(other, true);
        return *this;
    }
    _com_ptr_t& operator=(const _com_ptr_t& other) noexcept { return *this = other.m_pInterface; }
    _com_ptr_t& operator=(_com_ptr_t&& other) noexcept
    {
        Interface* const taken = other.Detach();
        Attach(taken);
        return *this;
    }
    _com_ptr_t& operator=(std::nullptr_t) noexcept { return *this = static_cast<Interface*>(nullptr); }

    void Attach(Interface* other) noexcept { Attach(other, false); }
    void Attach(Interface* other, bool add) noexcept
    {
        if (other != nullptr && add)
        {
            other->AddRef();
        }
        Interface* const mine = m_pInterface;
        m_pInterface = other;
        if (mine != nullptr)
        {
            mine->Release();
        }
    }
    Interface* Detach() noexcept
    {
        Interface* const mine = m_pInterface;
        m_pInterface = nullptr;
        return mine;
    }

    operator Interface*() const noexcept { return m_pInterface; }
    operator Interface&() const { return *NotNull(); }
    Interface& operator*() const { return *NotNull(); }
    Interface** operator&() noexcept
    {
        Attach(nullptr);
        return &m_pInterface;
    }
    Interface* operator->() const { return NotNull(); }
    operator bool() const noexcept { return m_pInterface != nullptr; }
    bool operator==(Interface* other) { return m_pInterface == other; }
    bool operator!=(Interface* other) { return m_pInterface != other; }

    void Release()
    {
        NotNull();
        Attach(nullptr);
    }
    void AddRef() { NotNull()->AddRef(); }
    Interface* GetInterfacePtr() const noexcept { return m_pInterface; }
    Interface*& GetInterfacePtr() noexcept { return m_pInterface; }
    HRESULT CreateInstance(const CLSID& id, IUnknown* outer = nullptr, DWORD context = CLSCTX_ALL) noexcept
    {
        Attach(nullptr);
        return ::CoCreateInstance(id, outer, context, GetIID(), reinterpret_cast<void**>(&m_pInterface));
    }
    template <typename _InterfaceType>
    HRESULT QueryInterface(const IID& id, _InterfaceType** other) noexcept
    {
        return m_pInterface == nullptr ? E_POINTER : m_pInterface->QueryInterface(id, reinterpret_cast<void**>(other));
    }
    template <typename _InterfaceType>
    HRESULT QueryInterface(const IID& id, _InterfaceType*& other) noexcept
    {
        return QueryInterface(id, &other);
    }

private:
    Interface* NotNull() const
    {
        if (m_pInterface == nullptr)
        {
            _com_issue_error(E_POINTER);
        }
        return m_pInterface;
    }
    // By the type that it is given: an object of several interfaces has several IUnknown.
    template <typename _InterfaceType>
    void Query(_InterfaceType* other)
    {
        const HRESULT result =
            other == nullptr ? E_NOINTERFACE : other->QueryInterface(GetIID(), reinterpret_cast<void**>(&m_pInterface));
        if (FAILED(result) && result != E_NOINTERFACE)
        {
            _com_issue_error(result);
        }
    }

    Interface* m_pInterface;
};

#define _COM_SMARTPTR _com_ptr_t
#define _COM_SMARTPTR_LEVEL2 _com_IIID
#define _COM_SMARTPTR_TYPEDEF(Interface, IID) \
    typedef _COM_SMARTPTR<_COM_SMARTPTR_LEVEL2<Interface, &IID>> Interface##Ptr

_COM_SMARTPTR_TYPEDEF(IUnknown, __uuidof(IUnknown));

// The compiler's own header declares these too, in the global namespace: a source that says `using namespace MSXML2`
// and then a name of either is ambiguous.
#if defined(__IXMLDOMNode_INTERFACE_DEFINED__)
_COM_SMARTPTR_TYPEDEF(IXMLDOMAttribute, __uuidof(IXMLDOMAttribute));
_COM_SMARTPTR_TYPEDEF(IXMLDOMDocument, __uuidof(IXMLDOMDocument));
_COM_SMARTPTR_TYPEDEF(IXMLDOMElement, __uuidof(IXMLDOMElement));
_COM_SMARTPTR_TYPEDEF(IXMLDOMNamedNodeMap, __uuidof(IXMLDOMNamedNodeMap));
_COM_SMARTPTR_TYPEDEF(IXMLDOMNode, __uuidof(IXMLDOMNode));
_COM_SMARTPTR_TYPEDEF(IXMLDOMNodeList, __uuidof(IXMLDOMNodeList));
_COM_SMARTPTR_TYPEDEF(IXMLDOMParseError, __uuidof(IXMLDOMParseError));
#endif
