// The fixture of the tests of QuonXml: documents that forward, a parse error, message boxes answered at once.
#pragma once

#include "helpers/ImportPatch.h"
#include "helpers/TemporaryFolder.h"
#include "xml/DomFakes.h"
#include "xml/QuonXml.h"
#include "xml/XmlTestSupport.h"

namespace quon_test
{

inline constexpr wchar_t kLibrary[] = L"QuonWin32Utils.dll";

// Every message box of the library, answered at once.
struct Box
{
    HWND owner;
    std::wstring text;
    std::wstring caption;
    UINT type;
};
inline std::vector<Box> g_boxes;

class QuonXmlTest : public XmlTest
{
protected:
    void SetUp() override { g_boxes.clear(); }

    const TemporaryFolder m_folder;
    ForwardingDocument m_document{Parse(L"<r/>")};
    const MSXML2::IXMLDOMDocumentPtr m_pointer{&m_document};
    FakeParseError m_error;

private:
    const ImportPatch<decltype(&::MessageBoxW)> m_patch{
        kLibrary, "MessageBoxW", [](HWND owner, LPCWSTR text, LPCWSTR caption, UINT type) -> int {
            g_boxes.push_back({owner, text, caption, type});
            return IDOK;
        }};
};

}  // namespace quon_test
