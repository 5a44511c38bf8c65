/// @file
/// The status texts of the XML functions: what they start as, how they end, what a caught error makes of them.
#pragma once

#include <afx.h>

#include "base/QuonEllipsis.h"
#include "xml/ComHelpers.h"
#include "xml/ComSupport.h"

namespace xml_internal
{

inline constexpr wchar_t kStatusFailed[] = L"E_FAIL";
inline constexpr wchar_t kStatusOk[] = L"OK";
inline constexpr wchar_t kUnhandled[] = L"Unhandled Exception!";

/// Ends a function with a status text: throws any status but "OK".
inline void ThrowUnlessOk(const CString& status)
{
    if (status != kStatusOk)
    {
        throw CString(status);
    }
}

/// Throws `message` as the status of the step that failed, unless `succeeded`.
inline void Require(bool succeeded, const wchar_t* message)
{
    if (!succeeded)
    {
        throw CString(message);
    }
}

/// Throws `message` and the text of `result` as the status when `result` is a failure.
inline void RequireResult(HRESULT result, const wchar_t* message = L"")
{
    if (FAILED(result))
    {
        throw message + FormatHResultText(result);
    }
}

/// Returns the status for an error that a node or document function caught: "COM Error:", a line break, the
/// description.
CString TextOfComError(const _com_error& error);

/// Returns the status in functions that report the error object itself: "_com_error = " and the description or, when
/// there is none, a sentence that says so.
CString DescribeComError(const _com_error& error);

/// Runs `work` and turns the errors that it stops into status texts, which it throws. @return the result of `work`
template <typename Work>
auto ReportingComErrors(const Work& work)
{
    try
    {
        return work();
    }
    catch (const _com_error& error)
    {
        throw DescribeComError(error);
    }
    catch (const QuonEllipsis&)
    {
        throw CString(kUnhandled);
    }
}

}  // namespace xml_internal
