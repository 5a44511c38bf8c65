// Typed values and the separators of the user's locale.
#include "xml/XmlValuesTestSupport.h"

namespace
{

using namespace quon_test;

TEST_F(XmlValues, DoublesAreReadWithPointAndCommaWhateverTheUserHas)
{
    struct Row
    {
        const wchar_t* decimal;
        const wchar_t* thousands;
    };
    for (const Row row : {Row{L".", L","}, Row{L",", L"."}, Row{L",", L" "}, Row{L".", L"\x2019"}, Row{L"::", L"''"}})
    {
        SCOPED_TRACE(::testing::PrintToString(row.decimal));
        SetSeparators(row.decimal, row.thousands);
        EXPECT_EQ(GetXmlDouble(RootWith(L"2.5"), L"v"), 2.5);
        EXPECT_EQ(GetXmlDouble(RootWith(L"-1,234.5"), L"v"), -1234.5);
        EXPECT_EQ(GetXmlDouble(RootWith(L"1e-3"), L"v"), 0.001);
        EXPECT_EQ(Separator(LOCALE_SDECIMAL), row.decimal);
        EXPECT_EQ(Separator(LOCALE_STHOUSAND), row.thousands);
    }
}

TEST_F(XmlValues, ARaisedErrorLeavesTheSeparatorsSwitched)
{
    SetSeparators(L",", L".");
    EXPECT_EQ(ErrorOf([] { GetXmlDouble(RootWith(L"abc"), L"v"); }), static_cast<HRESULT>(0x80020005));
    EXPECT_EQ(Separator(LOCALE_SDECIMAL), L".");
    EXPECT_EQ(Separator(LOCALE_STHOUSAND), L",");
}

TEST_F(XmlValues, ADoubleThatIsNotThereSwitchesAndPutsBackToo)
{
    SetSeparators(L",", L".");
    EXPECT_EQ(GetXmlDouble(RootWith(L"1"), L"none"), 0.0);
    EXPECT_EQ(Separator(LOCALE_SDECIMAL), L",");
    EXPECT_EQ(Separator(LOCALE_STHOUSAND), L".");
}

TEST_F(XmlValues, OnlyASeparatorThatDiffersIsTouched)
{
    struct Change
    {
        LCTYPE type;
        std::wstring text;
        bool operator==(const Change&) const = default;
    };
    static std::vector<Change> changes;
    static std::vector<std::pair<LCTYPE, int>> reads;
    changes.clear();
    reads.clear();
    SetSeparators(L",", L",");
    const ImportPatch<decltype(&::SetLocaleInfoW)> writing(kLibrary, "SetLocaleInfoW",
                                                           [](LCID locale, LCTYPE type, LPCWSTR text) -> BOOL {
                                                               EXPECT_EQ(locale, LCID{LOCALE_USER_DEFAULT});
                                                               changes.push_back({type, text});
                                                               return ::SetLocaleInfoW(locale, type, text);
                                                           });
    const ImportPatch<decltype(&::GetLocaleInfoW)> reading(kLibrary, "GetLocaleInfoW",
                                                           [](LCID locale, LCTYPE type, LPWSTR text, int size) -> int {
                                                               EXPECT_EQ(locale, LCID{LOCALE_USER_DEFAULT});
                                                               reads.emplace_back(type, size);
                                                               return ::GetLocaleInfoW(locale, type, text, size);
                                                           });
    EXPECT_EQ(GetXmlDouble(RootWith(L"2.5"), L"v"), 2.5);
    EXPECT_EQ(reads, (std::vector<std::pair<LCTYPE, int>>{{LOCALE_SDECIMAL, 4}, {LOCALE_STHOUSAND, 4}}));
    EXPECT_EQ(changes, (std::vector<Change>{{LOCALE_SDECIMAL, L"."}, {LOCALE_SDECIMAL, L","}}));

    changes.clear();
    SetSeparators(L",", L".");
    EXPECT_EQ(GetXmlDouble(RootWith(L"2.5"), L"v"), 2.5);
    EXPECT_EQ(
        changes,
        (std::vector<Change>{
            {LOCALE_SDECIMAL, L"."}, {LOCALE_STHOUSAND, L","}, {LOCALE_SDECIMAL, L","}, {LOCALE_STHOUSAND, L"."}}));

    changes.clear();
    SetXmlDouble(Find(Parse(L"<r/>"), L"r"), L"a", 2.5);
    EXPECT_TRUE(changes.empty()) << "the setter makes no switch";
}

// Changing one separator can change what another reads as: both are read as the user has them.
TEST_F(XmlValues, BothSeparatorsAreReadBeforeEitherIsSwitched)
{
    static std::wstring calls;
    calls.clear();
    SetSeparators(L",", L".");
    const ImportPatch<decltype(&::GetLocaleInfoW)> reading(
        kLibrary, "GetLocaleInfoW", [](LCID locale, LCTYPE type, LPWSTR text, int size) -> int {
            calls += type == LOCALE_SDECIMAL ? L"read decimal, " : L"read thousands, ";
            return ::GetLocaleInfoW(locale, type, text, size);
        });
    const ImportPatch<decltype(&::SetLocaleInfoW)> writing(
        kLibrary, "SetLocaleInfoW", [](LCID locale, LCTYPE type, LPCWSTR text) -> BOOL {
            calls += type == LOCALE_SDECIMAL ? L"set decimal, " : L"set thousands, ";
            return ::SetLocaleInfoW(locale, type, text);
        });
    EXPECT_EQ(GetXmlDouble(RootWith(L"2.5"), L"v"), 2.5);
    EXPECT_EQ(calls, L"read decimal, read thousands, set decimal, set thousands, set decimal, set thousands, ");
}

TEST_F(XmlValues, ASeparatorThatCannotBeReadIsLeftAlone)
{
    SetSeparators(L",", L".");
    {
        const ImportPatch<decltype(&::GetLocaleInfoW)> reading(kLibrary, "GetLocaleInfoW",
                                                               [](LCID, LCTYPE, LPWSTR, int) -> int { return 0; });
        EXPECT_EQ(GetXmlDouble(RootWith(L"7"), L"v"), 7.0);
    }
    EXPECT_EQ(Separator(LOCALE_SDECIMAL), L",");
    EXPECT_EQ(Separator(LOCALE_STHOUSAND), L".");
}

TEST_F(XmlValues, ASeparatorThatCannotBeSetStaysInForce)
{
    SetSeparators(L",", L".");
    {
        const ImportPatch<decltype(&::SetLocaleInfoW)> writing(kLibrary, "SetLocaleInfoW",
                                                               [](LCID, LCTYPE, LPCWSTR) -> BOOL { return FALSE; });
        EXPECT_EQ(GetXmlDouble(RootWith(L"7"), L"v"), 7.0);
    }
    EXPECT_EQ(Separator(LOCALE_SDECIMAL), L",");
    EXPECT_EQ(Separator(LOCALE_STHOUSAND), L".");
}

}  // namespace
