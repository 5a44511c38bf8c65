// How window messages become calls on a sink: synthetic events, and no folder is watched.
#include "monitoring/FakeFolders.h"

#include <afx.h>

#include "helpers/OneFailure.h"
#include "helpers/ReusedBlock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

using namespace quon_test;
using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

namespace
{

using Calls = std::vector<std::string>;

// A subscription that exists for the sink alone: events for it are sent by hand.
class FileEventDelivery : public testing::Test
{
protected:
    FileEventDelivery() : id(watch.Subscribe(L"c:\\d\\f", 0)) {}

    FakeWatch watch;
    RecordingSink& sink = watch.sink;
    const QuonFileEventId id;
};

TEST_F(FileEventDelivery, CallsTheSinkForEachBitInOrder)
{
    const std::vector<std::pair<DWORD, std::string>> bits = {{0x1, "file name"},   {0x2, "folder name"},
                                                             {0x4, "attributes"},  {0x8, "size"},
                                                             {0x10, "last write"}, {0x20, "last access"}};
    for (DWORD changes = 0; changes < 0x40; ++changes)
    {
        SCOPED_TRACE(changes);
        Calls expected;
        for (const auto& [bit, call] : bits)
        {
            if ((changes & bit) != 0)
            {
                expected.push_back(call);
            }
        }
        sink.calls.clear();
        sink.ids.clear();
        SendEvent(kMsgChanged, changes, id);
        EXPECT_EQ(sink.calls, expected);
        EXPECT_THAT(sink.ids, Each(id));
    }
}

TEST_F(FileEventDelivery, IgnoresBitsThatMeanNothing)
{
    SendEvent(kMsgChanged, 0xFFFFFFC0, id);
    EXPECT_THAT(sink.calls, IsEmpty());
    SendEvent(kMsgChanged, 0xFFFFFFC8, id);
    EXPECT_THAT(sink.calls, ElementsAre("size"));
}

TEST_F(FileEventDelivery, TellsTheErrorOfAFailedWatch)
{
    SendEvent(kMsgWatchFailed, 0x80000005, id);
    EXPECT_THAT(sink.calls, ElementsAre("failed 2147483653"));
    EXPECT_THAT(sink.ids, ElementsAre(id));
}

TEST_F(FileEventDelivery, PassesTheReservedEventsOn)
{
    SendEvent(kMsgReserved2, 0, id);
    SendEvent(kMsgReserved1, 0x3F, id);
    EXPECT_THAT(sink.calls, ElementsAre("reserved 2", "reserved 1"));
    EXPECT_THAT(sink.ids, ElementsAre(id, id));
}

// 0x8804 says that a subscription was removed, which the server knows already.
TEST_F(FileEventDelivery, IgnoresTheOtherMessages)
{
    for (const UINT number : {0x8801u, 0x8803u, 0x8804u, 0x8807u, 0x8808u, 0x9000u, 0x11007u})
    {
        SCOPED_TRACE(number);
        SendEvent(number, 0x3F, id);
        EXPECT_THAT(sink.calls, IsEmpty());
    }
    // An acknowledgement that nobody waits for, as another process can send it, changes nothing.
    SendEvent(kMsgChanged, 0x8, id);
    EXPECT_THAT(sink.calls, ElementsAre("size"));
}

TEST_F(FileEventDelivery, IgnoresUnknownIdentifiersAndNullSinks)
{
    QuonFileEventId silent = 0;
    ASSERT_EQ(watch.server->Subscribe(L"c:\\d\\silent", 0, nullptr, &silent), S_OK);
    ASSERT_NE(silent, 0u);
    for (const QuonFileEventId other : {silent, QuonFileEventId{0}, id + 1})
    {
        for (const UINT number : {kMsgChanged, kMsgReserved1, kMsgReserved2, kMsgWatchFailed})
        {
            SendEvent(number, 0x3F, other);
        }
    }
    EXPECT_THAT(sink.calls, IsEmpty());
    watch.Unsubscribe(silent);
}

TEST_F(FileEventDelivery, KeepsSubscriptionsApart)
{
    RecordingSink otherSink;
    QuonFileEventId other = 0;
    ASSERT_EQ(watch.server->Subscribe(L"c:\\d\\f", 0, &otherSink, &other), S_OK);
    ASSERT_NE(other, id);
    SendEvent(kMsgChanged, 0x8, other);
    SendEvent(kMsgChanged, 0x10, id);
    EXPECT_THAT(otherSink.calls, ElementsAre("size"));
    EXPECT_THAT(otherSink.ids, ElementsAre(other));
    EXPECT_THAT(sink.calls, ElementsAre("last write"));
    watch.Unsubscribe(other);
}

TEST_F(FileEventDelivery, ForgetsTheSinkAtOnceEvenWithEventsOnTheirWay)
{
    auto* const window = QuonWndMsgServer::GetWndMsgServer();
    ASSERT_TRUE(window->PostToWindow(kMsgChanged, 0x3F, static_cast<LPARAM>(id)));
    EXPECT_EQ(watch.Unsubscribe(id), S_OK);
    EXPECT_TRUE(watch.Barrier());
    EXPECT_EQ(watch.journal.Count({kMsgChanged, 0x3F, static_cast<LPARAM>(id)}), 1u);
    EXPECT_THAT(sink.calls, IsEmpty());
}

TEST_F(FileEventDelivery, StopsAtTheCallThatUnsubscribes)
{
    sink.then = [this] {
        if (sink.calls.back() == "attributes")
        {
            watch.Unsubscribe(id);
        }
    };
    SendEvent(kMsgChanged, 0x3F, id);
    EXPECT_THAT(sink.calls, ElementsAre("file name", "folder name", "attributes"));
}

// Identifiers that are given out again. The record's memory comes back as soon as the watcher has freed it.
class FileEventReuse : public testing::Test
{
protected:
    static constexpr wchar_t kPath[] = L"c:\\d\\f";

