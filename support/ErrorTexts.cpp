// The helpers of StringHelpers.h that ask the system for texts.
#include "support/StringHelpers.h"

#include "base/LengthInternal.h"

#include <comdef.h>

#include <memory>

namespace
{

struct LocalMemory
{
    void operator()(wchar_t* text) const { ::LocalFree(text); }
};

struct TaskMemory
{
    void operator()(wchar_t* text) const { ::CoTaskMemFree(text); }
};

}  // namespace

CString GetSystemErrorText(DWORD code)
{
    wchar_t* buffer = nullptr;
    const DWORD length =
        ::FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_FROM_SYSTEM,
                         nullptr, code, 0, reinterpret_cast<LPWSTR>(&buffer), 0, nullptr);
    const std::unique_ptr<wchar_t, LocalMemory> text(buffer);
    return length != 0 ? CString(text.get(), ToStringLength(length)) : CString();
}

CString GetComErrorText(const _com_error& error)
{
    const _bstr_t description = error.Description();
    if (description.length() != 0)
    {
        return CString(static_cast<const wchar_t*>(description), ToStringLength(description.length()));
    }
    return GetSystemErrorText(static_cast<DWORD>(error.Error()));
}

CString ClsidToString(const CLSID& clsid)
{
    LPOLESTR buffer = nullptr;
    const HRESULT result = ::StringFromCLSID(clsid, &buffer);
    const std::unique_ptr<wchar_t, TaskMemory> text(buffer);
    return SUCCEEDED(result) ? CString(text.get()) : CString();
}
