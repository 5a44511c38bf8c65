#include <afx.h>

#include "reliability/ImportFailure.h"

#include "messaging/QuonCallback.h"
#include "messaging/QuonMessageQueue.h"
#include "messaging/QuonWndMsgServer.h"
#include "messaging/ServerThreadTestSupport.h"

namespace quon_test::import_failure
{

namespace
{

std::string StartServer(const Folder&)
{
    TestServer server;
    return std::to_string(server.Start());
}

std::string PostMessageToQueue(const Folder&)
{
    class Message final : public QuonMessage
    {
    };
    QuonMessageQueue queue(nullptr, nullptr);
    Message message;
    const QuonServerResult result = queue.Post(&message);
    QuonMessage* taken = nullptr;
    queue.GetNext(&taken);
    return std::to_string(result);
}

std::string PeekAtQueue(const Folder&)
{
    QuonMessageQueue queue(nullptr, nullptr);
    QuonMessage* taken = nullptr;
    return std::to_string(queue.PeekNext(&taken));
}

// A wait that fails is made again, and the handler is served then.
std::string ServeAHandler(const Folder&)
{
    const Event event(false);
    const Event served;
    quon_test::Journal journal;
    quon_test::TestHandler handler(event.Handle(), journal, "handler", [&] { served.Set(); });
    TestServer server;
    server.Start();
    server.AddHandler(&handler);
    event.Set();
    const bool result = served.Wait();
    server.RemoveHandler(&handler);
    server.Settle();
    return result ? "served" : "lost";
}

std::string SignalEvent(bool pulse)
{
    const Event event;
    QuonHEVENTCallback callback(event.Handle(), pulse);
    return std::to_string(callback.Invoke());
}

}  // namespace

std::vector<Row> MessagingRows()
{
    const auto server = [] { return QuonWndMsgServer::GetWndMsgServer(); };
    return {
        {"CreateEventW", kZero, "2000003", &StartServer},
        {"CreateThread", kZero, "2000003", &StartServer},
        {"DuplicateHandle", kZero, "1000001", &PostMessageToQueue},
        {"QueueUserAPC", kZero, "1000001", &PostMessageToQueue},
        {"SleepEx", kZero, "2002001", &PeekAtQueue},
        {"WaitForMultipleObjectsEx", 0xFFFFFFFF, "served", &ServeAHandler},
        {"SetEvent", kZero, "0", [](const Folder&) { return SignalEvent(false); }},
        {"PulseEvent", kZero, "0", [](const Folder&) { return SignalEvent(true); }},
        {"PostMessageW", kZero, "0",
         [server](const Folder&) { return std::to_string(server()->PostToWindow(WM_NULL, 0, 0)); }},
        {"SendMessageW", kZero, "0",
         [server](const Folder&) { return std::to_string(server()->SendToWindow(WM_GETTEXTLENGTH, 0, 0)); }},
    };
}

}  // namespace quon_test::import_failure
