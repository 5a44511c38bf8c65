// Lists of 100,000 items with commas between them: taken apart into strings, and walked token by token.
#include <afx.h>

#include "BenchmarkSupport.h"

#include "support/StringHelpers.h"

#include <benchmark/benchmark.h>

#include <boost/token_functions.hpp>
#include <boost/tokenizer.hpp>
#include <cwchar>
#include <memory>
#include <random>
#include <string>
#include <vector>

using namespace quon_benchmark;

namespace
{

constexpr const char* kBoost = "boost::tokenizer 1.81";
constexpr const char* kRunTime = "wcstok (msvcrt)";

using Text = std::shared_ptr<const std::wstring>;
using Strings = std::vector<std::wstring>;

// Codes of survey points, no item empty and none with white space: there all contenders have the same answer.
Text MakeList(int items)
{
    static constexpr const wchar_t* kCodes[] = {L"fence", L"kerb", L"EP", L"manhole cover", L"tree 12", L"boundary"};
    std::mt19937 random(13);
    std::wstring text;
    for (int index = 0; index < items; ++index)
    {
        text += (index == 0 ? L"" : L",") + std::wstring(kCodes[random() % std::size(kCodes)]) +
                std::to_wstring(random() % 1000);
    }
    return std::make_shared<const std::wstring>(std::move(text));
}

CString ToCString(const std::wstring& text)
{
    return CString(text.c_str(), static_cast<int>(text.size()));
}

using CommaSeparator = boost::char_separator<wchar_t>;
using Tokenizer = boost::tokenizer<CommaSeparator, std::wstring::const_iterator, std::wstring>;

Strings SplitByBoost(const std::wstring& text)
{
    const Tokenizer tokens(text, CommaSeparator(L","));
    return Strings(tokens.begin(), tokens.end());
}

Strings SplitByRunTime(const std::wstring& text)
{
    Strings strings;
    std::wstring copy = text;  // the function writes into it
    for (const wchar_t* token = std::wcstok(copy.data(), L","); token != nullptr; token = std::wcstok(nullptr, L","))
    {
        strings.emplace_back(token);
    }
    return strings;
}

void SplitByQuon(const CString& text, CStringArray& strings)
{
    SplitCommaList(text, strings);
}

// The whole list walked, one token held at a time.
std::size_t WalkByQuon(const std::wstring& text)
{
    std::size_t length = 0;
    CString token;
    for (const wchar_t* cursor = text.c_str(); GetNextToken(&cursor, L",;", token);)
    {
        length += static_cast<std::size_t>(token.GetLength());
    }
    return length;
}

std::size_t WalkByBoost(const std::wstring& text)
{
    std::size_t length = 0;
    const Tokenizer tokens(text, CommaSeparator(L",;"));
    for (const std::wstring& token : tokens)
    {
        length += token.size();
    }
    return length;
}

std::size_t WalkByRunTime(const std::wstring& text)
{
    std::size_t length = 0;
    std::wstring copy = text;
    for (const wchar_t* token = std::wcstok(copy.data(), L",;"); token != nullptr; token = std::wcstok(nullptr, L",;"))
    {
        length += std::wcslen(token);
    }
    return length;
}

void Check(const std::wstring& text, int items)
{
    CStringArray strings;
    SplitByQuon(ToCString(text), strings);
    Strings ours;
    for (INT_PTR index = 0; index < strings.GetSize(); ++index)
    {
        ours.emplace_back(strings[index].GetString());
    }
    Require(ours.size() == static_cast<std::size_t>(items), "the number of items");
    Require(ours == SplitByBoost(text) && ours == SplitByRunTime(text), "items of a list");
    const std::size_t length = WalkByQuon(text);
    Require(length != 0 && length == WalkByBoost(text) && length == WalkByRunTime(text), "tokens of a text");
}

void AddContenders(const Sizes& sizes)
{
    for (const int size : sizes.UpTo(100000))
    {
        const Text text = MakeList(size);
        Check(*text, size);
        const auto list = std::make_shared<const CString>(ToCString(*text));
        Add("comma list", size, "quon", [list] {
            CStringArray strings;
            SplitByQuon(*list, strings);
            benchmark::DoNotOptimize(strings);
        });
        Add("comma list", size, kBoost, [text] { benchmark::DoNotOptimize(SplitByBoost(*text)); });
        Add("comma list", size, kRunTime, [text] { benchmark::DoNotOptimize(SplitByRunTime(*text)); });

        Add("token walk", size, "quon", [text] { benchmark::DoNotOptimize(WalkByQuon(*text)); });
        Add("token walk", size, kBoost, [text] { benchmark::DoNotOptimize(WalkByBoost(*text)); });
        Add("token walk", size, kRunTime, [text] { benchmark::DoNotOptimize(WalkByRunTime(*text)); });
    }
}

}  // namespace

int main(int argc, char** argv)
{
    return Run(argc, argv, &AddContenders);
}
