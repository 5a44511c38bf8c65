// The fixture of the tests of documents as a whole.
#pragma once

#include "helpers/TemporaryFolder.h"
#include "xml/DomFakes.h"
#include "xml/XmlDocument.h"
#include "xml/XmlTestSupport.h"

namespace quon_test
{

class XmlDocumentTest : public XmlTest
{
protected:
    const TemporaryFolder m_folder;
    ForwardingDocument m_document{EmptyDocument()};
    const MSXML2::IXMLDOMDocumentPtr m_pointer{&m_document};
    const MSXML2::IXMLDOMDocumentPtr m_none;

    CString Path(const wchar_t* name) const { return (m_folder / name).c_str(); }
    std::string Bytes(const wchar_t* name) const { return m_folder.ReadFile(name); }
};

}  // namespace quon_test
