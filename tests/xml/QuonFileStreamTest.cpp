#include "xml/QuonFileStream.h"

#include <gtest/gtest.h>

#include <afx.h>

#include <string>
#include <type_traits>

#include "helpers/HugeText.h"
#include "helpers/ImportPatch.h"
#include "helpers/TemporaryFolder.h"

namespace
{

using quon_test::ImportPatch;
using quon_test::TemporaryFolder;

// Holds one reference, as whoever makes a stream does.
class Stream
{
public:
    Stream() : m_stream(new QuonFileStream) {}
    ~Stream()
    {
        if (m_stream != nullptr)
        {
            m_stream->Release();
        }
    }
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;
    QuonFileStream* operator->() const { return m_stream; }
    QuonFileStream* Get() const { return m_stream; }
    QuonFileStream* Detach() { return std::exchange(m_stream, nullptr); }

private:
    QuonFileStream* m_stream;
};

TEST(QuonFileStream, StartsWithoutAFileInReadMode)
{
    const Stream stream;
    EXPECT_EQ(stream->m_hFile, nullptr);
    EXPECT_TRUE(stream->m_bRead);
    EXPECT_EQ(stream->m_cRef, 1);
}

TEST(QuonFileStream, FieldsFollowTheVirtualTableInOrder)
{
    const Stream stream;
    const auto offset = [&](const void* field) {
        return static_cast<const char*>(field) - reinterpret_cast<const char*>(stream.Get());
    };
    EXPECT_EQ(offset(&stream->m_hFile), 8);
    EXPECT_EQ(offset(&stream->m_bRead), 16);
    EXPECT_EQ(offset(&stream->m_cRef), 20);
    EXPECT_EQ(sizeof(QuonFileStream), 24u);
    static_assert(std::is_same_v<decltype(QuonFileStream::m_cRef), LONG>);
}

TEST(QuonFileStream, QueryInterfaceGivesTheStreamWithAReference)
{
    for (const IID& iid : {IID_IStream, IID_IUnknown})
    {
        const Stream stream;
        void* object = nullptr;
        EXPECT_EQ(stream->QueryInterface(iid, &object), S_OK);
        EXPECT_EQ(object, static_cast<IStream*>(stream.Get()));
        EXPECT_EQ(stream->m_cRef, 2);
        EXPECT_EQ(stream->Release(), 1u);
    }
}

TEST(QuonFileStream, QueryInterfaceForAForeignInterfaceReferencesWhatTheCallerHolds)
{
    for (const IID& iid : {IID_ISequentialStream, IID_IPersist, GUID{}})
    {
        const Stream stream;
        const Stream held;
        void* object = static_cast<IStream*>(held.Get());
        EXPECT_EQ(stream->QueryInterface(iid, &object), S_OK);
        EXPECT_EQ(object, static_cast<IStream*>(held.Get()));
        EXPECT_EQ(stream->m_cRef, 1);
        EXPECT_EQ(held->m_cRef, 2);
        EXPECT_EQ(held->Release(), 1u);

        object = nullptr;
        EXPECT_EQ(stream->QueryInterface(iid, &object), S_OK);
        EXPECT_EQ(object, nullptr);
        EXPECT_EQ(stream->m_cRef, 1);
    }
}

TEST(QuonFileStream, CountsReferences)
{
    Stream stream;
    EXPECT_EQ(stream->AddRef(), 2u);
    EXPECT_EQ(stream->AddRef(), 3u);
    EXPECT_EQ(stream->Release(), 2u);
    EXPECT_EQ(stream->Release(), 1u);
    EXPECT_EQ(stream.Detach()->Release(), 0u);
}

TEST(QuonFileStream, WritesAFileThatOthersMayRead)
{
    const TemporaryFolder folder;
    const std::wstring path = folder.WriteFile(L"out.xml", "old and longer than the new");
    Stream stream;
    ASSERT_TRUE(stream->OpenForWrite(path.c_str()));
    EXPECT_FALSE(stream->m_bRead);
    EXPECT_EQ(folder.ReadFile(L"out.xml"), "") << "created anew";

    ULONG written = 99;
    EXPECT_EQ(stream->Write("abc", 3, &written), S_OK);
    EXPECT_EQ(written, 3u);
    EXPECT_EQ(stream->Write("", 0, &written), S_OK);
    EXPECT_EQ(written, 0u);
    EXPECT_EQ(folder.ReadFile(L"out.xml"), "abc");

    char buffer[4] = {};
    ULONG read = 77;
    EXPECT_EQ(stream->Read(buffer, 3, &read), E_FAIL) << "opened for writing";
    EXPECT_EQ(read, 77u);

    EXPECT_FALSE(::DeleteFileW(path.c_str())) << "open, and not shared for deletion";
    EXPECT_EQ(stream.Detach()->Release(), 0u);
    EXPECT_TRUE(::DeleteFileW(path.c_str())) << "the last reference closes the file";
}

TEST(QuonFileStream, CreatesTheFileWithTheseArguments)
{
    struct Call
    {
        std::string name;
        DWORD access = 0, share = 0, disposition = 0, attributes = 0;
        bool bare = false;
    };
    static Call call;
    call = {};
    const ImportPatch<decltype(&::CreateFileA)> patch(
        L"QuonWin32Utils.dll", "CreateFileA",
        [](LPCSTR name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD disposition, DWORD attributes,
           HANDLE model) -> HANDLE {
            call = {name, access, share, disposition, attributes, security == nullptr && model == nullptr};
            return INVALID_HANDLE_VALUE;
        });
    const Stream stream;
    EXPECT_FALSE(stream->OpenForWrite(L"C:\\some\\file.xml"));
    EXPECT_FALSE(stream->OpenForWrite(nullptr));
    EXPECT_EQ(call.name, "C:\\some\\file.xml");
    EXPECT_EQ(call.access, static_cast<DWORD>(GENERIC_WRITE));
    EXPECT_EQ(call.share, static_cast<DWORD>(FILE_SHARE_READ));
    EXPECT_EQ(call.disposition, static_cast<DWORD>(CREATE_ALWAYS));
    EXPECT_EQ(call.attributes, static_cast<DWORD>(FILE_ATTRIBUTE_NORMAL));
    EXPECT_TRUE(call.bare);
    EXPECT_EQ(stream->m_hFile, INVALID_HANDLE_VALUE) << "a failed open stores what it got";
}

TEST(QuonFileStream, RefusesNamesThatDoNotFit)
{
    static int opened;
    opened = 0;
    const ImportPatch<decltype(&::CreateFileA)> patch(
        L"QuonWin32Utils.dll", "CreateFileA",
        [](LPCSTR, DWORD, DWORD, LPSECURITY_ATTRIBUTES, DWORD, DWORD, HANDLE) -> HANDLE {
            ++opened;
            return INVALID_HANDLE_VALUE;
        });
    struct Row
    {
        size_t length;
        int opens;
    };
    for (const Row row : {Row{0, 0}, Row{1, 1}, Row{99, 1}, Row{100, 0}, Row{120, 0}, Row{5000, 0}})
    {
        SCOPED_TRACE(row.length);
        opened = 0;
        const Stream stream;
        EXPECT_FALSE(stream->OpenForWrite(std::wstring(row.length, L'x').c_str()));
        EXPECT_EQ(opened, row.opens);
        EXPECT_FALSE(stream->m_bRead) << "in write mode all the same";
        EXPECT_EQ(stream->m_hFile, row.opens != 0 ? INVALID_HANDLE_VALUE : nullptr);
    }
    // Cut to 32 bits, the length of this name would be 5.
    const quon_test::HugeText huge((std::size_t{1} << 32) + 5);
    opened = 0;
    EXPECT_FALSE(Stream()->OpenForWrite(huge.Get()));
    EXPECT_EQ(opened, 0);
}

TEST(QuonFileStream, CreatesNothingForANameOf120Characters)
{
    const TemporaryFolder folder;
    std::wstring path = folder / L"";
    ASSERT_LT(path.size(), 110u);
    path += std::wstring(120 - path.size(), L'n');
    const Stream stream;
    EXPECT_FALSE(stream->OpenForWrite(path.c_str()));
    EXPECT_EQ(::GetFileAttributesW(path.c_str()), INVALID_FILE_ATTRIBUTES);
}

TEST(QuonFileStream, ReadsAndWritesFailWithoutAnOpen)
{
    const Stream stream;
    char buffer[4] = {};
    ULONG read = 77;
    EXPECT_EQ(stream->Read(buffer, 4, &read), E_FAIL) << "there is no way to open for reading";
    EXPECT_EQ(read, 0u);
    ULONG written = 77;
    EXPECT_EQ(stream->Write("abc", 3, &written), E_FAIL);
    EXPECT_EQ(written, 77u);
}

TEST(QuonFileStream, ReadsFromAHandleInReadMode)
{
    const TemporaryFolder folder;
    const std::wstring path = folder.WriteFile(L"in.xml", "12345");
    const Stream stream;
    stream->m_hFile = ::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(stream->m_hFile, INVALID_HANDLE_VALUE);
    char buffer[8] = {};
    ULONG read = 0;
    EXPECT_EQ(stream->Read(buffer, 3, &read), S_OK);
    EXPECT_EQ(read, 3u);
    EXPECT_EQ(stream->Read(buffer, 8, nullptr), S_OK) << "the count need not be asked for";
    EXPECT_EQ(std::string(buffer), "453") << "two bytes over the first three";
    EXPECT_EQ(stream->Read(buffer, 8, &read), S_FALSE);
    EXPECT_EQ(read, 0u);
}

TEST(QuonFileStream, WriteFailsWhenTheFileDoes)
{
    const TemporaryFolder folder;
    const Stream stream;
    ASSERT_TRUE(stream->OpenForWrite((folder / L"out").c_str()));
    const ImportPatch<decltype(&::WriteFile)> patch(
        L"QuonWin32Utils.dll", "WriteFile",
        [](HANDLE, LPCVOID, DWORD, LPDWORD, LPOVERLAPPED) -> BOOL { return FALSE; });
    ULONG written = 0;
    EXPECT_EQ(stream->Write("abc", 3, &written), E_FAIL);
}

TEST(QuonFileStream, EverythingElseFails)
{
    const Stream stream;
    ULARGE_INTEGER position = {};
    STATSTG statistics = {};
    IStream* clone = nullptr;
    EXPECT_EQ(stream->Seek({}, STREAM_SEEK_SET, &position), E_FAIL);
    EXPECT_EQ(stream->SetSize({}), E_FAIL);
    EXPECT_EQ(stream->CopyTo(nullptr, {}, nullptr, nullptr), E_FAIL);
    EXPECT_EQ(stream->Commit(0), E_FAIL);
    EXPECT_EQ(stream->Revert(), E_FAIL);
    EXPECT_EQ(stream->LockRegion({}, {}, 0), E_FAIL);
    EXPECT_EQ(stream->UnlockRegion({}, {}, 0), E_FAIL);
    EXPECT_EQ(stream->Stat(&statistics, 0), E_FAIL);
    EXPECT_EQ(stream->Clone(&clone), E_FAIL);
    EXPECT_EQ(clone, nullptr);
}

// Four threads count the same stream at the same time: an update that is lost shows in the end.
struct Counting
{
    QuonFileStream* stream;
    HANDLE start;
};

DWORD WINAPI CountUpAndDown(void* argument)
{
    const auto* const counting = static_cast<const Counting*>(argument);
    ::WaitForSingleObject(counting->start, INFINITE);
    for (int i = 0; i < 3000000; ++i)
    {
        counting->stream->AddRef();
        counting->stream->Release();
    }
    return 0;
}

void CountFromFourThreads(QuonFileStream* stream)
{
    Counting counting = {stream, ::CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    HANDLE threads[4];
    for (HANDLE& thread : threads)
    {
        thread = ::CreateThread(nullptr, 0, &CountUpAndDown, &counting, 0, nullptr);
    }
    ::SetEvent(counting.start);
    EXPECT_EQ(::WaitForMultipleObjects(4, threads, TRUE, 60000), WAIT_OBJECT_0);
    for (HANDLE thread : threads)
    {
        ::CloseHandle(thread);
    }
    ::CloseHandle(counting.start);
}

TEST(QuonFileStream, CountsFromSeveralThreads)
{
    // Lost updates must not end the stream on the way.
    constexpr LONG kManyReferences = 1000000000;
    const Stream stream;
    stream->m_cRef = kManyReferences;
    for (int round = 0; round < 5; ++round)
    {
        CountFromFourThreads(stream.Get());
    }
    EXPECT_EQ(stream->m_cRef, kManyReferences);
    stream->m_cRef = 1;
}

}  // namespace
