// The fixture of the tests of what goes wrong in the node functions.
#pragma once

#include "xml/NodeTestSupport.h"

namespace quon_test
{

class XmlNodesFailure : public XmlTest
{
protected:
    const MSXML2::IXMLDOMDocumentPtr m_document = Parse(L"<r k='v'><p k='v'>t</p></r>");
    const MSXML2::IXMLDOMNodePtr m_root = Find(m_document, L"r");
    const MSXML2::IXMLDOMNodePtr m_text = Find(m_document, L"r/p")->GetfirstChild();
    const MSXML2::IXMLDOMDocumentPtr m_noDocument;
    const MSXML2::IXMLDOMNodePtr m_noNode;
    const MSXML2::IXMLDOMNodeListPtr m_noList;
    MSXML2::IXMLDOMNodePtr m_result;
    QuonNodeArray m_array;
    CStringArray m_names;
    CStringArray m_values;

    void SetUp() override
    {
        Fill(m_names, {L"a"});
        Fill(m_values, {L"1"});
    }
    void TearDown() override { ReleaseNodeArray(&m_array); }
};

struct Case
{
    const wchar_t* status;
    std::function<void()> work;
};

inline void CheckStatuses(const std::vector<Case>& cases)
{
    int row = 0;
    for (const Case& each : cases)
    {
        SCOPED_TRACE("row " + std::to_string(++row));
        EXPECT_EQ(StatusOf(each.work), each.status);
    }
}

}  // namespace quon_test
