// Splitting a path, its parts, and rebuilding it from them.
#include <gtest/gtest.h>

#include "paths/PathTestSupport.h"
#include "paths/QuonPath.h"

using quon_test::MakeForward;
using quon_test::Repeated;
using quon_test::SeparatorOf;
using quon_test::Text;

namespace
{

struct SplitRow
{
    const wchar_t* text;
    const wchar_t* drive;
    const wchar_t* directory;
    const wchar_t* name;
    const wchar_t* extension;
};

void ExpectParts(const QuonPath (&parts)[4], const SplitRow& row, const wchar_t* separator)
{
    EXPECT_EQ(Text(parts[0]), row.drive);
    EXPECT_EQ(Text(parts[1]), row.directory);
    EXPECT_EQ(Text(parts[2]), row.name);
    EXPECT_EQ(Text(parts[3]), row.extension);
    for (const QuonPath& part : parts)
    {
        EXPECT_EQ(SeparatorOf(part), separator);
    }
}

TEST(QuonPathSplit, PlainSplitIsTheRuntimes)
{
    const SplitRow rows[] = {
        {L"", L"", L"", L"", L""},
        {L"C:\\a\\b.txt", L"C:", L"\\a\\", L"b", L".txt"},
        {L"C:/a/b.txt", L"C:", L"/a/", L"b", L".txt"},
        {L"C:b.txt", L"C:", L"", L"b", L".txt"},
        {L"C:", L"C:", L"", L"", L""},
        {L"C:\\", L"C:", L"\\", L"", L""},
        {L"b.txt", L"", L"", L"b", L".txt"},
        {L"a.b\\c", L"", L"a.b\\", L"c", L""},
        {L"a.b.c", L"", L"", L"a.b", L".c"},
        {L".cfg", L"", L"", L"", L".cfg"},
        {L"a.", L"", L"", L"a", L"."},
        {L"..", L"", L"", L".", L"."},
        {L"\\\\srv\\share\\a\\b.txt", L"", L"\\\\srv\\share\\a\\", L"b", L".txt"},
        {L"\\\\srv", L"", L"\\\\", L"srv", L""},
        {L"CC:\\a", L"", L"CC:\\", L"a", L""},
        {L"a\"b.t\"", L"", L"", L"a\"b", L".t\""},
    };
    for (const SplitRow& row : rows)
    {
        SCOPED_TRACE(testing::Message() << "text " << row.text);
        QuonPath parts[4];
        QuonPath(row.text, 0).SplitPlain(parts[0], parts[1], parts[2], parts[3]);
        ExpectParts(parts, row, L"\\");
        QuonPath forward;
        MakeForward(forward, row.text).SplitPlain(parts[0], parts[1], parts[2], parts[3]);
        ExpectParts(parts, row, L"/");
    }
}

TEST(QuonPathSplit, ServerAndShareAreTheDriveOfAUncPath)
{
    const SplitRow rows[] = {
        {L"", L"", L"", L"", L""},
        {L"C:\\a\\b.txt", L"C:", L"\\a\\", L"b", L".txt"},
        {L"C:/a/b.txt", L"C:", L"/a/", L"b", L".txt"},
        {L"\\a\\b.txt", L"", L"\\a\\", L"b", L".txt"},
        {L"\\\\srv\\share\\a\\b.txt", L"\\\\srv\\share\\", L"a\\", L"b", L".txt"},
        {L"\\\\srv\\share\\a\\b\\c", L"\\\\srv\\share\\", L"a\\b\\", L"c", L""},
        {L"//srv/share/a//b.txt", L"\\\\srv\\share\\", L"a\\", L"b", L".txt"},
        {L"\\/srv\\share/a/\"c\"\\", L"\\\\srv\\share\\", L"a\\c\\", L"", L""},
        {L"\\\\srv\\share\\", L"\\\\srv\\share\\", L"", L"", L""},
        // Without a separator behind it the share is a file's name.
        {L"\\\\srv\\share", L"\\\\srv\\", L"", L"share", L""},
        {L"\\\\srv\\", L"\\\\srv\\", L"", L"", L""},
        // What would be the server is the name; two separators alone become three.
        {L"\\\\srv", L"\\\\\\", L"", L"srv", L""},
        {L"\\\\", L"\\\\\\", L"", L"", L""},
        {L"\\\\\\srv\\share\\b", L"\\\\srv\\share\\", L"", L"b", L""},
        {L"\\\\\"srv\"share\\b", L"\\\\srv\\share\\", L"", L"b", L""},
        {L"\\\\\"\\b", L"\\\\\\", L"", L"b", L""},
        // The directory alone is looked at: here it begins behind a drive.
        {L"C:\\\\srv\\share\\b", L"\\\\srv\\share\\", L"", L"b", L""},
        {L"C:\\/a\\b", L"\\\\a\\", L"", L"b", L""},
    };
    for (const SplitRow& row : rows)
    {
        SCOPED_TRACE(testing::Message() << "text " << row.text);
        QuonPath parts[4];
        QuonPath(row.text, 0).Split(parts[0], parts[1], parts[2], parts[3]);
        ExpectParts(parts, row, L"\\");
    }
}

TEST(QuonPathSplit, UncDriveAndDirectoryAreWrittenWithTheObjectsSeparator)
{
    QuonPath forward;
    MakeForward(forward, L"\\\\srv\\share\\a\\c\\b.txt");
    QuonPath parts[4];
    forward.Split(parts[0], parts[1], parts[2], parts[3]);
    ExpectParts(parts, {L"", L"//srv/share/", L"a/c/", L"b", L".txt"}, L"/");
    EXPECT_EQ(Text(forward.GetDrive()), L"//srv/share/");
    EXPECT_EQ(SeparatorOf(forward.GetDrive()), L"\\");
    EXPECT_EQ(Text(forward.GetFolder()), L"\\\\srv\\share\\a\\c\\");
}

TEST(QuonPathSplit, ThePathItselfMayBeAResult)
{
    // Each part is written over the beginning of the text that the others come from.
    const struct
    {
        const wchar_t* text;
        const wchar_t* split[4];
        const wchar_t* plain[4];
    } rows[] = {
        {L"//srv/share/a/b.txt", {L"//srv/share/", L"a/", L"b", L".txt"}, {L"", L"//srv/share/a/", L"b", L".txt"}},
        {L"C:/a/title.txt", {L"C:", L"/a/", L"title", L".txt"}, {L"C:", L"/a/", L"title", L".txt"}},
        {L"C:/a/t.extension", {L"C:", L"/a/", L"t", L".extension"}, {L"C:", L"/a/", L"t", L".extension"}},
        {L"C:/folder/t.e", {L"C:", L"/folder/", L"t", L".e"}, {L"C:", L"/folder/", L"t", L".e"}},
    };
    for (const auto& row : rows)
    {
        for (int own = 0; own < 4; ++own)
        {
            SCOPED_TRACE(testing::Message() << "text " << row.text << " own part " << own);
            QuonPath parts[4];
            QuonPath path;
            const auto part = [&](int index) -> QuonPath& { return own == index ? path : parts[index]; };
            MakeForward(path, row.text);
            path.Split(part(0), part(1), part(2), part(3));
            for (int index = 0; index < 4; ++index)
            {
                EXPECT_EQ(Text(part(index)), row.split[index]);
                EXPECT_EQ(SeparatorOf(part(index)), L"/");
            }
            MakeForward(path, row.text);
            path.SplitPlain(part(0), part(1), part(2), part(3));
            for (int index = 0; index < 4; ++index)
            {
                EXPECT_EQ(Text(part(index)), row.plain[index]);
                EXPECT_EQ(SeparatorOf(part(index)), L"/");
            }
        }
    }
}

TEST(QuonPathSplit, PartsAreCutAt263Characters)
{
    const std::wstring folder = L"\\" + Repeated(32767, L'd') + L"\\";
    const std::wstring name = Repeated(32767, L'n');
    const std::wstring extension = L"." + Repeated(32767, L'e');
    QuonPath drive;
    QuonPath directory;
    QuonPath title;
    QuonPath suffix;
    const QuonPath path(L"C:" + folder + name + extension, 0);
    path.SplitPlain(drive, directory, title, suffix);
    EXPECT_EQ(Text(drive), L"C:");
    EXPECT_EQ(Text(directory), folder.substr(0, 263));
    EXPECT_EQ(Text(title), name.substr(0, 263));
    EXPECT_EQ(Text(suffix), extension.substr(0, 263));
    path.Split(drive, directory, title, suffix);
    EXPECT_EQ(Text(drive), L"C:");
    EXPECT_EQ(Text(directory), folder.substr(0, 263));
    EXPECT_EQ(Text(title), name.substr(0, 263));
    EXPECT_EQ(Text(suffix), extension.substr(0, 263));
    EXPECT_EQ(Text(path.GetFileName()), name.substr(0, 263) + extension.substr(0, 263));
    EXPECT_EQ(Text(path.GetFileTitle()), name.substr(0, 263));
    EXPECT_EQ(Text(path.GetExtension()), extension.substr(0, 263));
    EXPECT_EQ(Text(path.GetFolder()), L"C:" + folder.substr(0, 263));
}

TEST(QuonPathSplit, NothingIsCutUpTo263Characters)
{
    const std::wstring folder = L"\\" + Repeated(261, L'd') + L"\\";
    const std::wstring name = Repeated(263, L'n');
    const std::wstring extension = L"." + Repeated(262, L'e');
    const QuonPath path(L"C:" + folder + name + extension, 0);
    EXPECT_EQ(Text(path.GetDirectory()), folder);
    EXPECT_EQ(Text(path.GetFileTitle()), name);
    EXPECT_EQ(Text(path.GetExtension()), extension);
    EXPECT_EQ(Text(path.GetFileName()), name + extension);
    const QuonPath longer(L"C:\\d" + folder + L"n" + name + extension + L"e", 0);
    EXPECT_EQ(Text(longer.GetDirectory()), L"\\d" + folder.substr(0, 261));
    EXPECT_EQ(Text(longer.GetFileTitle()), name);
    EXPECT_EQ(Text(longer.GetExtension()), extension);
}

TEST(QuonPathSplit, CutUncDirectoriesStayWithinBounds)
{
    // The cut leaves a server and the beginning of a share without a separator behind it.
    const std::wstring share = Repeated(1000, L's');
    const QuonPath path(L"\\\\srv\\" + share + L"\\a\\b.txt", 0);
    EXPECT_EQ(Text(path.GetDrive()), L"\\\\srv\\" + share.substr(0, 257) + L"\\");
    EXPECT_EQ(Text(path.GetDirectory()), L"");
    EXPECT_EQ(Text(path.GetFileName()), L"b.txt");
    const QuonPath server(L"//" + share + L"/share/b", 0);
    EXPECT_EQ(Text(server.GetDrive()), L"\\\\" + share.substr(0, 261) + L"\\");
    const QuonPath deep(L"\\\\s\\t\\" + share + L"\\b", 0);
    EXPECT_EQ(Text(deep.GetDrive()), L"\\\\s\\t\\");
    EXPECT_EQ(Text(deep.GetDirectory()), share.substr(0, 257));
}

struct GetterRow
{
    const wchar_t* text;
    const wchar_t* drive;
    const wchar_t* directory;
    const wchar_t* folder;
    const wchar_t* fileName;
    const wchar_t* title;
    const wchar_t* extension;
};

TEST(QuonPathGetters, GiveThePartsOfSplit)
{
    const GetterRow rows[] = {
        {L"", L"", L"", L"", L"", L"", L""},
        {L"C:\\a\\b.txt", L"C:", L"\\a\\", L"C:\\a\\", L"b.txt", L"b", L".txt"},
        {L"C:\\a\\b\\", L"C:", L"\\a\\b\\", L"C:\\a\\b\\", L"", L"", L""},
        {L"\\a\\b\\c", L"", L"\\a\\b\\", L"\\a\\b\\", L"c", L"c", L""},
        {L"b.txt", L"", L"", L"", L"b.txt", L"b", L".txt"},
        {L"C:b.txt", L"C:", L"", L"C:", L"b.txt", L"b", L".txt"},
        {L"C:\\a.b\\c", L"C:", L"\\a.b\\", L"C:\\a.b\\", L"c", L"c", L""},
        {L"C:\\a\\.cfg", L"C:", L"\\a\\", L"C:\\a\\", L".cfg", L"", L".cfg"},
        {L"C:/a//b.txt", L"C:", L"/a//", L"C:\\a\\", L"b.txt", L"b", L".txt"},
        {L"a/b.txt", L"", L"a/", L"a\\", L"b.txt", L"b", L".txt"},
        {L"\\\\srv\\share\\a\\b.txt", L"\\\\srv\\share\\", L"a\\", L"\\\\srv\\share\\a\\", L"b.txt", L"b", L".txt"},
        {L"\\\\srv\\share\\b.txt", L"\\\\srv\\share\\", L"", L"\\\\srv\\share\\", L"b.txt", L"b", L".txt"},
        {L"\\\\srv\\share", L"\\\\srv\\", L"", L"\\\\srv\\", L"share", L"share", L""},
        {L"\\\\", L"\\\\\\", L"", L"\\\\\\", L"", L"", L""},
        // A quote stays in the parts and vanishes from what is joined.
        {L"C:\\\"a\"\\b\"c.t", L"C:", L"\\\"a\"\\", L"C:\\a\\", L"b\"c.t", L"b\"c", L".t"},
    };
    for (const GetterRow& row : rows)
    {
        SCOPED_TRACE(testing::Message() << "text " << row.text);
        const QuonPath path(row.text, 0);
        EXPECT_EQ(Text(path.GetDrive()), row.drive);
        EXPECT_EQ(Text(path.GetDirectory()), row.directory);
        EXPECT_EQ(Text(path.GetFolder()), row.folder);
        EXPECT_EQ(Text(path.GetFileName()), row.fileName);
        EXPECT_EQ(Text(path.GetFileTitle()), row.title);
        EXPECT_EQ(Text(path.GetExtension()), row.extension);
        EXPECT_EQ(Text(path), row.text);
    }
}

TEST(QuonPathGetters, ReturnTheBackslashAsSeparator)
{
    QuonPath forward;
    MakeForward(forward, L"C:/a/b.txt");
    EXPECT_EQ(SeparatorOf(forward.GetDrive()), L"\\");
    EXPECT_EQ(SeparatorOf(forward.GetDirectory()), L"\\");
    EXPECT_EQ(SeparatorOf(forward.GetFolder()), L"\\");
    EXPECT_EQ(SeparatorOf(forward.GetFileName()), L"\\");
    EXPECT_EQ(SeparatorOf(forward.GetFileTitle()), L"\\");
    EXPECT_EQ(SeparatorOf(forward.GetExtension()), L"\\");
    EXPECT_EQ(SeparatorOf(forward.GetFirstComponent()), L"\\");
    EXPECT_EQ(SeparatorOf(forward.GetLastComponent()), L"\\");
    EXPECT_EQ(SeparatorOf(forward.MakeRelativeTo(forward)), L"\\");
    EXPECT_EQ(Text(forward.GetDirectory()), L"/a/");
    EXPECT_EQ(Text(forward.GetFolder()), L"C:\\a\\");
}

using Setter = void (QuonPath::*)(const wchar_t*);

struct SetterRow
{
    const wchar_t* text;
    const wchar_t* value;
    const wchar_t* expected;
};

/// Sets a part of a path that writes "\" and of one that writes "/".
template <std::size_t count>
void ExpectSet(Setter setter, const SetterRow (&rows)[count], const wchar_t* separatorAfter)
{
    for (const SetterRow& row : rows)
    {
        SCOPED_TRACE(testing::Message() << "text " << row.text << " value "
                                        << (row.value == nullptr ? L"(null)" : row.value));
        QuonPath path(row.text, 0);
        (path.*setter)(row.value);
        std::wstring expected = row.expected;
        EXPECT_EQ(Text(path), expected);
        EXPECT_EQ(SeparatorOf(path), L"\\");

        (MakeForward(path, row.text).*setter)(row.value);
        if (*separatorAfter == L'/')
        {
            for (wchar_t& ch : expected)
            {
                ch = ch == L'\\' ? L'/' : ch;
            }
        }
        EXPECT_EQ(Text(path), expected);
        EXPECT_EQ(SeparatorOf(path), separatorAfter);
    }
}

TEST(QuonPathSetters, DriveIsRewrittenWithTheObjectsSeparator)
{
    const SetterRow rows[] = {
        {L"C:\\a\\b.txt", L"D:", L"D:\\a\\b.txt"},
        {L"C:/a//b.txt", L"D:", L"D:\\a\\b.txt"},
        {L"C:\\a\\b.txt", L"D:\\", L"D:\\a\\b.txt"},
        {L"C:\\a\\b.txt", L"", L"\\a\\b.txt"},
        {L"C:\\a\\b.txt", nullptr, L"\\a\\b.txt"},
        {L"C:\\a\\b.txt", L"\\\\srv\\share", L"\\\\srv\\share\\a\\b.txt"},
        {L"\\\\srv\\share\\a\\b.txt", L"C:", L"C:\\a\\b.txt"},
        {L"\\\\srv\\share\\a\\b.txt", L"", L"a\\b.txt"},
        {L"b.txt", L"C:", L"C:\\b.txt"},
        {L"C:b.txt", L"D:", L"D:\\b.txt"},
        {L"C:", L"D:", L"D:"},
        {L"C:\\a\\", L"D:", L"D:\\a\\"},
        {L"", L"", L""},
        {L"C:\\a\"b.txt", L"D:", L"D:\\a\\b.txt"},
    };
    ExpectSet(&QuonPath::SetDrive, rows, L"/");
}

TEST(QuonPathSetters, DirectoryIsReplaced)
{
    const SetterRow rows[] = {
        {L"C:\\a\\b.txt", L"\\c\\d\\", L"C:\\c\\d\\b.txt"},
        {L"C:\\a\\b.txt", L"c/d", L"C:\\c\\d\\b.txt"},
        {L"C:\\a\\b.txt", L"", L"C:\\b.txt"},
        {L"C:\\a\\b.txt", nullptr, L"C:\\b.txt"},
        {L"C:\\a\\b.txt", L"\\", L"C:\\b.txt"},
        {L"\\\\srv\\share\\a\\b.txt", L"x", L"\\\\srv\\share\\x\\b.txt"},
        {L"a\\b.txt", L"\\c", L"\\c\\b.txt"},
        {L"b.txt", L"c", L"c\\b.txt"},
        {L"b.txt", L"", L"b.txt"},
        {L"C:\\a\\", L"c", L"C:\\c"},
    };
    ExpectSet(&QuonPath::SetDirectory, rows, L"\\");
}

TEST(QuonPathSetters, TitleIsReplaced)
{
    const SetterRow rows[] = {
        {L"C:\\a\\b.txt", L"c", L"C:\\a\\c.txt"},
        {L"C:\\a\\b.txt", L"", L"C:\\a\\.txt"},
        {L"C:\\a\\b.txt", nullptr, L"C:\\a\\.txt"},
        {L"C:/a/b.txt", L"c.d", L"C:\\a\\c.d.txt"},
        {L"C:\\a\\", L"c", L"C:\\a\\c"},
        {L"\\\\srv\\share\\b.txt", L"c", L"\\\\srv\\share\\c.txt"},
        {L"b.txt", L"c", L"c.txt"},
        {L"", L"c", L"c"},
        {L"C:\\a\\b.txt", L"\\x\\c", L"C:\\a\\x\\c.txt"},
    };
    ExpectSet(&QuonPath::SetFileTitle, rows, L"\\");
}

TEST(QuonPathSetters, ExtensionGetsADotUnlessItHasOne)
{
    const SetterRow rows[] = {
        {L"C:\\a\\b.txt", L"", L"C:\\a\\b."},
        {L"C:\\a\\b.txt", nullptr, L"C:\\a\\b."},
        {L"C:\\a\\b.txt", L"dat", L"C:\\a\\b.dat"},
        {L"C:\\a\\b.txt", L".dat", L"C:\\a\\b.dat"},
        {L"C:\\a\\b.txt", L".", L"C:\\a\\b."},
        {L"C:\\a\\b.txt", L"..dat", L"C:\\a\\b..dat"},
        {L"C:\\a\\b", L"dat", L"C:\\a\\b.dat"},
        {L"C:/a.b/c", L"dat", L"C:\\a.b\\c.dat"},
        {L"C:\\a\\", L"dat", L"C:\\a\\.dat"},
        {L"C:\\a\\.cfg", L"dat", L"C:\\a\\.dat"},
        {L"\\\\srv\\share\\b.txt", L"dat", L"\\\\srv\\share\\b.dat"},
        {L"b.txt", L"dat", L"b.dat"},
        {L"", L"dat", L".dat"},
        // The extension is appended as it is.
        {L"a\\b.txt", L"x//y\"", L"a\\b.x//y\""},
    };
    ExpectSet(&QuonPath::SetExtension, rows, L"\\");
}

TEST(QuonPathSetters, ArgumentsMayLieInThePathItself)
{
    QuonPath path(L"C:\\folder\\name.ext", 0);
    path.SetExtension(static_cast<const wchar_t*>(path) + 10);
    EXPECT_EQ(Text(path), L"C:\\folder\\name.name.ext");
    path.SetFileTitle(static_cast<const wchar_t*>(path) + 15);
    EXPECT_EQ(Text(path), L"C:\\folder\\name.ext.ext");
    path.SetDirectory(static_cast<const wchar_t*>(path) + 10);
    EXPECT_EQ(Text(path), L"C:\\name.ext.ext\\name.ext.ext");
    path.SetDrive(static_cast<const wchar_t*>(path) + 20);
    EXPECT_EQ(Text(path), L".ext.ext\\name.ext.ext\\name.ext.ext");
}

}  // namespace
