#include "host/Streams.h"

#include "helpers/TemporaryFolder.h"
#include "host/Console.h"
#include "host/FileHandle.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace
{

using quonhost::CommandError;
using quonhost::FileHandle;
using quonhost::OutputStream;
using quonhost::OwnFile;
using quonhost::ReadWholeInput;
using quonhost::SystemErrorText;

FileHandle OpenFile(const std::wstring& path, DWORD access)
{
    return OwnFile(::CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS,
                                 FILE_ATTRIBUTE_NORMAL, nullptr));
}

std::wstring ErrorOf(const std::function<void()>& action)
{
    try
    {
        action();
    }
    catch (const CommandError& error)
    {
        return error.Text();
    }
    return L"no error";
}

class Streams : public ::testing::Test
{
protected:
    std::wstring Path(const wchar_t* name) const { return m_folder / name; }

private:
    quon_test::TemporaryFolder m_folder;
};

TEST(SystemErrorText, IsOneLineOfTheSystem)
{
    EXPECT_EQ(SystemErrorText(ERROR_ACCESS_DENIED).find(L"Access"), 0u);
    for (const DWORD error : {ERROR_ACCESS_DENIED, ERROR_FILE_NOT_FOUND, ERROR_DISK_FULL, ERROR_SHARING_VIOLATION})
    {
        const std::wstring text = SystemErrorText(error);
        EXPECT_FALSE(text.empty()) << error;
        EXPECT_EQ(text.find_first_of(L"\r\n"), std::wstring::npos) << error;
        EXPECT_NE(text.back(), L' ') << error;
    }
}

TEST(SystemErrorText, IsTheNumberWhenTheSystemHasNone)
{
    EXPECT_EQ(SystemErrorText(0xE0000123), L"error 3758096675");
}

TEST_F(Streams, CarryTextOfEverySize)
{
    for (const size_t size : {0u, 1u, 32767u, 32768u, 65535u, 65536u, 65537u, 1000000u})
    {
        std::string text;
        while (text.size() < size)
        {
            text += std::to_string(text.size()) + ' ';
        }
        const std::wstring path = Path(std::to_wstring(size).c_str());
        {
            const FileHandle file = OpenFile(path, GENERIC_WRITE);
            OutputStream stream(file.get(), L"the file");
            stream.Write(std::string_view(text).substr(0, size / 3));
            stream.Write(std::string_view(text).substr(size / 3));
            stream.Flush();
        }
        EXPECT_EQ(ReadWholeInput(path), text) << size;
    }
}

TEST_F(Streams, WriteNothingBeforeABlockIsFullOrFlushed)
{
    const std::wstring path = Path(L"a");
    const FileHandle file = OpenFile(path, GENERIC_WRITE);
    OutputStream stream(file.get(), L"the file");
    stream.Write("abc");
    EXPECT_EQ(ReadWholeInput(path), "");
    stream.Flush();
    EXPECT_EQ(ReadWholeInput(path), "abc");
    stream.Flush();
    EXPECT_EQ(ReadWholeInput(path), "abc");
}

TEST_F(Streams, ReportAWriteThatFailsAndDropItsText)
{
    const FileHandle file = OpenFile(Path(L"a"), GENERIC_READ);
    OutputStream stream(file.get(), L"the file");
    stream.Write("abc");
    const std::wstring expected = L"the file cannot be written: " + SystemErrorText(ERROR_ACCESS_DENIED);
    EXPECT_EQ(ErrorOf([&] { stream.Flush(); }), expected);
    EXPECT_EQ(ErrorOf([&] { stream.Flush(); }), L"no error");
    EXPECT_EQ(ErrorOf([&] { stream.Write(std::string(100000, 'x')); }), expected);
}

TEST_F(Streams, ReportAHandleThatIsNone)
{
    OutputStream stream(nullptr, L"the output");
    stream.Write("abc");
    EXPECT_EQ(ErrorOf([&] { stream.Flush(); }),
              L"the output cannot be written: " + SystemErrorText(ERROR_INVALID_HANDLE));
}

TEST_F(Streams, NameTheInputThatCannotBeRead)
{
    struct Row
    {
        std::wstring name;
        DWORD error;
    };
    for (const Row& row : {Row{Path(L"missing"), ERROR_FILE_NOT_FOUND}, Row{Path(L"no\\where"), ERROR_PATH_NOT_FOUND},
                           Row{Path(L""), ERROR_ACCESS_DENIED}, Row{L"", ERROR_PATH_NOT_FOUND}})
    {
        EXPECT_EQ(ErrorOf([&] { ReadWholeInput(row.name); }),
                  L"\"" + row.name + L"\" cannot be read: " + SystemErrorText(row.error));
    }
}

}  // namespace
