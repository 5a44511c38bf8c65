// The fixture of the tests of documents as a whole.
#pragma once

#include "helpers/TemporaryFolder.h"
#include "xml/DomFakes.h"
#include "xml/XmlDocument.h"
#include "xml/XmlTestSupport.h"

namespace quon_test
{

using MSXML2::IXMLDOMDocumentPtr;
using MSXML2::IXMLDOMNodePtr;

class XmlDocumentTest : public XmlTest
{
protected:
    const TemporaryFolder m_folder;
    ForwardingDocument m_document{EmptyDocument()};
    const IXMLDOMDocumentPtr m_pointer{&m_document};
    const IXMLDOMDocumentPtr m_none;

    CString Path(const wchar_t* name) const { return (m_folder / name).c_str(); }
    std::string Bytes(const wchar_t* name) const { return m_folder.ReadFile(name); }
};

}  // namespace quon_test
