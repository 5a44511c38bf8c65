// Names in the order in which people count: 100,000 file names sorted.
#include <afx.h>

#include "BenchmarkSupport.h"

#include "support/NaturalCompare.h"

#include <benchmark/benchmark.h>
#include <shlwapi.h>

#include <algorithm>
#include <clocale>
#include <cwchar>
#include <memory>
#include <random>
#include <string>
#include <vector>

using namespace quon_benchmark;

namespace
{

using Names = std::shared_ptr<const std::vector<std::wstring>>;
using Order = int (*)(const wchar_t*, const wchar_t*);

int CompareLogical(const wchar_t* a, const wchar_t* b)
{
    return ::StrCmpLogicalW(a, b);
}
int CompareLettersNoCase(const wchar_t* a, const wchar_t* b)
{
    return ::_wcsicmp(a, b);
}
int CompareLetters(const wchar_t* a, const wchar_t* b)
{
    return std::wcscmp(a, b);
}
int CompareLinguistic(const wchar_t* a, const wchar_t* b)
{
    return std::wcscoll(a, b);
}

// Names of one kind, as they lie in a folder: numbered sheets of a few drawings.
Names MakeNames(int count)
{
    static constexpr const wchar_t* kKinds[] = {L"bridge ", L"plan ", L"profile ", L"section "};
    std::mt19937 random(11);
    std::vector<std::wstring> names;
    for (int index = 0; index < count; ++index)
    {
        names.push_back(kKinds[index % 4] + std::to_wstring(index / 4) + L" rev " + std::to_wstring(random() % 12) +
                        L".dwg");
    }
    std::shuffle(names.begin(), names.end(), random);
    return std::make_shared<const std::vector<std::wstring>>(std::move(names));
}

void Sort(std::vector<const wchar_t*>& pointers, Order order)
{
    std::sort(pointers.begin(), pointers.end(),
              [order](const wchar_t* a, const wchar_t* b) { return order(a, b) < 0; });
}

std::vector<const wchar_t*> Pointers(const Names& names)
{
    std::vector<const wchar_t*> pointers;
    for (const std::wstring& name : *names)
    {
        pointers.push_back(name.c_str());
    }
    return pointers;
}

struct Work
{
    std::string name;
    const char* locale;  // what the C run-time collates by
};

constexpr const char* kPlainLocale = "C";
constexpr const char* kLinguisticLocale = "German";

void AddOrder(const Work& work, const Names& names, int size, const std::string& contender, Order order)
{
    const auto pointers = std::make_shared<std::vector<const wchar_t*>>();
    AddPrepared(
        work.name, size, contender,
        [names, pointers, locale = work.locale] {
            // The contenders take turns: each brings its locale.
            std::setlocale(LC_COLLATE, locale);
            *pointers = Pointers(names);
        },
        [pointers, order] { Sort(*pointers, order); });
}

// The names are such that both natural orders agree, and that both end with other ones than the plain orders.
void Check(const Names& names, const char* locale)
{
    Require(std::setlocale(LC_COLLATE, locale) != nullptr, std::string("no locale ") + locale);
    std::vector<const wchar_t*> ours = Pointers(names);
    std::vector<const wchar_t*> logical = ours;
    std::vector<const wchar_t*> oursNoCase = ours;
    Sort(ours, &CompareNatural);
    Sort(oursNoCase, &CompareNaturalNoCase);
    Sort(logical, &CompareLogical);
    Require(ours == logical && oursNoCase == logical, "names in natural order");
}

void AddAll(const Work& work, const Names& names, int size)
{
    AddOrder(work, names, size, "quon", &CompareNatural);
    AddOrder(work, names, size, "quon, case ignored", &CompareNaturalNoCase);
    AddOrder(work, names, size, "StrCmpLogicalW (Wine)", &CompareLogical);
    AddOrder(work, names, size, "_wcsicmp (msvcrt)", &CompareLettersNoCase);
    AddOrder(work, names, size, "wcscoll (msvcrt)", &CompareLinguistic);
    AddOrder(work, names, size, "limit: wcscmp", &CompareLetters);
}

void AddContenders(const Sizes& sizes)
{
    for (const int size : sizes.UpTo(100000))
    {
        const Names names = MakeNames(size);
        Check(names, kPlainLocale);
        AddAll({"sort file names", kPlainLocale}, names, size);
    }
    for (const int size : sizes.UpTo(10000))
    {
        const Names names = MakeNames(size);
        Check(names, kLinguisticLocale);
        AddAll({"sort file names, linguistic collation", kLinguisticLocale}, names, size);
    }
}

}  // namespace

int main(int argc, char** argv)
{
    return Run(argc, argv, &AddContenders);
}
