/// @file
/// How the wrapper methods call their raw methods. Include "xml/Msxml2.h".
#pragma once

#include <afx.h>

#include "xml/ComSupport.h"

#include <type_traits>

/// @cond
namespace MSXML2
{

namespace QuonDom_details
{

/// Raises a failed `result` of a method of `object` as `_com_error`. @return any other result, unchanged
template <typename Interface>
HRESULT RaiseFailed(HRESULT result, Interface* object)
{
    if (FAILED(result))
    {
        _com_issue_errorex(result, object, __uuidof(Interface));
    }
    return result;
}

/// Frees a text that nobody took over: making a `_bstr_t` of it can run out of memory.
struct TextFromDom
{
    BSTR text = nullptr;

    TextFromDom() = default;
    ~TextFromDom() { ::SysFreeString(text); }
    TextFromDom(const TextFromDom&) = delete;
    TextFromDom& operator=(const TextFromDom&) = delete;

    _bstr_t Take()
    {
        const _bstr_t taken(text, false);
        text = nullptr;
        return taken;
    }
};

/// Calls a method without a result of its own. @return its success code
template <typename Interface, typename... Parameters, typename... Arguments>
HRESULT Do(Interface* object, HRESULT (STDMETHODCALLTYPE Interface::*method)(Parameters...),
           const Arguments&... arguments)
{
    return RaiseFailed((object->*method)(arguments...), object);
}

/// Calls a method whose last parameter receives a variant. By itself, so that the variant is returned without a copy.
template <typename Interface, typename... Parameters, typename... Arguments>
_variant_t GetVariant(Interface* object, HRESULT (STDMETHODCALLTYPE Interface::*method)(Parameters...),
                      const Arguments&... arguments)
{
    _variant_t result;
    RaiseFailed((object->*method)(arguments..., &result), object);
    return result;
}

/// Calls a method whose last parameter receives the result. @return that result; the caller owns it
template <typename Result, typename Interface, typename... Parameters, typename... Arguments>
Result Get(Interface* object, HRESULT (STDMETHODCALLTYPE Interface::*method)(Parameters...),
           const Arguments&... arguments)
{
    if constexpr (std::is_same_v<Result, _bstr_t>)
    {
        TextFromDom result;
        RaiseFailed((object->*method)(arguments..., &result.text), object);
        return result.Take();
    }
    else if constexpr (std::is_same_v<Result, _variant_t>)
    {
        return GetVariant(object, method, arguments...);
    }
    else if constexpr (std::is_class_v<Result>)
    {
        typename Result::Interface* result = nullptr;
        RaiseFailed((object->*method)(arguments..., &result), object);
        return Result(result, false);
    }
    else
    {
        Result result{};
        RaiseFailed((object->*method)(arguments..., &result), object);
        return result;
    }
}

}  // namespace QuonDom_details

}  // namespace MSXML2
/// @endcond
