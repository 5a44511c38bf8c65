// The rules about the text of a path, applied to the framework's strings.
#pragma once

#include <afx.h>

#include <string_view>

namespace QuonPathText
{

/// The text of a string. Valid until the string is changed.
std::wstring_view View(const CString& text);

/// A text that may be null, which counts as empty.
std::wstring_view View(const wchar_t* text);

CString MakeString(std::wstring_view text);

/// Makes `target` the given text, which is none of `target` itself.
void SetText(CString& target, std::wstring_view text);

/// Puts `text` into its normal form. When there is no memory to write it in, `text` stays as it is and nothing is
/// thrown.
void NormalizeString(CString& text, wchar_t separator);

/// Normalizes `text`, and appends the normal form of `other` with one separator between. `other` may be part of `text`.
/// When memory runs out, `text` is as it was.
void JoinString(CString& text, wchar_t separator, std::wstring_view other);

}  // namespace QuonPathText
