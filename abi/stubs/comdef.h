/// @file
/// The compiler's COM support: the interface that its documentation gives, as far as the library uses it. Nothing here
/// has a body.
#pragma once

#include <ole2.h>
#include <oleauto.h>
#include <olectl.h>

class _com_error;
void __stdcall _com_issue_error(HRESULT);
void __stdcall _com_issue_errorex(HRESULT, IUnknown*, REFIID);
[[noreturn]] void __stdcall _com_raise_error(HRESULT, IErrorInfo* = nullptr);

namespace _com_util
{
BSTR __stdcall ConvertStringToBSTR(const char*);
char* __stdcall ConvertBSTRToString(BSTR);
void CheckError(HRESULT);
}  // namespace _com_util

class _bstr_t
{
public:
    _bstr_t() noexcept;
    _bstr_t(const _bstr_t&) noexcept;
    _bstr_t(const char*);
    _bstr_t(const wchar_t*);
    explicit _bstr_t(const class _variant_t&);
    _bstr_t(BSTR, bool);
    ~_bstr_t() noexcept;
    _bstr_t& operator=(const _bstr_t&) noexcept;
    _bstr_t& operator=(const char*);
    _bstr_t& operator=(const wchar_t*);
    _bstr_t& operator+=(const _bstr_t&);
    operator const wchar_t*() const noexcept;
    operator wchar_t*() const noexcept;
    operator const char*() const;
    operator char*() const;
    bool operator!() const noexcept;
    bool operator==(const _bstr_t&) const noexcept;
    bool operator!=(const _bstr_t&) const noexcept;
    BSTR copy(bool = true) const;
    unsigned int length() const noexcept;
    BSTR& GetBSTR();
    BSTR* GetAddress();
    void Attach(BSTR);
    BSTR Detach();

private:
    class Data_t;
    Data_t* m_Data;
};

class _variant_t : public ::tagVARIANT
{
public:
    _variant_t() noexcept;
    _variant_t(const VARIANT&);
    _variant_t(const VARIANT*);
    _variant_t(const _variant_t&);
    _variant_t(VARIANT&, bool);
    _variant_t(short, VARTYPE = VT_I2);
    _variant_t(long, VARTYPE = VT_I4);
    _variant_t(float) noexcept;
    _variant_t(double, VARTYPE = VT_R8);
    _variant_t(const _bstr_t&);
    _variant_t(const wchar_t*);
    _variant_t(const char*);
    _variant_t(IDispatch*, bool = true) noexcept;
    _variant_t(bool) noexcept;
    _variant_t(IUnknown*, bool = true) noexcept;
    _variant_t(char) noexcept;
    _variant_t(unsigned char) noexcept;
    _variant_t(unsigned short) noexcept;
    _variant_t(unsigned long) noexcept;
    _variant_t(int) noexcept;
    _variant_t(unsigned int) noexcept;
    _variant_t(__int64) noexcept;
    _variant_t(unsigned __int64) noexcept;
    ~_variant_t() noexcept;
    operator short() const;
    operator long() const;
    operator double() const;
    operator _bstr_t() const;
    operator bool() const;
    _variant_t& operator=(const VARIANT&);
    _variant_t& operator=(const _variant_t&);
    _variant_t& operator=(const _bstr_t&);
    _variant_t& operator=(const wchar_t*);
    void Clear();
    void ChangeType(VARTYPE, const _variant_t* = nullptr);
    void Attach(VARIANT&);
    VARIANT Detach();
    VARIANT* GetAddress();
};

class _com_error
{
public:
    _com_error(HRESULT, IErrorInfo* = nullptr, bool = false) noexcept;
    _com_error(const _com_error&) noexcept;
    virtual ~_com_error() noexcept;
    _com_error& operator=(const _com_error&) noexcept;
    HRESULT Error() const noexcept;
    IErrorInfo* ErrorInfo() const noexcept;
    WORD WCode() const noexcept;
    _bstr_t Description() const;
    _bstr_t Source() const;
    const TCHAR* ErrorMessage() const noexcept;
    static HRESULT WCodeToHRESULT(WORD) noexcept;
    static WORD HRESULTToWCode(HRESULT) noexcept;

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
    _com_ptr_t(const _com_ptr_t<_OtherIID>&);
    template <typename _InterfaceType>
    _com_ptr_t(_InterfaceType*);
    _com_ptr_t() noexcept;
    _com_ptr_t(std::nullptr_t) noexcept;
    _com_ptr_t(const _com_ptr_t&) noexcept;
    _com_ptr_t(_com_ptr_t&&) noexcept;
    _com_ptr_t(Interface*) noexcept;
    _com_ptr_t(Interface*, bool) noexcept;
    _com_ptr_t(const _variant_t&);
    explicit _com_ptr_t(const CLSID&, IUnknown* = nullptr, DWORD = CLSCTX_ALL);
    ~_com_ptr_t() noexcept;
    template <typename _OtherIID>
    _com_ptr_t& operator=(const _com_ptr_t<_OtherIID>&);
    template <typename _InterfaceType>
    _com_ptr_t& operator=(_InterfaceType*);
    _com_ptr_t& operator=(Interface*) noexcept;
    _com_ptr_t& operator=(const _com_ptr_t&) noexcept;
    _com_ptr_t& operator=(_com_ptr_t&&) noexcept;
    _com_ptr_t& operator=(std::nullptr_t) noexcept;
    void Attach(Interface*) noexcept;
    void Attach(Interface*, bool) noexcept;
    Interface* Detach() noexcept;
    operator Interface*() const noexcept;
    operator Interface&() const;
    Interface& operator*() const;
    Interface** operator&() noexcept;
    Interface* operator->() const;
    operator bool() const noexcept;
    bool operator==(Interface*);
    bool operator!=(Interface*);
    void Release();
    void AddRef();
    Interface* GetInterfacePtr() const noexcept;
    Interface*& GetInterfacePtr() noexcept;
    HRESULT CreateInstance(const CLSID&, IUnknown* = nullptr, DWORD = CLSCTX_ALL) noexcept;
    HRESULT CreateInstance(LPCWSTR, IUnknown* = nullptr, DWORD = CLSCTX_ALL) noexcept;
    template <typename _InterfaceType>
    HRESULT QueryInterface(const IID&, _InterfaceType*&) noexcept;
    template <typename _InterfaceType>
    HRESULT QueryInterface(const IID&, _InterfaceType**) noexcept;

private:
    Interface* m_pInterface;
};

#define _COM_SMARTPTR _com_ptr_t
#define _COM_SMARTPTR_LEVEL2 _com_IIID
#define _COM_SMARTPTR_TYPEDEF(Interface, IID) \
    typedef _COM_SMARTPTR<_COM_SMARTPTR_LEVEL2<Interface, &IID>> Interface##Ptr

_COM_SMARTPTR_TYPEDEF(IUnknown, __uuidof(IUnknown));