    QuonFileEventId SubscribeNew()
    {
        QuonFileEventId newId = 0;
        EXPECT_EQ(watch.server->Subscribe(kPath, 0x3F, &newSink, &newId), S_OK);
        return newId;
    }

    WindowMessage Acknowledgement() const { return {kMsgRemove, 0, static_cast<LPARAM>(id)}; }

    FakeWatch watch;
    RecordingSink newSink;
    ReusedBlock block;
    const QuonFileEventId id = watch.Subscribe(kPath, 0x3F);
};

TEST_F(FileEventReuse, IdentifierIsNotGivenOutWhileAnEventOfItIsQueued)
{
    ASSERT_EQ(reinterpret_cast<QuonFileEventId>(block.Address()), id);
    auto* const window = QuonWndMsgServer::GetWndMsgServer();
    ASSERT_TRUE(window->PostToWindow(kMsgChanged, 0x3F, static_cast<LPARAM>(id)));
    ASSERT_EQ(watch.Unsubscribe(id), S_OK);
    ASSERT_TRUE(block.WaitUntilFree());
    const QuonFileEventId newId = SubscribeNew();
    // The allocator has given the address out again, and it was not used.
    EXPECT_EQ(block.Reuses(), 1);
    EXPECT_NE(newId, id);
    // Nor is it looked for a second time.
    const QuonFileEventId third = SubscribeNew();
    EXPECT_NE(third, id);
    EXPECT_NE(third, newId);

    EXPECT_TRUE(watch.Barrier());
    EXPECT_EQ(watch.journal.Count({kMsgChanged, 0x3F, static_cast<LPARAM>(id)}), 1u);
    EXPECT_EQ(watch.journal.Count(Acknowledgement()), 1u);
    EXPECT_THAT(watch.sink.calls, IsEmpty());
    EXPECT_THAT(newSink.calls, IsEmpty());
    SendEvent(kMsgChanged, 0x8, newId);
    EXPECT_THAT(newSink.ids, ElementsAre(newId));
    watch.server->Unsubscribe(newId);
    watch.server->Unsubscribe(third);
    EXPECT_TRUE(watch.Barrier());
}

TEST_F(FileEventReuse, IdentifierIsGivenOutAgainAfterItsLastEvent)
{
    ASSERT_EQ(watch.Unsubscribe(id), S_OK);
    ASSERT_TRUE(PumpUntil([this] { return watch.journal.Count(Acknowledgement()) == 1; }));
    EXPECT_EQ(SubscribeNew(), id);
    SendEvent(kMsgChanged, 0x8, id);
    EXPECT_THAT(newSink.calls, ElementsAre("size"));
    EXPECT_THAT(watch.sink.calls, IsEmpty());
    watch.Unsubscribe(id);
    EXPECT_TRUE(watch.Barrier());
}

TEST_F(FileEventReuse, IdentifierStaysReservedThoughItIsUnsubscribedAgainInVain)
{
    ASSERT_EQ(watch.Unsubscribe(id), S_OK);
    ASSERT_TRUE(block.WaitUntilFree());
    {
        const OneFailure posting("PostThreadMessageW", FALSE, ERROR_NOT_ENOUGH_QUOTA);
        EXPECT_EQ(watch.server->Unsubscribe(id), S_OK);
        EXPECT_TRUE(posting.WasCalled());
    }
    const QuonFileEventId newId = SubscribeNew();
    EXPECT_EQ(block.Reuses(), 1);
    EXPECT_NE(newId, id);
    watch.server->Unsubscribe(newId);
    EXPECT_TRUE(watch.Barrier());
}

TEST_F(FileEventReuse, RemovedRecordIsNotRead)
{
    const QuonFileEventId other = watch.Subscribe(kPath, 0x3F);
    ASSERT_EQ(watch.Unsubscribe(id), S_OK);
    ASSERT_TRUE(block.WaitUntilFree());
    EXPECT_EQ(watch.server->Unsubscribe(id), S_OK);
    // No new subscription, which would get the block, until the watcher has done it.
    EXPECT_EQ(watch.Unsubscribe(other), S_OK);
    EXPECT_TRUE(PumpUntil([&] { return watch.journal.Count({kMsgRemove, 0, static_cast<LPARAM>(other)}) == 1; }));
    EXPECT_EQ(block.Reuses(), 0);
    EXPECT_EQ(watch.journal.Count(Acknowledgement()), 1u);
}

TEST_F(FileEventReuse, RecordKeptForAReservedIdentifierGoesWithTheReservation)
{
    ASSERT_EQ(watch.Unsubscribe(id), S_OK);
    ASSERT_TRUE(block.WaitUntilFree());
    const QuonFileEventId newId = SubscribeNew();
    EXPECT_EQ(block.Reuses(), 1);
    ASSERT_TRUE(PumpUntil([this] { return watch.journal.Count(Acknowledgement()) == 1; }));
    EXPECT_TRUE(block.WaitUntilFree());
    EXPECT_EQ(SubscribeNew(), id);
    watch.Unsubscribe(id);
    watch.server->Unsubscribe(newId);
    EXPECT_TRUE(watch.Barrier());
}

// A sink that unsubscribes, lets its message loop run and subscribes again can get the same identifier, while the old
// subscription's event is still being delivered.
TEST_F(FileEventReuse, RestOfAnEventIsNotForANewSubscriptionOfTheSameIdentifier)
{
    QuonFileEventId newId = 0;
    watch.sink.then = [&] {
        watch.Unsubscribe(id);
        EXPECT_TRUE(PumpUntil([this] { return watch.journal.Count(Acknowledgement()) == 1; }));
        newId = SubscribeNew();
    };
    SendEvent(kMsgChanged, 0x3F, id);
    ASSERT_EQ(newId, id);
    EXPECT_THAT(watch.sink.calls, ElementsAre("file name"));
    EXPECT_THAT(newSink.calls, IsEmpty());
    SendEvent(kMsgChanged, 0x18, id);
    EXPECT_THAT(newSink.calls, ElementsAre("size", "last write"));
    watch.Unsubscribe(id);
    EXPECT_TRUE(watch.Barrier());
}

TEST_F(FileEventDelivery, LetsASinkSubscribeInItsCall)
{
    QuonFileEventId second = 0;
    sink.then = [&] {
        if (second == 0)
        {
            second = watch.Subscribe(L"c:\\d\\g", 0x8);
        }
    };
    SendEvent(kMsgChanged, 0x18, id);
    EXPECT_THAT(sink.calls, ElementsAre("size", "last write"));
    ASSERT_NE(second, 0u);
    SendEvent(kMsgChanged, 0x8, second);
    EXPECT_EQ(sink.ids.back(), second);
}

// Whatever a sink throws ends the event and nothing else; those that are registered behind the server still hear of it.
TEST_F(FileEventDelivery, SwallowsEveryExceptionOfASink)
{
    const std::function<void()> throwers[] = {[] { throw std::runtime_error("sink"); }, [] { throw 5; },
                                              [] { AfxThrowMemoryException(); }};
    for (const auto& thrower : throwers)
    {
        for (const UINT number : {kMsgChanged, kMsgReserved1, kMsgReserved2, kMsgWatchFailed})
        {
            sink.then = thrower;
            sink.calls.clear();
            watch.journal.messages.clear();
            SendEvent(number, 0x3F, id);
            EXPECT_EQ(sink.calls.size(), 1u);
            EXPECT_EQ(watch.journal.Count({number, 0x3F, static_cast<LPARAM>(id)}),
                      number == kMsgChanged || number == kMsgWatchFailed ? 1u : 0u);
        }
    }
    sink.then = nullptr;
    sink.calls.clear();
    SendEvent(kMsgChanged, 0x8, id);
    EXPECT_THAT(sink.calls, ElementsAre("size"));
}

// With MSVC a pointer to a member does not say the place; the check of the interface does.
#if !defined(_MSC_VER)
TEST(FileEventInterfaces, StandInTheirOrder)
{
    const std::vector<size_t> sinkSlots = {
        SlotOf(&QuonFileEventSink::OnFileNameChanged),   SlotOf(&QuonFileEventSink::OnFolderNameChanged),
        SlotOf(&QuonFileEventSink::OnAttributesChanged), SlotOf(&QuonFileEventSink::OnSizeChanged),
        SlotOf(&QuonFileEventSink::OnLastWriteChanged),  SlotOf(&QuonFileEventSink::OnLastAccessChanged),
        SlotOf(&QuonFileEventSink::OnWatchFailed),       SlotOf(&QuonFileEventSink::OnReservedEvent1),
        SlotOf(&QuonFileEventSink::OnReservedEvent2)};
    EXPECT_THAT(sinkSlots, ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8));
    EXPECT_EQ(SlotOf(&QuonFileEventServer::Subscribe), 0u);
    EXPECT_EQ(SlotOf(&QuonFileEventServer::Unsubscribe), 1u);
    // A destructor takes two places with this compiler.
    EXPECT_EQ(SlotOf(&QuonFileEventServer::Shutdown), 4u);
    EXPECT_EQ(SlotOf(&QuonWndMsgServer::Callback::OnMessage), 0u);
    EXPECT_EQ(sizeof(QuonFileEventSink), sizeof(void*));
    EXPECT_EQ(sizeof(QuonFileEventServer), sizeof(void*));
}
#endif

TEST(FileEventInterfaces, BelongToOneServer)
{
    QuonFileEventServer* const server = GetFileEventServer();
    EXPECT_EQ(GetFileEventServer(), server);
    // The server is its own callback, as its second base.
    const auto* const callback = dynamic_cast<QuonWndMsgServer::Callback*>(server);
    ASSERT_NE(callback, nullptr);
    EXPECT_EQ(reinterpret_cast<const char*>(callback) - reinterpret_cast<const char*>(server),
              static_cast<ptrdiff_t>(sizeof(void*)));
}

}  // namespace
