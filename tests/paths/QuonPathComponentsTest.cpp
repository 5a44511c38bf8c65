// The components of a path: taken, removed, listed.
#include <gtest/gtest.h>

#include <list>
#include <vector>

#include "paths/PathTestSupport.h"
#include "paths/QuonPath.h"

using quon_test::MakeForward;
using quon_test::Repeated;
using quon_test::SeparatorOf;
using quon_test::Text;

namespace
{

struct ComponentRow
{
    const wchar_t* text;
    const wchar_t* first;
    const wchar_t* last;
    const wchar_t* withoutFirst;  // with the separator "\"
    const wchar_t* withoutLast;
};

TEST(QuonPathComponents, FirstAndLastAreFoundAndRemoved)
{
    const ComponentRow rows[] = {
        {L"", L"", L"", L"", L""},
        {L"\\", L"", L"", L"", L""},
        {L"\\/\\", L"", L"", L"", L""},
        {L"abc", L"abc", L"abc", L"", L""},
        {L"\\abc", L"abc", L"abc", L"", L""},
        {L"\\\\abc", L"abc", L"abc", L"", L""},
        {L"abc\\", L"abc", L"abc", L"", L""},
        {L"/abc/", L"abc", L"abc", L"", L""},
        {L"C:\\a\\b", L"C:", L"b", L"a\\b", L"C:\\a\\"},
        {L"C:\\a\\b\\", L"C:", L"b", L"a\\b\\", L"C:\\a\\"},
        {L"C:/a//b/\\", L"C:", L"b", L"a\\b\\", L"C:/a//"},
        {L"C:\\a", L"C:", L"a", L"a", L"C:\\"},
        {L"C:\\", L"C:", L"C:", L"", L""},
        {L"\\\\server\\share", L"server", L"share", L"share", L"\\\\server\\"},
        {L"\\\\srv\\share", L"srv", L"share", L"share", L"\\\\srv\\"},
        {L"\\a\\b", L"a", L"b", L"b", L"\\a\\"},
        {L"a\\.\\..", L"a", L"..", L".\\..", L"a\\.\\"},
        // Quotes part components when they are taken, but not when the last one is cut off.
        {L"\"C:\\a\"", L"C:", L"a", L"a", L"\"C:\\"},
        {L"a\"b", L"a", L"b", L"b", L""},
        {L"a\\b\"c", L"a", L"c", L"b\\c", L"a\\"},
        {L"a\\b\"", L"a", L"b", L"b", L"a\\"},
        {L"a\"\\", L"a", L"a", L"", L""},
        {L"a\\\"", L"a", L"a", L"", L"a\\"},
        {L"\\\"", L"", L"", L"", L""},
        {L"\"", L"", L"", L"", L""},
    };
    for (const ComponentRow& row : rows)
    {
        SCOPED_TRACE(testing::Message() << "text " << row.text);
        QuonPath path(row.text, 0);
        EXPECT_EQ(Text(path.GetFirstComponent()), row.first);
        EXPECT_EQ(Text(path.GetLastComponent()), row.last);
        path.RemoveFirstComponent();
        EXPECT_EQ(Text(path), row.withoutFirst);
        path = row.text;
        path.RemoveLastComponent();
        EXPECT_EQ(Text(path), row.withoutLast);
    }
}

TEST(QuonPathComponents, RemovingTheFirstJoinsWithTheObjectsSeparator)
{
    QuonPath path;
    MakeForward(path, L"C:\\a\\b\\").RemoveFirstComponent();
    EXPECT_EQ(Text(path), L"a/b/");
    EXPECT_EQ(SeparatorOf(path), L"/");
}

TEST(QuonPathComponents, RemovingTheLastKeepsTheTextBeforeAndTheSeparator)
{
    QuonPath path;
    MakeForward(path, L"C:\\a//b").RemoveLastComponent();
    EXPECT_EQ(Text(path), L"C:\\a//");
    EXPECT_EQ(SeparatorOf(path), L"/");
    // Short and long of the 260 characters that are reserved.
    for (const std::size_t length : {100u, 259u, 260u, 261u, 32767u})
    {
        SCOPED_TRACE(length);
        path = Repeated(length, L'a') + L"\\b";
        path.RemoveLastComponent();
        EXPECT_EQ(Text(path), Repeated(length, L'a') + L"\\");
    }
}

std::vector<std::wstring> ComponentsOf(const QuonPath& path)
{
    std::list<QuonPath> components;
    components.emplace_back(L"stale", 0);
    path.GetComponents(components);
    std::vector<std::wstring> texts;
    for (const QuonPath& component : components)
    {
        EXPECT_EQ(SeparatorOf(component), L"\\");
        texts.push_back(Text(component));
    }
    return texts;
}

TEST(QuonPathComponents, ListHoldsDriveFoldersAndFileName)
{
    using Texts = std::vector<std::wstring>;
    const struct
    {
        const wchar_t* text;
        Texts expected;
    } rows[] = {
        {L"", {}},
        {L"C:\\a\\b.txt", {L"C:", L"a", L"b.txt"}},
        {L"C:/a//c\\b.txt", {L"C:", L"a", L"c", L"b.txt"}},
        {L"C:\\a\\", {L"C:", L"a"}},
        {L"C:\\", {L"C:"}},
        {L"C:b.txt", {L"C:", L"b.txt"}},
        {L"b.txt", {L"b.txt"}},
        {L".cfg", {L".cfg"}},
        {L"\\a\\b", {L"a", L"b"}},
        {L"\\\\srv\\share\\a\\b.txt", {L"\\\\srv\\share\\", L"a", L"b.txt"}},
        {L"\\\\srv\\share", {L"\\\\srv\\", L"share"}},
        {L"\\\\", {L"\\\\\\"}},
        {L"a\\..\\b", {L"a", L"..", L"b"}},
        // In the directory a quote parts folders; in the file name it stays.
        {L"C:\\a\"c\\b\"d", {L"C:", L"a", L"c", L"b\"d"}},
        {L"\"\\b", {L"b"}},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(testing::Message() << "text " << row.text);
        EXPECT_EQ(ComponentsOf(QuonPath(row.text, 0)), row.expected);
    }
    QuonPath forward;
    const Texts expected = {L"//srv/share/", L"a", L"b"};
    EXPECT_EQ(ComponentsOf(MakeForward(forward, L"\\\\srv\\share\\a\\b")), expected);
}

TEST(QuonPathComponents, ListMayHoldThePathItself)
{
    std::list<QuonPath> components;
    components.emplace_back(L"C:\\a\\b", 0);
    components.front().GetComponents(components);
    ASSERT_EQ(components.size(), 3u);
    EXPECT_EQ(Text(components.front()), L"C:");
    EXPECT_EQ(Text(components.back()), L"b");
}

}  // namespace
