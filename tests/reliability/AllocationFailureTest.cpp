// Each allocation of an operation fails in turn, until the operation gets through without a failure. Whatever it says
// to that is what its header states, and nothing of it stays on the heap.
#include <afx.h>
#include <afxcoll.h>

#include <gtest/gtest.h>

#include <list>
#include <memory>
#include <string>
#include <vector>

#include "messaging/QuonMessageQueue.h"
#include "messaging/QuonWndMsgServer.h"
#include "paths/FileOperations.h"
#include "points/QuonPointMarker.h"
#include "points/QuonSortedPointString.h"
#include "points/QuonUnsortedPointString.h"
#include "reliability/Survival.h"
#include "support/QuonPoolAllocator.h"
#include "support/QuonTimer.h"
#include "support/StringHelpers.h"
#include "helpers/TemporaryFolder.h"
#include "support/TraceLog.h"
#include "traversal/QuonFileTrees.h"
#include "xml/NodeTestSupport.h"
#include "xml/QuonXml.h"
#include "xml/XmlDocument.h"
#include "xml/XmlValues.h"

namespace
{

using namespace quon_test;

// A check of the check.
TEST(AllocationFailure, ALeakIsNoticed)
{
    std::vector<CString*> leaked;
    leaked.reserve(10);
    const Attempt attempt = FailAt(1000, [&] { leaked.push_back(new CString(L"text")); });
    EXPECT_TRUE(attempt.leaked);
    EXPECT_FALSE(attempt.failed);
    for (const CString* const text : leaked)
    {
        delete text;
    }
}

TEST(AllocationFailure, AHandleThatStaysOpenIsNoticed)
{
    const std::size_t before = HandlesOpen();
    const HANDLE leaked = ::CreateEventW(nullptr, FALSE, FALSE, nullptr);
    EXPECT_EQ(HandlesOpen(), before + 1);
    ::CloseHandle(leaked);
    EXPECT_EQ(HandlesOpen(), before);
}

TEST(AllocationFailure, Paths)
{
    const int places = ExpectSurvives(
        [] {
            QuonPath path(L"C:/a//b/c.txt", QuonPathForwardSlash | QuonPathUpperCase);
            path.Append(L"d\\e.txt");
            path.Normalize();
            QuonPath drive;
            QuonPath directory;
            QuonPath name;
            QuonPath extension;
            path.Split(drive, directory, name, extension);
            std::list<QuonPath> components;
            path.GetComponents(components);
            path.SetExtension(L"doc");
            path.RemoveLastComponent();
            path.RemoveFirstComponent();
            const QuonPath relative = QuonPath(L"C:\\a\\b.txt", 0).MakeRelativeTo(QuonPath(L"C:\\c\\", 0));
            QuonPath windows(QuonFolderWindows, 0);
            windows = relative + L"x";
        },
        kPlain);
    EXPECT_GT(places, 10);
}

TEST(AllocationFailure, WellKnownFolders)
{
    const int places = ExpectSurvives(
        [] {
            for (QuonFolderId id = QuonFolderModuleFile; id <= QuonFolderTempFileName; ++id)
            {
                QuonPath folder(id, QuonPathUpperCase);
                folder.SetToFolder(id);
            }
            wchar_t desktop[QuonShellFolderBufferSize] = {};
            ReadShellFolder(L"Desktop", desktop);
        },
        kPlain);
    // Each name has its text.
    EXPECT_GE(places, 9);
}

TEST(AllocationFailure, TreesOfFolders)
{
    const TemporaryFolder folder;
    folder.WriteFile(L"source\\a\\b\\file", "x");
    folder.WriteFile(L"source\\a\\file", "x");
    const std::wstring source = folder / L"source";
    const std::wstring target = folder / L"target\\deep";
    const int places = ExpectSurvives(
        [&] {
            const unsigned int result = MoveFolderTree(source.c_str(), target.c_str(), FALSE);
            if (result == 0)
            {
                CopyFolderTree(target.c_str(), source.c_str(), FALSE);
            }
            RemoveFolderTree(target.c_str());
        },
        kPlain);
    EXPECT_GT(places, 10);
}

template <typename Walk>
void ExpectWalkSurvives()
{
    const TemporaryFolder folder;
    folder.WriteFile(L"a\\b\\file", "x");
    folder.WriteFile(L"a\\c\\file", "x");
    folder.WriteFile(L"file", "x");
    const std::wstring root = folder.Path();
    const int places = ExpectSurvives(
        [&] {
            Walk walk;
            for (walk.FindFirst(root.c_str(), L"*", kQuonMatchEverything); walk.IsFound(); walk.FindNext())
            {
                walk.GetFoundPath();
                walk.GetFoundName();
                walk.GetFolder();
            }
        },
        kPlain);
    EXPECT_GT(places, 3);
}

TEST(AllocationFailure, BasicMatcher)
{
    ExpectWalkSurvives<QuonBasicFileMatcher>();
}
TEST(AllocationFailure, BreadthFirstFolders)
{
    ExpectWalkSurvives<QuonBFSDirectoryTree>();
}
TEST(AllocationFailure, DepthFirstFolders)
{
    ExpectWalkSurvives<QuonDFSDirectoryTree>();
}
TEST(AllocationFailure, BreadthFirstFiles)
{
    ExpectWalkSurvives<QuonBFSFileTree>();
}
TEST(AllocationFailure, DepthFirstFiles)
{
    ExpectWalkSurvives<QuonDFSFileTree>();
}

TEST(AllocationFailure, StringHelpers)
{
    const int places = ExpectSurvives(
        [] {
            CapitalizeWords(ToUpperCopy(ToLowerCopy(L"some text 12 with words")));
            FormatDouble(1e100, 20);
            double number = 0;
            ParseDouble(L"12345.6789", &number);
            CStringArray elements;
            SplitCommaList(L"a, b,,c ,d", elements);
            CString caption(L"  Name ");
            MakeCaption(caption, true);
            PrefixEachOccurrence(L"\n", L"\r", L"a\nb\nc");
            CString list(L"a;b;c;d");
            PutListItem(L"e", L";", 1, list);
            TakeCommaToken(list);
            GetSystemErrorText(ERROR_FILE_NOT_FOUND);
            ClsidToString(IID_IUnknown);
            DebugLog(std::wstring(5000, L'f').c_str(), 12, L"%d", 1);
        },
        kPlain);
    EXPECT_GT(places, 10);
}

TEST(AllocationFailure, TimerWithALog)
{
    const TemporaryFolder folder;
    const std::wstring path = folder / L"logs\\run.log";
    const int places = ExpectSurvives(
        [&] {
            QuonTimer timer(path.c_str(), TRUE, FALSE);
            timer.StartTimer();
            timer.WriteReport(L"step", TRUE);
            timer.WriteElapsed(TRUE);
        },
        kPlain);
    EXPECT_GT(places, 10);
}

TEST(AllocationFailure, PoolAllocator)
{
    const int places = ExpectSurvives(
        [] {
            QuonPoolAllocator<double> numbers;
            std::vector<double*> taken(20000, nullptr);
            const auto giveBack = [&] {
                for (double* const number : taken)
                {
                    if (number != nullptr)
                    {
                        numbers.Destroy(number);
                    }
                }
            };
            try
            {
                for (double*& number : taken)
                {
                    number = numbers.Construct(1.5);
                }
            }
            catch (...)
            {
                giveBack();
                throw;
            }
            giveBack();
        },
        kPlain);
    // Each region has its entry in the pool's table.
    EXPECT_GT(places, 3);
}

TEST(AllocationFailure, PointStrings)
{
    const int places = ExpectSurvives(
        [] {
            QuonPointString string(L"1-5, 9, 20-12, <7, 3000");
            string.SetLabel(L"label");
            const QuonPointString copy(string);
            string.RemoveDuplicates(TRUE);
            string.RemovePoints(L"3,15", FALSE);
            string.GetPointCount();
            string.IsValid();
        },
        kPlain);
    EXPECT_GT(places, 5);
}

TEST(AllocationFailure, PointSetsThatGrow)
{
    const int places = ExpectSurvives(
        [] {
            QuonSortedPointString sorted;
            QuonUnsortedPointString unsorted;
            for (unsigned long point = 1; point < 200000; point += 777)
            {
                sorted.AddPoint(point);
                unsorted.AddPoint(point);
            }
            sorted.UpdateText();
            unsorted.UpdateText();
            QuonPointMarker marker;
            marker.MarkPoint(100000);
            marker.Resize(2000000);
        },
        kPlain);
    EXPECT_GT(places, 5);
}

class Message final : public QuonMessage
{
};

TEST(AllocationFailure, MessageQueue)
{
    const int places = ExpectSurvives(
        [] {
            QuonMessageQueue queue(nullptr, nullptr);
            for (int i = 0; i < 12; ++i)
            {
                Message message;
                const QuonServerResult posted = queue.Post(&message);
                if (posted != kQuonServerOk && posted != kQuonServerOutOfMemory)
                {
                    throw posted;
                }
                QuonMessage* taken = nullptr;
                queue.GetNext(&taken);
            }
        },
        kReturned | kFrameworkMemory, 0, 1);  // the queue never closes its handle of the consumer
    EXPECT_GT(places, 1);
}

class Listener final : public QuonWndMsgServer::Callback
{
public:
    void OnMessage(const WndMsgRecord*) override {}
};

TEST(AllocationFailure, WindowMessageServer)
{
    static Listener first;
    UINT next = 0;
    const UINT any = WM_APP;
    ASSERT_EQ(QuonWndMsgServer::GetWndMsgServer()->AddCallback(&any, &next, &first), S_OK);
    const int places = ExpectSurvives(
        [&next] {
            QuonWndMsgServer* const server = QuonWndMsgServer::GetWndMsgServer();
            Listener listener;
            UINT cookie = 0;
            // The number that comes next is asked for, so that the registration can be taken back.
            const UINT message = ++next;
            const HRESULT result = server->AddCallback(&message, &cookie, &listener);
            if (result == S_OK && (cookie != message || server->RemoveCallback(&cookie) != S_OK))
            {
                throw result;
            }
            if (result != S_OK && result != E_FAIL)
            {
                throw result;
            }
        },
        kReturned);
    EXPECT_GT(places, 1);
}

class AllocationFailureXml : public quon_test::XmlTest
{
};

constexpr char kDocument[] = "<r><a id='1' x='5'>one</a><a id='2'>two<b id='3'/></a></r>";

TEST_F(AllocationFailureXml, LoadingWalkingAndSaving)
{
    const int places = ExpectSurvives(
        [] {
            QuonXml xml(L"none.xml", false, false, false);
            xml.LoadFromMemory(xml.GetDocument(), reinterpret_cast<const unsigned char*>(kDocument),
                               sizeof kDocument - 1);
            xml.WalkTree([](CString, MSXML2::IXMLDOMNodePtr&, __int64) { return true; }, 0);
            unsigned char* buffer = nullptr;
            unsigned long size = 0;
            xml.SaveToMemory(xml.GetDocument(), buffer, size);
            delete[] buffer;
        },
        kXml);
    EXPECT_GT(places, 10);
}

TEST_F(AllocationFailureXml, FindingAndReadingNodes)
{
    const MSXML2::IXMLDOMDocumentPtr document = quon_test::Parse(CString(kDocument));
    const int places = ExpectSurvives(
        [&] {
            const MSXML2::IXMLDOMNodeListPtr nodes = GetDocumentChildNodes(document);
            const quon_test::NodeArrayHolder found(FindNodesByName(nodes, L"a", true));
            const std::unique_ptr<CStringArray> texts(GetTextsOfNodes(found.get()));
            const std::unique_ptr<CStringArray> ids(GetAttributeValuesOfNodes(found.get(), L"id"));
            const std::unique_ptr<CStringArray> values(GetValuesOfAttribute(document, L"r", L"a", L"id"));
            CStringArray names;
            CStringArray all;
            GetAllAttributes(MSXML2::IXMLDOMNodePtr((*found)[0]), names, all);
            GetXmlString(MSXML2::IXMLDOMNodePtr((*found)[0]), L"@id");
            GetXmlLong(MSXML2::IXMLDOMNodePtr((*found)[0]), L"@x");
        },
        kXml);
    EXPECT_GT(places, 10);
}

TEST_F(AllocationFailureXml, BuildingADocument)
{
    const int places = ExpectSurvives(
        [] {
            const MSXML2::IXMLDOMDocumentPtr document = quon_test::EmptyDocument();
            CreateLandXmlDocument(document);
            const MSXML2::IXMLDOMNodePtr node = AppendNewElement(document, GetLandXmlRoot(document), L"e");
            SetAttributeOnNode(document, node, L"n", L"v");
            SetXmlDouble(node, L"d", 2.5);
        },
        kXml);
    EXPECT_GT(places, 10);
}

}  // namespace
