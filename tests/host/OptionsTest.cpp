#include "host/Options.h"

#include "host/Report.h"
#include "host/UsageError.h"

#include <gtest/gtest.h>

#include <climits>

namespace
{

using namespace quonhost;

TEST(Numbers, AreFiniteAndDecimal)
{
    struct Row
    {
        const wchar_t* text;
        std::optional<double> number;
    };
    for (const Row& row :
         {Row{L"0", 0.0},    Row{L"-12.5", -12.5}, Row{L"+1e3", 1000.0},
          Row{L".5", 0.5},   Row{L"5.", 5.0},      Row{L"1.7976931348623157e308", 1.7976931348623157e308},
          Row{L"", {}},      Row{L"nan", {}},      Row{L"NaN", {}},
          Row{L"inf", {}},   Row{L"-inf", {}},     Row{L"infinity", {}},
          Row{L"1e999", {}}, Row{L"-1e999", {}},   Row{L"0x10", {}},
          Row{L" 1", {}},    Row{L"1 ", {}},       Row{L"1,5", {}},
          Row{L"1.2.3", {}}, Row{L"--1", {}},      Row{L"e", {}},
          Row{L"-", {}},     Row{L"12a", {}},      Row{L"\u0661", {}}})
    {
        EXPECT_EQ(ParseFiniteNumber(row.text), row.number) << row.text;
    }
}

TEST(Codes, AreDecimalOrHexadecimalUpToTheirLimit)
{
    struct Row
    {
        const char* text;
        std::optional<unsigned long> code;
    };
    for (const Row& row :
         {Row{"0", 0UL}, Row{"32", 32UL}, Row{"0x20", 32UL}, Row{"0XFFFF", 65535UL}, Row{"65535", 65535UL},
          Row{"007", 7UL}, Row{"65536", {}}, Row{"0x10000", {}}, Row{"99999999999999999999", {}}, Row{"", {}},
          Row{"0x", {}}, Row{"-1", {}}, Row{"+1", {}}, Row{" 1", {}}, Row{"1 ", {}}, Row{"ff", {}}, Row{"0x-1", {}}})
    {
        EXPECT_EQ(ParseCode(row.text, 0xFFFF), row.code) << row.text;
    }
}

// A command line of the kind that the host has, and what became of it.
class CommandLine : public ::testing::Test
{
protected:
    std::string Parse(std::vector<std::string> arguments)
    {
        CLI::App app("A program", "program");
        app.allow_windows_style_options(false);
        app.require_subcommand(1);
        CLI::App* const walk = app.add_subcommand("walk", "Walks");
        AddText(*walk, "path", m_path, "A path")->required();
        AddText(*walk, "--label", m_label, "A label", "TEXT");
        AddNumber(*walk, "--seconds", m_seconds, 0, 10, "SECONDS", "A time");
        AddChoice(*walk, "--unit", m_unit, {"deg", "rad"}, "A unit");
        bool isJson = false;
        bool isAsked = false;
        CLI::Option* const json = AddJsonFlag(*walk, isJson);
        walk->add_flag("--csv", isAsked, "Values")->excludes(json);
        auto* const group = walk->add_option_group("output", "");
        group->add_flag("--count", isAsked, "A count");
        group->add_flag("--ranges", isAsked, "Ranges");
        group->require_option(0, 1);
        CLI::App* const list = app.add_subcommand("list", "Lists");
        AddTexts(*list, "file", m_files, "Files")->required();
        std::reverse(arguments.begin(), arguments.end());
        try
        {
            app.parse(arguments);
        }
        catch (const CLI::ParseError& error)
        {
            return DescribeUsageError(app, error);
        }
        return "";
    }

    std::wstring m_path;
    std::optional<std::wstring> m_label;
    double m_seconds = -1;
    std::string m_unit;
    std::vector<std::wstring> m_files;
};

TEST_F(CommandLine, GivesTextWideAndNumbersChecked)
{
    EXPECT_EQ(Parse({"walk", "/site/\xC3\x84.xml", "--seconds", "2.5", "--unit", "rad"}), "");
    EXPECT_EQ(m_path, L"/site/\u00C4.xml");
    EXPECT_EQ(m_label, std::nullopt);
    EXPECT_EQ(m_seconds, 2.5);
    EXPECT_EQ(m_unit, "rad");
    EXPECT_EQ(Parse({"walk", "//server/share", "--label", ""}), "");
    EXPECT_EQ(m_path, L"//server/share");
    EXPECT_EQ(m_label, L"");
    EXPECT_EQ(Parse({"list", "a", "\xE6\xB8\xAC", ""}), "");
    EXPECT_EQ(m_files, (std::vector<std::wstring>{L"a", L"\u6E2C", L""}));
}

TEST_F(CommandLine, IsRefusedInPlainWords)
{
    struct Row
    {
        std::vector<std::string> arguments;
        std::string error;
    };
    const std::string walk = " (see \"program walk --help\")";
    const std::string top = " (see \"program --help\")";
    for (const Row& row : {
             Row{{}, "a command is missing: walk, list" + top},
             Row{{"wlak"}, "\"wlak\" is not a command of program; did you mean \"walk\"?" + top},
             Row{{"wlak", "x", "--json"}, "\"wlak\" is not a command of program; did you mean \"walk\"?" + top},
             Row{{"nonsense"}, "\"nonsense\" is not a command of program" + top},
             Row{{"--jsno"}, "\"--jsno\" is not an option of program" + top},
             Row{{"walk"}, "path is missing" + walk},
             Row{{"walk", "x", "y"}, "\"y\" is one argument too many for walk" + walk},
             Row{{"walk", "x", "--jsn"}, "\"--jsn\" is not an option of walk; did you mean \"--json\"?" + walk},
             Row{{"walk", "x", "--conut"}, "\"--conut\" is not an option of walk; did you mean \"--count\"?" + walk},
             Row{{"walk", "--secnds=5", "x"},
                 "\"--secnds\" is not an option of walk; did you mean \"--seconds\"?" + walk},
             Row{{"walk", "x", "--seconds"}, "--seconds needs a value" + walk},
             Row{{"walk", "x", "--seconds", "soon"}, "--seconds: \"soon\" is not a number" + walk},
             Row{{"walk", "x", "--seconds", "nan"}, "--seconds: \"nan\" is not a number" + walk},
             Row{{"walk", "x", "--seconds", "inf"}, "--seconds: \"inf\" is not a number" + walk},
             Row{{"walk", "x", "--seconds", "11"}, "--seconds: 11 is not from 0 to 10" + walk},
             Row{{"walk", "x", "--seconds=-1"}, "--seconds: -1 is not from 0 to 10" + walk},
             Row{{"walk", "x", "--unit", "dge"},
                 "--unit: \"dge\" is not one of deg, rad; did you mean \"deg\"?" + walk},
             Row{{"walk", "x", "--unit", "gon"}, "--unit: \"gon\" is not one of deg, rad" + walk},
             Row{{"walk", "x", "--json", "--csv"}, "--json does not go with --csv" + walk},
             Row{{"walk", "x", "--count", "--ranges"}, "give only one of --count,--ranges" + walk},
         })
    {
        EXPECT_EQ(Parse(row.arguments), row.error) << ::testing::PrintToString(row.arguments);
    }
}

}  // namespace
