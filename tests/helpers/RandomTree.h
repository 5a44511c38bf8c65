// Fills a temporary folder with a tree that depends on the seed alone.
#pragma once

#include <afx.h>

#include <random>
#include <string>
#include <vector>

#include "helpers/TemporaryFolder.h"

namespace quon_test
{

// Up to `folders` folders and `files` files, some hidden, read-only or system ones. The numbers come straight from the
// generator, whose sequence the language fixes, so every run and every compiler makes the same tree.
inline void FillRandomly(const TemporaryFolder& root, unsigned int seed, unsigned int folders, unsigned int files)
{
    static const wchar_t* const kNames[] = {L"a",      L"B b",       L"c.d", L"survey 12", L".cfg",  L"x.y.z", L"ÄÖ",
                                            L"readme", L"long name", L"0",   L"T",         L"..p",   L"it's",  L"#1",
                                            L"100%",   L"(2)",       L"~t",  L"Ж",         L"a+b=c", L"e,f;g"};
    static const DWORD kAttributes[] = {0,
                                        0,
                                        0,
                                        FILE_ATTRIBUTE_HIDDEN,
                                        FILE_ATTRIBUTE_SYSTEM,
                                        FILE_ATTRIBUTE_READONLY,
                                        FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM};
    std::mt19937 random(seed);
    const auto below = [&random](std::size_t bound) { return static_cast<std::size_t>(random()) % bound; };
    const auto name = [&] { return std::wstring(kNames[below(std::size(kNames))]); };

    std::vector<std::wstring> made{L""};
    const auto inAny = [&](const std::wstring& entry) {
        const std::wstring& parent = made[below(made.size())];
        return parent.empty() ? entry : parent + L"\\" + entry;
    };
    for (unsigned int i = 0; i < folders; ++i)
    {
        const std::wstring folder = inAny(name());
        if (!root.Exists(folder) && (root / folder).size() < 200)
        {
            // Read-only folders cannot be removed under Windows: leave that bit to the files.
            root.MakeFolder(folder, kAttributes[below(std::size(kAttributes))] & ~DWORD{FILE_ATTRIBUTE_READONLY});
            made.push_back(folder);
        }
    }
    for (unsigned int i = 0; i < files; ++i)
    {
        const std::wstring file = inAny(name() + L".f");
        if (!root.Exists(file))
        {
            const DWORD attributes = kAttributes[below(std::size(kAttributes))];
            root.WriteFile(file, std::string(below(5000), 'x'),
                           attributes == 0 ? 0 : attributes | FILE_ATTRIBUTE_ARCHIVE);
        }
    }
}

}  // namespace quon_test
