#include "xml/XmlValuesTestSupport.h"

#include "helpers/Thorough.h"
#include "xml/DomFakes.h"

#include <random>
#include <cstdint>
#include <limits>

namespace
{

using namespace quon_test;

TEST_F(XmlValues, GettersGiveZeroWhenTheQueryFindsNothing)
{
    const MSXML2::IXMLDOMNodePtr node = RootWith(L"1");
    EXPECT_EQ(GetXmlString(node, L"none"), L"");
    EXPECT_FALSE(GetXmlBool(node, L"none"));
    EXPECT_EQ(GetXmlShort(node, L"none"), 0);
    EXPECT_EQ(GetXmlLong(node, L"none"), 0);
    EXPECT_EQ(GetXmlInt64(node, L"none"), 0);
    EXPECT_EQ(GetXmlULong(node, L"none"), 0u);
    EXPECT_EQ(GetXmlDouble(node, L"none"), 0.0);
}

TEST_F(XmlValues, GettersRaiseForAnEmptyNode)
{
    const MSXML2::IXMLDOMNodePtr none;
    EXPECT_EQ(ErrorOf([&] { GetXmlString(none, L"v"); }), E_POINTER);
    EXPECT_EQ(ErrorOf([&] { GetXmlBool(none, L"v"); }), E_POINTER);
    EXPECT_EQ(ErrorOf([&] { GetXmlShort(none, L"v"); }), E_POINTER);
    EXPECT_EQ(ErrorOf([&] { GetXmlLong(none, L"v"); }), E_POINTER);
    EXPECT_EQ(ErrorOf([&] { GetXmlInt64(none, L"v"); }), E_POINTER);
    EXPECT_EQ(ErrorOf([&] { GetXmlULong(none, L"v"); }), E_POINTER);
    EXPECT_EQ(ErrorOf([&] { GetXmlDouble(none, L"v"); }), E_POINTER);
}

TEST_F(XmlValues, TheQueryGoesToTheParserUnchanged)
{
    const MSXML2::IXMLDOMDocumentPtr document = Parse(L"<r a='7'><s><v>8</v></s></r>");
    const MSXML2::IXMLDOMNodePtr root = Find(document, L"r");
    EXPECT_EQ(GetXmlLong(root, L"@a"), 7);
    EXPECT_EQ(GetXmlLong(root, L"s/v"), 8);
    EXPECT_EQ(GetXmlLong(root, L"v"), 0);
    EXPECT_EQ(GetXmlString(root, L"@a"), L"7");
    for (const std::size_t length : {59, 60, 61, 64, 128, 260, 5000})
    {
        const std::wstring name(length, L'n');
        const MSXML2::IXMLDOMDocumentPtr longNames = Parse((L"<r><" + name + L">9</" + name + L"></r>").c_str());
        EXPECT_EQ(GetXmlLong(Find(longNames, L"r"), name.c_str()), 9) << length;
    }

    ForwardingAnyNode failing(root);
    failing.plan.Replace("selectSingleNode", Returns(E_INVALIDARG));
    EXPECT_EQ(ErrorOf([&] { GetXmlLong(MSXML2::IXMLDOMNodePtr(&failing), L"v"); }), E_INVALIDARG);
}

TEST_F(XmlValues, IntegersConvertAndOverflow)
{
    constexpr HRESULT kOk = S_OK;
    constexpr HRESULT kMismatch = static_cast<HRESULT>(0x80020005);
    constexpr HRESULT kOverflow = static_cast<HRESULT>(0x8002000A);
    struct Row
    {
        const wchar_t* text;
        HRESULT asShort, asLong, asULong, asInt64;
        std::int64_t value;
    };
    const Row rows[] = {
        {L"0", kOk, kOk, kOk, kOk, 0},
        {L"-5", kOk, kOk, kOverflow, kOk, -5},
        {L"32767", kOk, kOk, kOk, kOk, 32767},
        {L"32768", kOverflow, kOk, kOk, kOk, 32768},
        {L"2147483647", kOverflow, kOk, kOk, kOk, 2147483647},
        {L"2147483648", kOverflow, kOverflow, kOk, kOk, 2147483648},
        {L"4294967295", kOverflow, kOverflow, kOk, kOk, 4294967295},
        {L"4294967296", kOverflow, kOverflow, kOverflow, kOk, 4294967296},
        {L"9223372036854775807", kOverflow, kOverflow, kOverflow, kOk, 9223372036854775807},
        {L"abc", kMismatch, kMismatch, kMismatch, kMismatch, 0},
        {L"", kMismatch, kMismatch, kMismatch, kMismatch, 0},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(::testing::PrintToString(row.text));
        const MSXML2::IXMLDOMNodePtr node = RootWith(row.text);
        std::int64_t value = 0;
        EXPECT_EQ(ErrorOf([&] { value = GetXmlShort(node, L"v"); }), row.asShort);
        EXPECT_EQ(value, row.asShort == kOk ? row.value : 0);
        EXPECT_EQ(ErrorOf([&] { value = GetXmlLong(node, L"v"); }), row.asLong);
        EXPECT_EQ(value, row.asLong == kOk ? row.value : 0);
        value = 0;
        EXPECT_EQ(ErrorOf([&] { value = GetXmlULong(node, L"v"); }), row.asULong);
        EXPECT_EQ(value, row.asULong == kOk ? row.value : 0);
        value = 0;
        EXPECT_EQ(ErrorOf([&] { value = GetXmlInt64(node, L"v"); }), row.asInt64);
        EXPECT_EQ(value, row.asInt64 == kOk ? row.value : 0);
    }
}

TEST_F(XmlValues, TruthValuesFollowThePlatformsConversion)
{
    struct Row
    {
        const wchar_t* text;
        bool value;
    };
    for (const Row row : {Row{L"0", false}, Row{L"1", true}, Row{L"-1", true}, Row{L"true", true}, Row{L"False", false},
                          Row{L"2.5", true}})
    {
        EXPECT_EQ(GetXmlBool(RootWith(row.text), L"v"), row.value) << ::testing::PrintToString(row.text);
    }
    EXPECT_EQ(ErrorOf([] { GetXmlBool(RootWith(L"yes?"), L"v"); }), static_cast<HRESULT>(0x80020005));
}

TEST_F(XmlValues, StringsAreNotConverted)
{
    const MSXML2::IXMLDOMNodePtr root = RootWith(L"12");
    EXPECT_EQ(GetXmlString(root, L"v"), L"12");
    const MSXML2::IXMLDOMNodePtr value = root->selectSingleNode(L"v");
    ASSERT_EQ(value->put_dataType(_bstr_t(L"int")), S_OK);
    ASSERT_EQ(value->GetnodeTypedValue().vt, VT_I4) << "the parser types the value now";
    EXPECT_EQ(GetXmlString(root, L"v"), L"");
    EXPECT_EQ(GetXmlLong(root, L"v"), 12) << "the type that is asked for needs no conversion";
    EXPECT_EQ(GetXmlDouble(root, L"v"), 12.0);
}

TEST_F(XmlValues, AConversionThatSucceedsWithoutTheTypeGivesZero)
{
    using Change = HRESULT(WINAPI*)(VARIANTARG*, const VARIANTARG*, USHORT, VARTYPE);
    static std::vector<VARTYPE> types;
    types.clear();
    const ImportPatch<Change> patch(kLibrary, "VariantChangeType",
                                    [](VARIANTARG* to, const VARIANTARG* from, USHORT flags, VARTYPE type) -> HRESULT {
                                        EXPECT_EQ(to, from) << "in place";
                                        EXPECT_EQ(flags, 0);
                                        types.push_back(type);
                                        return S_OK;
                                    });
    const MSXML2::IXMLDOMNodePtr node = RootWith(L"1");
    EXPECT_FALSE(GetXmlBool(node, L"v"));
    EXPECT_EQ(GetXmlShort(node, L"v"), 0);
    EXPECT_EQ(GetXmlLong(node, L"v"), 0);
    EXPECT_EQ(GetXmlInt64(node, L"v"), 0);
    EXPECT_EQ(GetXmlULong(node, L"v"), 0u);
    EXPECT_EQ(GetXmlDouble(node, L"v"), 0.0);
    EXPECT_EQ(GetXmlString(node, L"v"), L"1");
    EXPECT_EQ(types, (std::vector<VARTYPE>{VT_BOOL, VT_I2, VT_I4, VT_I8, VT_UI4, VT_R8}));
}

// The node that the query finds, with a typed value of the test's choice.
TEST_F(XmlValues, FailuresOfTheTypedValueAreRaised)
{
    const MSXML2::IXMLDOMNodePtr root = RootWith(L"1");
    ForwardingAnyNode found(root->selectSingleNode(L"v"));
    found.plan.Replace("get_nodeTypedValue", Returns(E_ABORT));
    class Parent : public ForwardingAnyNode
    {
    public:
        using ForwardingAnyNode::ForwardingAnyNode;
        MSXML2::IXMLDOMNode* child = nullptr;
        HRESULT STDMETHODCALLTYPE raw_selectSingleNode(BSTR, MSXML2::IXMLDOMNode** out) override
        {
            Give(child, out);
            return S_OK;
        }
    };
    Parent parent(root);
    parent.child = &found;
    EXPECT_EQ(ErrorOf([&] { GetXmlLong(MSXML2::IXMLDOMNodePtr(&parent), L"v"); }), E_ABORT);
    EXPECT_EQ(ErrorOf([&] { GetXmlString(MSXML2::IXMLDOMNodePtr(&parent), L"v"); }), E_ABORT);
    EXPECT_EQ(found.plan.Count("get_nodeTypedValue"), 2);
    EXPECT_EQ(found.references, 1);
    EXPECT_EQ(parent.references, 1);
}

TEST_F(XmlValues, SettersWriteTheParsersText)
{
    const MSXML2::IXMLDOMDocumentPtr document = Parse(L"<r/>");
    const MSXML2::IXMLDOMNodePtr root = Find(document, L"r");
    SetXmlString(root, L"s", L"a < \"b\"");
    SetXmlString(root, L"empty", L"");
    SetXmlBool(root, L"yes", true);
    SetXmlBool(root, L"no", false);
    SetXmlShort(root, L"i2", -32768);
    SetXmlLong(root, L"i4", std::numeric_limits<long>::min());
    SetXmlULong(root, L"ui4", 4294967295u);
    SetXmlInt64(root, L"i8", std::numeric_limits<std::int64_t>::min());
    SetXmlDouble(root, L"r8", 2.5);
    EXPECT_EQ(Attribute(root, L"s"), L"a < \"b\"");
    EXPECT_EQ(Attribute(root, L"empty"), L"");
    EXPECT_EQ(Attribute(root, L"i2"), L"-32768");
    EXPECT_EQ(Attribute(root, L"i4"), L"-2147483648");
    EXPECT_EQ(Attribute(root, L"ui4"), L"4294967295");
    EXPECT_EQ(Attribute(root, L"i8"), L"-9223372036854775808");
    EXPECT_EQ(Attribute(root, L"r8"), L"2.5");
    EXPECT_TRUE(GetXmlBool(root, L"@yes"));
    EXPECT_FALSE(GetXmlBool(root, L"@no"));
    SetXmlLong(root, L"i4", 7);
    EXPECT_EQ(Attribute(root, L"i4"), L"7") << "an attribute that is there is set";
}

TEST_F(XmlValues, SettersHandOverTheirVariantTypes)
{
    class Recorder : public ForwardingElement
    {
    public:
        using ForwardingElement::ForwardingElement;
        std::vector<VARTYPE> types;
        HRESULT STDMETHODCALLTYPE raw_setAttribute(BSTR name, VARIANT value) override
        {
            types.push_back(value.vt);
            return ForwardingElement::raw_setAttribute(name, value);
        }
    };
    Recorder element(Find(Parse(L"<r/>"), L"r"));
    const MSXML2::IXMLDOMNodePtr node(&element);
    SetXmlString(node, L"a", L"1");
    SetXmlBool(node, L"a", true);
    SetXmlShort(node, L"a", 1);
    SetXmlLong(node, L"a", 1);
    SetXmlInt64(node, L"a", 1);
    SetXmlULong(node, L"a", 1);
    SetXmlDouble(node, L"a", 1);
    EXPECT_EQ(element.types, (std::vector<VARTYPE>{VT_BSTR, VT_BOOL, VT_I2, VT_I4, VT_I8, VT_UI4, VT_R8}));
    EXPECT_EQ(element.references, 2) << "this test's and the smart pointer's";
    element.plan.Replace("setAttribute", Returns(E_OUTOFMEMORY));
    EXPECT_EQ(ErrorOf([&] { SetXmlLong(node, L"a", 1); }), E_OUTOFMEMORY);
}

TEST_F(XmlValues, SettersSkipWhatIsNoElement)
{
    const MSXML2::IXMLDOMDocumentPtr document = Parse(L"<r>text<!--c--></r>");
    const std::wstring before = Xml(document);
    const MSXML2::IXMLDOMNodePtr text = Find(document, L"r")->GetfirstChild();
    const MSXML2::IXMLDOMNodePtr nodes[] = {text, text->GetnextSibling(), document, MSXML2::IXMLDOMNodePtr()};
    for (const MSXML2::IXMLDOMNodePtr& node : nodes)
    {
        SetXmlString(node, L"a", L"1");
        SetXmlBool(node, L"a", true);
        SetXmlDouble(node, L"a", 1.5);
        SetXmlInt64(node, L"a", 1);
    }
    EXPECT_EQ(Xml(document), before);
}

TEST_F(XmlValues, SettersRaiseWhenTheNodeCannotBeAsked)
{
    ForwardingAnyNode node(Find(Parse(L"<r/>"), L"r"));
    const MSXML2::IXMLDOMNodePtr pointer(&node);
    node.plan.Replace("QueryInterface", Returns(E_UNEXPECTED));
    EXPECT_EQ(ErrorOf([&] { SetXmlLong(pointer, L"a", 1); }), E_UNEXPECTED);
    node.plan.Replace("QueryInterface", Returns(E_NOINTERFACE));
    EXPECT_EQ(ErrorOf([&] { SetXmlLong(pointer, L"a", 1); }), S_OK);
}

// Numbers of every size: the random bits are cut to a random length.
TEST_F(XmlValues, RandomIntegersComeBackAsTheyWereWritten)
{
    std::mt19937_64 random(20240902);
    const MSXML2::IXMLDOMDocumentPtr document = Parse(L"<r/>");
    const MSXML2::IXMLDOMNodePtr node = Find(document, L"r");
    const int rounds = quon_test::Cases(3000) / 3;
    for (int round = 0; round < rounds; ++round)
    {
        const auto bits = static_cast<std::int64_t>(random()) >> random() % 64;
        const auto narrow = static_cast<long>(bits);
        const auto positive = static_cast<unsigned long>(bits);
        SetXmlInt64(node, L"a", bits);
        ASSERT_EQ(GetXmlInt64(node, L"@a"), bits);
        SetXmlLong(node, L"a", narrow);
        ASSERT_EQ(GetXmlLong(node, L"@a"), narrow);
        SetXmlULong(node, L"a", positive);
        ASSERT_EQ(GetXmlULong(node, L"@a"), positive);
    }
}

}  // namespace
