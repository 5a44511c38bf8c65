// Documents that are large, deep or built to explode. What the parser makes of them is its own affair; the library must
// hand its answer on, within bounds of time and memory, and must walk what was loaded.
#include <afx.h>

#include "xml/QuonXml.h"

#include <psapi.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>

#include "helpers/HardLimit.h"
#include "helpers/ImportPatch.h"
#include "helpers/TemporaryFolder.h"
#include "helpers/Thorough.h"
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
constexpr int kLoadedDepth = 250;
constexpr int kDepth = 10000;

class HostileXml : public quon_test::XmlTest
{
protected:
    // Room for what a thorough run asks of a slow parser.
    HardLimit m_limit{quon_test::Cases(0) > 0 ? 7000000ul : quon_test::kHangLimit};
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
    ASSERT_EQ(LoadText(xml, WithAttributes(count)), S_OK);
    const MSXML2::IXMLDOMNodePtr root = quon_test::Find(xml.GetDocument(), L"r");
    ASSERT_TRUE(root);
    EXPECT_EQ(root->Getattributes()->Getlength(), count);
    const std::wstring last = std::to_wstring(count - 1);
    EXPECT_STREQ(GetAttributeValue(root, (L"a" + last).c_str()), last.c_str());
    EXPECT_STREQ(GetAttributeValue(root, (L"a" + std::to_wstring(count)).c_str()), L"");
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

std::string Nested(int depth)
{
    std::string text;
    for (int i = 0; i < depth; ++i)
    {
        text += "<e>";
    }
    for (int i = 0; i < depth; ++i)
    {
        text += "</e>";
    }
    return text;
}

// Wine's parser refuses more than 256 levels; the platform's own has no limit. A refusal is handed on, without a piece
// of the document.
TEST_F(HostileXml, ADepthOfTenThousandIsRefusedAsTheParserSays)
{
    QuonXml loaded(L"", false, false, false);
    EXPECT_EQ(LoadText(loaded, Nested(kLoadedDepth)), S_OK);
    EXPECT_EQ(CountNodes(loaded), kLoadedDepth + 1);
    QuonXml refused(L"", false, false, false);
    EXPECT_EQ(LoadText(refused, Nested(kDepth)), E_FAIL);
    EXPECT_EQ(CountNodes(refused), 1);
}

// Depth that no parser refuses: the tree is built node by node.
TEST_F(HostileXml, ADeepTreeIsBuiltAndSearched)
{
    constexpr int kBuilt = 100000;
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

// Entities, each of ten of the one before: ten characters for the first, ten times as many for each further one.
std::string WithEntities(int count)
{
    std::string text = "<!DOCTYPE r [<!ENTITY e0 'xxxxxxxxxx'>";
    for (int i = 1; i < count; ++i)
    {
        text += "<!ENTITY e" + std::to_string(i) + " '";
        for (int j = 0; j < 10; ++j)
        {
            text += "&e" + std::to_string(i - 1) + ";";
        }
        text += "'>";
    }
    return text + "]><r>&e" + std::to_string(count - 1) + ";</r>";
}

std::size_t PeakMemory()
{
    PROCESS_MEMORY_COUNTERS counters = {};
    EXPECT_NE(::GetProcessMemoryInfo(::GetCurrentProcess(), &counters, sizeof counters), FALSE);
    return counters.PeakWorkingSetSize;
}

// Two entities are written out. Ten, ten thousand million characters, are what Wine's parser refuses; the refusal is
// handed on, without a piece of the text and without the memory for it.
TEST_F(HostileXml, AnEntityBombIsRefused)
{
    constexpr std::size_t kMostMemory = 64 << 20;
    QuonXml loaded(L"", false, false, false);
    ASSERT_EQ(LoadText(loaded, WithEntities(2)), S_OK);
    const MSXML2::IXMLDOMNodePtr root = quon_test::Find(loaded.GetDocument(), L"r");
    ASSERT_TRUE(root);
    EXPECT_EQ(root->Gettext().length(), 100u);
    QuonXml refused(L"", false, false, false);
    const std::size_t before = PeakMemory();
    EXPECT_EQ(LoadText(refused, WithEntities(10)), E_FAIL);
    EXPECT_EQ(CountNodes(refused), 1);
    EXPECT_GT(before, 0u);
    EXPECT_LT(PeakMemory(), before + kMostMemory);
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
