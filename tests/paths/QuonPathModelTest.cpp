// Random texts through the path rules, beside a model that is written down differently: lists of tokens, one rule after
// the other, and the C run-time's own split. Seeds are fixed.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <vector>

#include "paths/PathTestSupport.h"
#include "paths/QuonPath.h"
#include "helpers/Thorough.h"

using quon_test::MakeForward;
using quon_test::RandomTexts;
using quon_test::Text;

namespace
{

constexpr int kRounds = 6000;
constexpr std::size_t kLongest = 14;

bool IsSeparator(wchar_t ch)
{
    return std::wstring(L"\\/").find(ch) != std::wstring::npos;
}

bool EndsInSeparator(const std::wstring& text)
{
    return !text.empty() && IsSeparator(text.back());
}

std::vector<std::wstring> Tokens(const std::wstring& text)
{
    std::vector<std::wstring> tokens;
    std::size_t begin = text.find_first_not_of(L"\\/\"");
    while (begin != std::wstring::npos)
    {
        const std::size_t end = text.find_first_of(L"\\/\"", begin);
        tokens.push_back(text.substr(begin, end - begin));
        begin = text.find_first_not_of(L"\\/\"", end);
    }
    return tokens;
}

std::wstring Joined(const std::vector<std::wstring>& tokens, std::size_t from, const std::wstring& separator)
{
    std::wstring text;
    for (std::size_t index = from; index < tokens.size(); ++index)
    {
        text += index == from ? tokens[index] : separator + tokens[index];
    }
    return text;
}

std::wstring NormalForm(const std::wstring& text, const std::wstring& separator)
{
    std::wstring result;
    if (text.size() > 1 && IsSeparator(text[0]) && IsSeparator(text[1]))
    {
        result = separator + separator;
    }
    else if (!text.empty() && IsSeparator(text[0]))
    {
        result = separator;
    }
    result += Joined(Tokens(text), 0, separator);
    return EndsInSeparator(text) && text.size() > 1 ? result + separator : result;
}

std::wstring WithoutFirst(const std::wstring& text, const std::wstring& separator)
{
    const std::wstring rest = Joined(Tokens(text), 1, separator);
    return EndsInSeparator(text) && !rest.empty() ? rest + separator : rest;
}

std::wstring WithoutLast(const std::wstring& text)
{
    std::size_t at = 0;
    while (at < text.size() && IsSeparator(text[at]))
    {
        ++at;
    }
    std::size_t cut = 0;
    for (; at < text.size(); ++at)
    {
        if (!IsSeparator(text[at]) && at > 0 && IsSeparator(text[at - 1]) && text.find_first_not_of(L"\\/") < at - 1)
        {
            cut = at;
        }
    }
    return text.substr(0, cut);
}

std::wstring Appended(const std::wstring& left, const std::wstring& right, const std::wstring& separator)
{
    const std::wstring first = NormalForm(left, separator);
    const std::wstring second = NormalForm(right, separator);
    if (first.empty() || second.empty())
    {
        return first + second;
    }
    const std::size_t skipped = second.find_first_not_of(L"\\/");
    return first + (EndsInSeparator(first) ? L"" : separator) +
           (skipped == std::wstring::npos ? L"" : second.substr(skipped));
}

struct ModelParts
{
    std::wstring drive;
    std::wstring directory;
    std::wstring name;
    std::wstring extension;
};

ModelParts SplitByRuntime(const std::wstring& text)
{
    wchar_t drive[264];
    wchar_t directory[264];
    wchar_t name[264];
    wchar_t extension[264];
    ::_wsplitpath(text.c_str(), drive, directory, name, extension);
    return {drive, directory, name, extension};
}

ModelParts Split(const std::wstring& text, const std::wstring& separator)
{
    ModelParts parts = SplitByRuntime(text);
    std::wstring& directory = parts.directory;
    if (directory.size() > 1 && IsSeparator(directory[0]) && IsSeparator(directory[1]))
    {
        const auto firstToken = [&directory] {
            const std::vector<std::wstring> tokens = Tokens(directory);
            return tokens.empty() ? std::wstring() : tokens.front();
        };
        parts.drive = separator + separator + firstToken();
        directory = WithoutFirst(directory, separator);
        parts.drive = Appended(parts.drive, firstToken(), separator);
        directory = WithoutFirst(directory, separator);
        if (!EndsInSeparator(parts.drive))
        {
            parts.drive += separator;
        }
    }
    return parts;
}

/// Calls `check` with random texts, each with a path that holds it and writes "\" or "/".
template <typename Check>
void ForRandomTexts(unsigned seed, Check check)
{
    RandomTexts texts(seed);
    for (int round = 0; round < quon_test::Cases(kRounds) && !testing::Test::HasFailure(); ++round)
    {
        const std::wstring text = texts.Next(kLongest);
        const bool isForward = texts.Below(2) == 1;
        SCOPED_TRACE(testing::Message() << "text " << text << (isForward ? " writing /" : " writing \\"));
        QuonPath path;
        path.Assign(text, isForward ? QuonPathForwardSlash : QuonPathBackslash);
        check(path, text, std::wstring(isForward ? L"/" : L"\\"));
    }
}

TEST(QuonPathModel, Normalize)
{
    ForRandomTexts(1, [](QuonPath& path, const std::wstring& text, const std::wstring& separator) {
        path.Normalize();
        EXPECT_EQ(Text(path), NormalForm(text, separator));
    });
}

TEST(QuonPathModel, NormalFormIsItsOwnNormalForm)
{
    ForRandomTexts(2, [](QuonPath& path, const std::wstring&, const std::wstring& separator) {
        path.Normalize();
        const std::wstring once = Text(path);
        path.Normalize();
        // Two separators alone grow to three, which are their own normal form.
        const bool grows = once == separator + separator;
        EXPECT_EQ(Text(path), grows ? once + separator : once);
    });
}

TEST(QuonPathModel, RemoveFirstComponent)
{
    ForRandomTexts(3, [](QuonPath& path, const std::wstring& text, const std::wstring& separator) {
        path.RemoveFirstComponent();
        EXPECT_EQ(Text(path), WithoutFirst(text, separator));
    });
}

TEST(QuonPathModel, RemoveLastComponent)
{
    ForRandomTexts(4, [](QuonPath& path, const std::wstring& text, const std::wstring&) {
        path.RemoveLastComponent();
        EXPECT_EQ(Text(path), WithoutLast(text));
    });
}

TEST(QuonPathModel, FirstAndLastComponent)
{
    ForRandomTexts(5, [](QuonPath& path, const std::wstring& text, const std::wstring&) {
        const std::vector<std::wstring> tokens = Tokens(text);
        EXPECT_EQ(Text(path.GetFirstComponent()), tokens.empty() ? L"" : tokens.front());
        EXPECT_EQ(Text(path.GetLastComponent()), tokens.empty() ? L"" : tokens.back());
    });
}

TEST(QuonPathModel, Append)
{
    RandomTexts others(106);
    ForRandomTexts(6, [&others](QuonPath& path, const std::wstring& text, const std::wstring& separator) {
        const std::wstring other = others.Next(kLongest);
        SCOPED_TRACE(testing::Message() << "other " << other);
        const std::wstring expected = Appended(text, other, separator);
        EXPECT_EQ(Text(path + other), Appended(text, other, L"\\"));
        EXPECT_EQ(Text(path.Append(other)), expected);
        EXPECT_EQ(Text(path), expected);
    });
}

TEST(QuonPathModel, SplitPlain)
{
    ForRandomTexts(7, [](QuonPath& path, const std::wstring& text, const std::wstring&) {
        QuonPath drive;
        QuonPath directory;
        QuonPath name;
        QuonPath extension;
        path.SplitPlain(drive, directory, name, extension);
        const ModelParts expected = SplitByRuntime(text);
        EXPECT_EQ(Text(drive), expected.drive);
        EXPECT_EQ(Text(directory), expected.directory);
        EXPECT_EQ(Text(name), expected.name);
        EXPECT_EQ(Text(extension), expected.extension);
        EXPECT_EQ(Text(drive) + Text(directory) + Text(name) + Text(extension), text);
    });
}

TEST(QuonPathModel, Split)
{
    ForRandomTexts(8, [](QuonPath& path, const std::wstring& text, const std::wstring& separator) {
        QuonPath drive;
        QuonPath directory;
        QuonPath name;
        QuonPath extension;
        path.Split(drive, directory, name, extension);
        const ModelParts expected = Split(text, separator);
        EXPECT_EQ(Text(drive), expected.drive);
        EXPECT_EQ(Text(directory), expected.directory);
        EXPECT_EQ(Text(name), expected.name);
        EXPECT_EQ(Text(extension), expected.extension);
        EXPECT_EQ(Text(path.GetDrive()), expected.drive);
        EXPECT_EQ(Text(path.GetDirectory()), expected.directory);
        EXPECT_EQ(Text(path.GetFileName()), expected.name + expected.extension);
        EXPECT_EQ(Text(path.GetFolder()), Appended(expected.drive, expected.directory, L"\\"));
    });
}

TEST(QuonPathModel, Setters)
{
    RandomTexts values(109);
    ForRandomTexts(9, [&values](QuonPath& path, const std::wstring& text, const std::wstring& separator) {
        const std::wstring value = values.Next(6);
        SCOPED_TRACE(testing::Message() << "value " << value);
        const ModelParts parts = Split(text, separator);
        const std::wstring file = parts.name + parts.extension;
        const std::wstring folder = Appended(parts.drive, parts.directory, L"\\");
        QuonPath set(path);
        set = path;
        set.SetDrive(value.c_str());
        EXPECT_EQ(Text(set), Appended(value, Appended(parts.directory, file, L"\\"), separator));
        set = path;
        set.SetDirectory(value.c_str());
        EXPECT_EQ(Text(set), Appended(Appended(parts.drive, value, L"\\"), file, L"\\"));
        set = path;
        set.SetFileTitle(value.c_str());
        EXPECT_EQ(Text(set), Appended(folder, value + parts.extension, L"\\"));
        set = path;
        set.SetExtension(value.c_str());
        const std::wstring dot = value.rfind(L'.', 0) == 0 ? L"" : L".";
        EXPECT_EQ(Text(set), Appended(folder, parts.name, L"\\") + dot + value);
    });
}

TEST(QuonPathModel, ComponentsAreDriveTokensAndFileName)
{
    ForRandomTexts(10, [](QuonPath& path, const std::wstring& text, const std::wstring& separator) {
        const ModelParts parts = Split(text, separator);
        std::vector<std::wstring> expected = Tokens(parts.directory);
        if (!parts.drive.empty())
        {
            expected.insert(expected.begin(), parts.drive);
        }
        if (!(parts.name + parts.extension).empty())
        {
            expected.push_back(parts.name + parts.extension);
        }
        std::list<QuonPath> components;
        path.GetComponents(components);
        std::vector<std::wstring> actual;
        for (const QuonPath& component : components)
        {
            actual.push_back(Text(component));
        }
        EXPECT_EQ(actual, expected);
    });
}

TEST(QuonPathModel, PlainDrivePathsSplitAndJoinToTheSameText)
{
    RandomTexts names(11, L"abc. -_");
    for (int round = 0; round < quon_test::Cases(kRounds) && !HasFailure(); ++round)
    {
        std::wstring text = L"C:";
        for (std::size_t depth = names.Below(5); depth > 0; --depth)
        {
            text += L"\\x" + names.Next(8);
        }
        text += L"\\f" + names.Next(8);
        SCOPED_TRACE(testing::Message() << "text " << text);
        const QuonPath path(text, 0);
        QuonPath drive;
        QuonPath directory;
        QuonPath name;
        QuonPath extension;
        path.Split(drive, directory, name, extension);
        EXPECT_EQ(Text((drive + directory) + (Text(name) + Text(extension))), text);
        EXPECT_EQ(Text(path.GetFolder() + path.GetFileName()), text);
        QuonPath rebuilt;
        std::list<QuonPath> components;
        path.GetComponents(components);
        for (const QuonPath& component : components)
        {
            rebuilt.Append(component);
        }
        EXPECT_EQ(Text(rebuilt), text);
    }
}

TEST(QuonPathModel, FlagsAreAppliedInOrder)
{
    RandomTexts numbers(112);
    ForRandomTexts(12, [&numbers](QuonPath& path, const std::wstring& text, const std::wstring&) {
        const auto flags = static_cast<QuonPathFlags>(numbers.Below(128));
        SCOPED_TRACE(testing::Message() << "flags " << flags);
        path.ApplyFlags(flags);
        const std::wstring separator = (flags & 3) == 1 ? L"/" : L"\\";
        std::wstring expected = text;
        for (wchar_t& ch : expected)
        {
            ch = (flags & 0x30) == 0x10 && ch == L'B' ? L'b' : ch;
            ch = (flags & 0x30) == 0x20 && ch == L'a' ? L'A' : ch;
        }
        if ((flags & 0x0C) == 0x04)
        {
            expected.erase(expected.find_last_not_of(L"\\/") + 1);
        }
        if ((flags & 0x0C) == 0x08 && !EndsInSeparator(expected))
        {
            expected += separator;
        }
        EXPECT_EQ(Text(path), (flags & 0x40) != 0 ? NormalForm(expected, separator) : expected);
    });
}

}  // namespace
