// Path values: put into normal form, joined, taken apart; 1,000 paths as a project has them.
#include <afx.h>

#include "BenchmarkSupport.h"

#include "paths/QuonPath.h"

#include <benchmark/benchmark.h>
#include <pathcch.h>
#include <shlwapi.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <random>
#include <string>

using namespace quon_benchmark;

namespace
{

using PathCchCanonicalizeExFunction = HRESULT(WINAPI*)(PWSTR, size_t, PCWSTR, ULONG);

// What a project's files are called, with the blemishes that paths gather on their way: double and mixed separators,
// single and double dots.
std::vector<std::wstring> MakePaths(int count)
{
    static constexpr const wchar_t* kRoots[] = {L"C:\\projects", L"D:/jobs/2026", L"\\\\server\\share\\plans",
                                                L"C:\\Users\\surveyor"};
    static constexpr const wchar_t* kFolders[] = {L"site", L"bridge 12", L"alignment", L"..",
                                                  L".",    L"drainage",  L"old",       L"xml"};
    static constexpr const wchar_t* kSeparators[] = {L"\\", L"\\", L"\\", L"/", L"\\\\"};
    static constexpr const wchar_t* kExtensions[] = {L".xml", L".csv", L".dwg", L".txt", L""};
    std::mt19937 random(42);
    const auto pick = [&random](const auto& table) { return table[random() % std::size(table)]; };
    std::vector<std::wstring> paths;
    for (int index = 0; index < count; ++index)
    {
        std::wstring path = pick(kRoots);
        for (unsigned depth = 0, folders = 1 + random() % 3; depth < folders; ++depth)
        {
            path = path + pick(kSeparators) + pick(kFolders);
        }
        paths.push_back(path + L"\\survey points " + std::to_wstring(index) + pick(kExtensions));
    }
    return paths;
}

constexpr wchar_t kTail[] = L"exchange\\points.xml";

using Texts = std::shared_ptr<const std::vector<std::wstring>>;

void AddNormalize(const Texts& texts, int size)
{
    const auto paths = std::make_shared<std::vector<QuonPath>>();
    for (const std::wstring& text : *texts)
    {
        paths->emplace_back(text, 0);
    }
    // What is measured makes a path and puts it into normal form.
    Add("Normalize", size, "quon", [texts] {
        for (const std::wstring& text : *texts)
        {
            QuonPath path(text, 0);
            path.Normalize();
            benchmark::DoNotOptimize(path);
        }
    });
    Add("Normalize", size, "std::filesystem::path, lexically_normal", [texts] {
        for (const std::wstring& text : *texts)
        {
            std::filesystem::path path = std::filesystem::path(text).lexically_normal();
            benchmark::DoNotOptimize(path);
        }
    });
    Add("Normalize", size, "PathCanonicalizeW (Wine)", [texts] {
        for (const std::wstring& text : *texts)
        {
            wchar_t buffer[MAX_PATH];
            benchmark::DoNotOptimize(::PathCanonicalizeW(buffer, text.c_str()));
        }
    });
    // Not in the import libraries of every compiler.
    const auto canonicalize = reinterpret_cast<PathCchCanonicalizeExFunction>(
        reinterpret_cast<void*>(::GetProcAddress(::LoadLibraryW(L"kernelbase.dll"), "PathCchCanonicalizeEx")));
    if (canonicalize != nullptr)
    {
        Add("Normalize", size, "PathCchCanonicalizeEx (Wine)", [texts, canonicalize] {
            for (const std::wstring& text : *texts)
            {
                wchar_t buffer[MAX_PATH];
                benchmark::DoNotOptimize(canonicalize(buffer, MAX_PATH, text.c_str(), 0));
            }
        });
    }
}

void AddAppend(const Texts& texts, int size)
{
    const auto quonPaths = std::make_shared<std::vector<QuonPath>>();
    const auto stdPaths = std::make_shared<std::vector<std::filesystem::path>>();
    for (const std::wstring& text : *texts)
    {
        quonPaths->emplace_back(text, 0);
        stdPaths->emplace_back(text);
    }
    Add("Append", size, "quon", [quonPaths] {
        for (const QuonPath& path : *quonPaths)
        {
            QuonPath joined = path + kTail;
            benchmark::DoNotOptimize(joined);
        }
    });
    Add("Append", size, "std::filesystem::path, operator/", [stdPaths] {
        for (const std::filesystem::path& path : *stdPaths)
        {
            std::filesystem::path joined = path / kTail;
            benchmark::DoNotOptimize(joined);
        }
    });
    Add("Append", size, "PathCombineW (Wine)", [texts] {
        for (const std::wstring& text : *texts)
        {
            wchar_t buffer[MAX_PATH];
            benchmark::DoNotOptimize(::PathCombineW(buffer, text.c_str(), kTail));
        }
    });
}

void AddSplit(const Texts& texts, int size)
{
    const auto quonPaths = std::make_shared<std::vector<QuonPath>>();
    const auto stdPaths = std::make_shared<std::vector<std::filesystem::path>>();
    for (const std::wstring& text : *texts)
    {
        quonPaths->emplace_back(text, 0);
        stdPaths->emplace_back(text);
    }
    // Four parts of each path, into values that live on from path to path, as a loop over files has them.
    Add("Split", size, "quon", [quonPaths] {
        QuonPath drive, directory, name, extension;
        for (const QuonPath& path : *quonPaths)
        {
            path.Split(drive, directory, name, extension);
            benchmark::DoNotOptimize(extension);
        }
    });
    Add("Split", size, "std::filesystem::path, four parts", [stdPaths] {
        std::filesystem::path drive, directory, name, extension;
        for (const std::filesystem::path& path : *stdPaths)
        {
            drive = path.root_name();
            directory = path.parent_path();
            name = path.stem();
            extension = path.extension();
            benchmark::DoNotOptimize(extension);
        }
    });
    Add("Split, into four fresh values", size, "quon", [quonPaths] {
        for (const QuonPath& path : *quonPaths)
        {
            QuonPath drive, directory, name, extension;
            path.Split(drive, directory, name, extension);
            benchmark::DoNotOptimize(extension);
        }
    });
    Add("Split, into four fresh values", size, "std::filesystem::path, four parts", [stdPaths] {
        for (const std::filesystem::path& path : *stdPaths)
        {
            std::filesystem::path drive = path.root_name(), directory = path.parent_path();
            std::filesystem::path name = path.stem(), extension = path.extension();
            benchmark::DoNotOptimize(drive);
            benchmark::DoNotOptimize(directory);
            benchmark::DoNotOptimize(name);
            benchmark::DoNotOptimize(extension);
        }
    });
}

bool HasDots(const std::wstring& text)
{
    const std::filesystem::path path(text);
    return std::any_of(path.begin(), path.end(),
                       [](const std::filesystem::path& part) { return part == L"." || part == L".."; });
}

// No mixed or double separators, no dots: what all contenders leave as it is.
bool IsPlain(const std::wstring& text)
{
    return !HasDots(text) && text.find(L'/') == std::wstring::npos && text.find(L"\\\\", 1) == std::wstring::npos;
}

bool IsSame(const QuonPath& ours, const std::wstring& theirs)
{
    return theirs == static_cast<const wchar_t*>(ours);
}

void CheckNormalAndJoined(const std::wstring& text)
{
    const QuonPath joined = QuonPath(text, 0) + kTail;
    QuonPath normal(text, 0);
    normal.Normalize();
    // The standard's normal form also resolves dots, which QuonPath keeps, and GCC's library loses the first separator
    // of a server's name.
    if (!HasDots(text) && text[1] == L':')
    {
        Require(IsSame(normal, std::filesystem::path(text).lexically_normal().wstring()), "normal form");
    }
    if (IsPlain(text))
    {
        wchar_t buffer[MAX_PATH];
        Require(::PathCanonicalizeW(buffer, text.c_str()) && IsSame(normal, buffer), "PathCanonicalizeW");
        Require(::PathCombineW(buffer, text.c_str(), kTail) && IsSame(joined, buffer), "PathCombineW");
        Require(IsSame(joined, (std::filesystem::path(text) / kTail).wstring()), "joined");
    }
}

void CheckParts(const std::wstring& text)
{
    QuonPath drive, directory, name, extension;
    QuonPath(text, 0).Split(drive, directory, name, extension);
    const std::filesystem::path path(text);
    Require(IsSame(name, path.stem().wstring()) && IsSame(extension, path.extension().wstring()), "name");
    if (text[1] == L':')
    {
        Require(IsSame(drive, path.root_name().wstring()), "drive");
    }
}

void Check()
{
    for (const std::wstring& text : MakePaths(1000))
    {
        CheckNormalAndJoined(text);
        CheckParts(text);
    }
}

void AddContenders(const Sizes& sizes)
{
    Check();
    for (const int size : sizes.UpTo(1000))
    {
        const Texts texts = std::make_shared<const std::vector<std::wstring>>(MakePaths(size));
        AddNormalize(texts, size);
        AddAppend(texts, size);
        AddSplit(texts, size);
    }
}

}  // namespace

int main(int argc, char** argv)
{
    return Run(argc, argv, &AddContenders);
}
