// A process loads and unloads the library thousands of times, as a host does that loads a plug-in whenever it needs it.

#include <afx.h>

#include "helpers/ChildProcess.h"

#include <gtest/gtest.h>

namespace
{

struct CycleRow
{
    const char* name;
    std::wstring arguments;
};

void PrintTo(const CycleRow& row, std::ostream* out)
{
    *out << row.name;
}

class LoadCyclesTest : public testing::TestWithParam<CycleRow>
{
};

TEST_P(LoadCyclesTest, LeaveTheProcessItsThreadLocalStorage)
{
    const std::wstring program = quon_test::OwnProgram();
    const std::wstring folder = program.substr(0, program.rfind(L'\\') + 1);
    const quon_test::ChildResult result =
        quon_test::RunChild(L"\"" + folder + L"load_cycles.exe\" " + GetParam().arguments, 240000);
    EXPECT_TRUE(result.ended);
    EXPECT_EQ(result.code, 0u);
}

// A process has 1,088 slots, so losing one a round would end the first two rows early.
INSTANTIATE_TEST_SUITE_P(Rounds, LoadCyclesTest,
                         testing::Values(CycleRow{"LibraryAlone", L"QuonWin32Utils.dll 5000 keep"},
                                         CycleRow{"LibraryAndFramework", L"QuonWin32Utils.dll 5000"},
                                         CycleRow{"UsedLibrary", L"load_cycles_plugin.dll 200 keep"},
                                         CycleRow{"UsedLibraryAndFramework", L"load_cycles_plugin.dll 200"}),
                         [](const testing::TestParamInfo<CycleRow>& row) { return std::string(row.param.name); });

}  // namespace
