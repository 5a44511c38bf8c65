// Documents that are large, deep or built to explode. What the parser makes of them is its own affair; the library must
// hand its answer on, within bounds of time and memory, and must walk what was loaded.
#include "xml/QuonXml.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>

#include "support/HardLimit.h"
#include "support/ImportPatch.h"
#include "support/TemporaryFolder.h"
#include "support/Thorough.h"
#include "xml/NodeTestSupport.h"
#include "xml/XmlDocument.h"

namespace
{

using quon_test::EmptyDocument;
using quon_test::HardLimit;
using quon_test::ImportPatch;

constexpr int kAttributes = 2000;
// Wine's parser compares each attribute with all others: a hundred thousand, which a thorough run asks for, take it
// long.
constexpr int kUsualAttributes = 10000;
constexpr int kMostAttributes = 100000;
constexpr int kDepth = 10000;

class HostileXml : public quon_test::XmlTest
{
protected:
    // Room for what a thorough run asks of a slow parser.
    HardLimit m_limit{quon_test::Cases(0) > 0 ? 7000000ul : 200000ul};
};

HRESULT LoadText(QuonXml& xml, const std::string& text)
{
    return xml.LoadFromMemory(xml.GetDocument(), reinterpret_cast<const unsigned char*>(text.data()),
                              static_cast<unsigned long>(text.size()));
}

std::string WithAttributes(int count)
{
    std::string text = "<r";
    for (int i = 0; i < count; ++i)
    {
        text += " a" + std::to_string(i) + "='" + std::to_string(i) + "'";
    }
    return text + "/>";
}

bool Count(CString, MSXML2::IXMLDOMNodePtr&, __int64 user)
{
    ++*reinterpret_cast<int*>(user);
    return true;
}

int CountNodes(QuonXml& xml)
{
    int count = 0;
    EXPECT_TRUE(xml.WalkTree(&Count, reinterpret_cast<__int64>(&count)));
    return count;
}

TEST_F(HostileXml, ManyThousandAttributesAreLoaded)
{
    const int count = std::min(quon_test::Cases(kUsualAttributes), kMostAttributes);
    QuonXml xml(L"", false, false, false);
    const HRESULT result = LoadText(xml, WithAttributes(count));
    // A parser may refuse so many; one that does not has them all.
    if (MSXML2::SelectSingleNode(xml.GetDocument(), L"r"))
    {
        EXPECT_HRESULT_SUCCEEDED(result);
        const MSXML2::IXMLDOMNodePtr root = quon_test::Find(xml.GetDocument(), L"r");
        const std::wstring last = std::to_wstring(count - 1);
        EXPECT_STREQ(GetAttributeValue(root, (L"a" + last).c_str()), last.c_str());
        EXPECT_STREQ(GetAttributeValue(root, (L"a" + std::to_wstring(count)).c_str()), L"");
    }
}

TEST_F(HostileXml, ManyAttributesAreListedInOrder)
{
    QuonXml xml(L"", false, false, false);
    ASSERT_HRESULT_SUCCEEDED(LoadText(xml, WithAttributes(kAttributes)));
    CStringArray names;
    CStringArray values;
    GetAllAttributes(quon_test::Find(xml.GetDocument(), L"r"), names, values);
    ASSERT_EQ(names.GetSize(), kAttributes);
    ASSERT_EQ(values.GetSize(), kAttributes);
    for (int i = 0; i < kAttributes; ++i)
    {
        ASSERT_EQ(std::to_wstring(i), values[i].GetString());
    }
    EXPECT_EQ(CountNodes(xml), kAttributes + 2);
}

TEST_F(HostileXml, ADepthOfTenThousandIsLoadedOrRefused)
{
    QuonXml xml(L"", false, false, false);
    std::string text;
    for (int i = 0; i < kDepth; ++i)
    {
        text += "<e>";
    }
    for (int i = 0; i < kDepth; ++i)
    {
        text += "</e>";
    }
    const HRESULT result = LoadText(xml, text);
    const int count = CountNodes(xml);
    EXPECT_TRUE(count == kDepth + 1 || count == 1) << "result " << result << ", nodes " << count;
}

// Depth that no parser refuses: the tree is built node by node.
TEST_F(HostileXml, ADepthOfAThousandIsBuiltAndSearched)
{
    constexpr int kBuilt = 1000;
    QuonXml xml(L"", false, false, false);
    const MSXML2::IXMLDOMDocumentPtr document = xml.GetDocument();
    MSXML2::IXMLDOMNodePtr node = AppendNewElement(document, nullptr, L"e");
    for (int i = 1; i < kBuilt; ++i)
    {
        node = AppendNewElement(document, node, i == kBuilt - 1 ? L"last" : L"e");
        ASSERT_TRUE(node);
    }
    EXPECT_EQ(CountNodes(xml), kBuilt + 1);
    const MSXML2::IXMLDOMNodeListPtr nodes = GetDocumentChildNodes(document);
    EXPECT_TRUE(FindFirstNodeByName(nodes, L"last", true));
    const quon_test::NodeArrayHolder found(FindNodesByName(nodes, L"e", true));
    EXPECT_EQ(found->GetSize(), kBuilt - 1);
}

TEST_F(HostileXml, ThousandsOfNodesAreCollected)
{
    constexpr int kNodes = 3000;
    QuonXml xml(L"", false, false, false);
    std::string text = "<r>";
    for (int i = 0; i < kNodes; ++i)
    {
        text += "<n id='" + std::to_string(i) + "'/>";
    }
    ASSERT_HRESULT_SUCCEEDED(LoadText(xml, text + "</r>"));
    const MSXML2::IXMLDOMNodeListPtr nodes = GetDocumentChildNodes(xml.GetDocument());
    const quon_test::NodeArrayHolder found(FindNodesByName(nodes, L"n", true));
    ASSERT_EQ(found->GetSize(), kNodes);
    for (int i = 0; i < kNodes; ++i)
    {
        ASSERT_EQ(quon_test::Attribute(MSXML2::IXMLDOMNodePtr((*found)[i]), L"id"), std::to_wstring(i));
    }
}

// Ten entities, each of ten of the one before: ten thousand million characters when all are written out.
TEST_F(HostileXml, AnEntityBombEnds)
{
    std::string text = "<!DOCTYPE r [<!ENTITY e0 'xxxxxxxxxx'>";
    for (int i = 1; i < 10; ++i)
    {
        text += "<!ENTITY e" + std::to_string(i) + " '";
        for (int j = 0; j < 10; ++j)
        {
            text += "&e" + std::to_string(i - 1) + ";";
        }
        text += "'>";
    }
    text += "]><r>&e9;</r>";
    QuonXml xml(L"", false, false, false);
    LoadText(xml, text);
    EXPECT_LT(CountNodes(xml), 1000);
}

int WINAPI CloseAtOnce(HWND, LPCWSTR, LPCWSTR, UINT)
{
    return IDOK;
}

TEST_F(HostileXml, FilesThatAreNoDocumentsAreRefused)
{
    const ImportPatch<decltype(&::MessageBoxW)> patch(L"QuonWin32Utils.dll", "MessageBoxW", &CloseAtOnce);
    const quon_test::TemporaryFolder folder;
    for (const std::string& bytes :
         {std::string(), std::string(1000000, '\0'), std::string(1000000, '<'), std::string("\xFF\xFE<\0", 4),
          std::string("<?xml version='1.0' encoding='no-such'?><r/>"), std::string("<r>\xC3</r>"),
          "<r>" + std::string(1000000, '&') + "</r>", std::string("<r a='1' a='2'/>"), std::string("<a></b>")})
    {
        SCOPED_TRACE(bytes.substr(0, 40));
        const std::wstring path = folder.WriteFile(L"bad.xml", bytes);
        bool isRefused = false;
        try
        {
            LoadXmlFile(path.c_str(), EmptyDocument());
        }
        catch (const CString& status)
        {
            isRefused = !status.IsEmpty();
        }
        EXPECT_TRUE(isRefused);
    }
}

}  // namespace
