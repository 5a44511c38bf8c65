// The fixture of the tests of typed values: the user's separators, put back, and documents with one value.
#pragma once

#include "helpers/ImportPatch.h"
#include "xml/XmlTestSupport.h"
#include "xml/XmlValues.h"

namespace quon_test
{

inline constexpr wchar_t kLibrary[] = L"QuonWin32Utils.dll";

inline std::wstring Separator(LCTYPE type)
{
    wchar_t text[8] = {};
    ::GetLocaleInfoW(LOCALE_USER_DEFAULT, type, text, 8);
    return text;
}

// The user's separators, put back at the end of the test.
class XmlValues : public XmlTest
{
protected:
    void TearDown() override { SetSeparators(m_decimal.c_str(), m_thousands.c_str()); }

    static void SetSeparators(const wchar_t* decimal, const wchar_t* thousands)
    {
        ::SetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, decimal);
        ::SetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_STHOUSAND, thousands);
    }

    // A document whose root "r" holds the child "v" with `text`.
    static MSXML2::IXMLDOMNodePtr RootWith(const std::wstring& text)
    {
        return Find(Parse((L"<r><v>" + text + L"</v></r>").c_str()), L"r");
    }

private:
    std::wstring m_decimal = Separator(LOCALE_SDECIMAL);
    std::wstring m_thousands = Separator(LOCALE_STHOUSAND);
};

}  // namespace quon_test
