/// @file
/// Helpers on wide strings: case, numbers, tokens, separated lists, error texts. Natural-order comparison is in
/// NaturalCompare.h.
///
/// All functions work on their arguments alone and hold no state; any thread may call them. Case follows the user's
/// locale (`CharUpperBuffW`, `CharLowerBuffW`); digits and white space are what `iswdigit` and `iswspace` report. Texts
/// are searched up to their first zero character. Nothing but lack of memory throws.
#pragma once

#include <afx.h>
#include <afxcoll.h>

#include "base/Export.h"
#include "support/NaturalCompare.h"

class _com_error;

/// @return @p text in upper case over its whole length, characters behind embedded zeros included.
QUON_API CString ToUpperCopy(const CString& text);

/// @return @p text in lower case over its whole length, characters behind embedded zeros included.
QUON_API CString ToLowerCopy(const CString& text);

/// Puts words into upper case at their beginning and into lower case behind it: "hELLO wORLD" becomes "Hello WorlD".
///
/// A word begins at the start of the text and behind a digit or white space. The last character keeps its case, so a
/// text of two characters changes at its first only; a single character becomes upper case.
QUON_API CString CapitalizeWords(const CString& text);

/// @param value the number.
/// @param decimals digits behind the decimal point; a negative number means 6.
/// @return the number as "%.*f" writes it.
QUON_API CString FormatDouble(double value, int decimals);

/// Reads a number as the C run-time's `wcstod` does: white space, sign, digits with the decimal point of the C locale
/// in force, exponent. The result is the nearest double as far as the run-time rounds correctly.
///
/// The run-time that the library is linked to also decides about the rare forms: "inf", "nan" and hexadecimal numbers
/// are numbers for the Universal C Runtime and not for msvcrt.dll; both take "1d5" as "1e5".
/// @param text the text; empty reads as 0.
/// @param[out] value written in every case, also with what could be read of a bad text (0 when nothing could). May be
///             null.
/// @return true when the whole text was read and the value is not positive infinity. So "1e999" fails while "-1e999"
///         and the empty text succeed.
QUON_API bool ParseDouble(const CString& text, double* value);

/// @return true when the text is not empty and holds nothing but "0" and "." ("0.000", "00", but also ".").
QUON_API bool IsZeroText(const CString& text);

/// @param text null counts as empty.
/// @return true when the text holds nothing but decimal digits, "-" and ".", in any order ("1-2" and "-.-" are numeric
///         texts), and for the empty text.
QUON_API bool IsNumericText(const wchar_t* text);

/// Takes the next token from a text that a cursor walks. Runs of delimiters count as one; delimiters at the text's ends
/// make no empty tokens.
/// @param[in,out] cursor where to go on; is moved behind the token and one delimiter. The text stays as it is. With a
///                null cursor, or a cursor at null, there is no token.
/// @param delimiters each of its characters is a delimiter; null counts as empty.
/// @param[out] token the token, empty when there is none. Its memory is used again, so one object for all tokens of a
///             text is the fast way.
/// @return true when there was a token. When memory runs out the cursor stays where it was.
QUON_API bool GetNextToken(const wchar_t** cursor, const wchar_t* delimiters, CString& token);

/// Cuts the first element off a list.
/// @param separator what stands between elements. An empty one is found at once: the element is then empty and @p rest
///        stays as it is.
/// @param[in,out] rest the list; becomes what follows the first separator, or empty when there is no separator. So
///                both "a," and "a" leave the empty text: a separator at the end makes no empty last element.
/// @return the element before the separator, as it stands.
QUON_API CString TakeToken(const CString& separator, CString& rest);

/// `TakeToken` with the separator ",".
QUON_API CString TakeCommaToken(CString& rest);

/// `TakeToken` with the separator " ".
QUON_API CString TakeSpaceToken(CString& rest);

/// Splits a list at its commas. White space around elements is removed; empty elements are left out.
/// @param text the list.
/// @param out the elements are appended to what it holds; when memory runs out, those before the one that failed.
/// @return true, always.
QUON_API bool SplitCommaList(CString text, CStringArray& out);

/// Trims white space at both ends and, for a label, dresses what is left: a line feed in front unless the text begins
/// with one, a blank behind a final colon, else a colon and a blank. "  Name " becomes "\nName: "; a text of nothing
/// but white space becomes empty.
/// @param[in,out] text the text.
/// @param asLabel whether to dress the text after trimming.
QUON_API void MakeCaption(CString& text, bool asLabel);

/// Inserts a text before every occurrence of another unless it stands there already. `PrefixEachOccurrence("\n", "\r",
/// text)` makes the line ends of a text uniform: "a\nb\r\nc" becomes "a\r\nb\r\nc".
///
/// Occurrences may overlap: the search goes on one character behind the start of the last one. Whether the prefix
/// stands there is judged by the first prefix behind that point only, so an unrelated prefix in between gets an
/// occurrence prefixed twice: in "\rx\r\n" the line feed gets a second "\r".
/// @param what the text to look for; empty leaves the source unchanged.
/// @param prefix the text to insert.
/// @param source the text to look in.
/// @return the changed source.
QUON_API CString PrefixEachOccurrence(const CString& what, const CString& prefix, CString source);

/// Puts an item at a position of a separated list and drops other copies of it.
///
/// The last element is neither compared nor counted: at its index and beyond, and for a negative index, the item goes
/// to the end, behind a copy that may stand there. Separators come out as the walk leaves them: a list of one element
/// gets the item without a separator in between, and dropping a copy at the very front leaves its separator.
/// @param item the item.
/// @param separator what stands between elements; empty leaves a list that is not empty unchanged.
/// @param index the position, from 0.
/// @param[in,out] list the list; an empty one becomes the item alone.
QUON_API void PutListItem(const CString& item, const CString& separator, int index, CString& list);

/// @param code a system error code, an `HRESULT` included.
/// @return the system's text for it in the user's language, with the line break at its end; empty when there is none.
QUON_API CString GetSystemErrorText(DWORD code);

/// @return the description that came with the error, or the system's text for its `HRESULT` when there is none.
QUON_API CString GetComErrorText(const _com_error& error);

/// @return the registry form, such as "{00000000-0000-0000-C000-000000000046}"; empty when the system cannot make it.
QUON_API CString ClsidToString(const CLSID& clsid);
