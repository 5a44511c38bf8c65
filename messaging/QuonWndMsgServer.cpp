#include "messaging/QuonWndMsgServerInternal.h"

#include "base/MemoryInternal.h"
#include "base/QuonEllipsis.h"

#include <algorithm>
#include <iterator>

QuonWndMsgServer::Callback::Callback() = default;
QuonWndMsgServer::Callback::Callback(const Callback&) = default;
QuonWndMsgServer::Callback& QuonWndMsgServer::Callback::operator=(const Callback&) = default;
QuonWndMsgServer::Callback::~Callback() = default;

QuonWndMsgServer::QuonWndMsgServer() = default;
QuonWndMsgServer::~QuonWndMsgServer() = default;

namespace QuonWndMsgServer_details
{
namespace
{

constexpr wchar_t kClassName[] = L"QuonWnd59A9E57ED6664f9e943F19730E161AEE";

// Set by the constructor before it creates the window: creating one calls the window procedure, which asks for the
// server while the function-local static that holds it is still under construction and must not be entered again.
QuonWndMsgServerImpl* theServer = nullptr;

// Beside the one server and not in it: other modules were built against its layout.
unsigned walks = 0;              // dispatches under way, one inside the other
bool hasRemovedEntries = false;  // for the outermost of them to erase

LRESULT CALLBACK HiddenWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (theServer != nullptr)
    {
        theServer->Dispatch(window, message, wParam, lParam);
    }
    // Callbacks observe messages, they do not answer them.
    return ::DefWindowProcW(window, message, wParam, lParam);
}

using RegistrationsOfMessages = std::unordered_map<UINT, Registrations>;

// Erases an entry, and its list with the last one.
void Erase(RegistrationsOfMessages& lists, RegistrationsOfMessages::iterator list, Registrations::iterator entry)
{
    if (walks != 0)
    {
        // A walk may be at this entry or in this list: the entry goes when the outermost walk ends.
        entry->callback = nullptr;
        hasRemovedEntries = true;
        return;
    }
    list->second.erase(entry);
    if (list->second.empty())
    {
        lists.erase(list);
    }
}

}  // namespace

QuonWndMsgServerImpl::QuonWndMsgServerImpl()
{
    theServer = this;
    CreateHiddenWindow();
}

QuonWndMsgServerImpl::~QuonWndMsgServerImpl()
{
    // The window's last messages still reach the callbacks; after that there is no server to ask for.
    DestroyHiddenWindow();
    theServer = nullptr;
}

bool QuonWndMsgServerImpl::CreateHiddenWindow()
{
    m_instance = ::GetModuleHandleW(nullptr);
    if (m_instance == nullptr)
    {
        return false;
    }
    if (m_classAtom == 0)
    {
        WNDCLASSW windowClass = {};
        windowClass.lpfnWndProc = &HiddenWindowProc;
        windowClass.hInstance = m_instance;
        windowClass.lpszClassName = kClassName;
        m_classAtom = ::RegisterClassW(&windowClass);
    }
    if (m_classAtom != 0)
    {
        m_window =
            ::CreateWindowExW(0, MAKEINTATOM(m_classAtom), L"", 0, 0, 0, 1, 1, nullptr, nullptr, m_instance, nullptr);
    }
    return m_window != nullptr;
}

void QuonWndMsgServerImpl::DestroyHiddenWindow()
{
    if (m_window != nullptr)
    {
        ::DestroyWindow(m_window);
    }
    if (m_classAtom != 0)
    {
        ::UnregisterClassW(MAKEINTATOM(m_classAtom), m_instance);
    }
    m_window = nullptr;
    m_classAtom = 0;
}

HRESULT QuonWndMsgServerImpl::AddCallback(const UINT* message, UINT* cookie, Callback* callback)
{
    if (callback == nullptr)
    {
        return E_POINTER;
    }
    const UINT newCookie = ++m_lastCookie;
    const bool isRegistered = RunsInMemory([this, message, callback, newCookie] {
        // The entry is made before the message's list is touched: a failure leaves no empty list.
        Registrations entry{{callback, newCookie}};
        Registrations& registrations = m_registrations[*message];
        registrations.splice(registrations.end(), entry);
    });
    if (!isRegistered)
    {
        return E_FAIL;
    }
    *cookie = newCookie;
    return S_OK;
}

HRESULT QuonWndMsgServerImpl::RemoveCallback(const UINT* value)
{
    if (*value == 0)
    {
        return E_INVALIDARG;
    }
    // One value is both the message number and the cookie. Callers depend on the asymmetry with AddCallback.
    const auto found = m_registrations.find(*value);
    if (found == m_registrations.end())
    {
        return E_FAIL;
    }
    Registrations& registrations = found->second;
    const auto entry = std::find_if(registrations.begin(), registrations.end(), [value](const Registration& candidate) {
        return candidate.cookie == *value && candidate.callback != nullptr;
    });
    if (entry == registrations.end())
    {
        return E_FAIL;
    }
    Erase(m_registrations, found, entry);
    return S_OK;
}

void QuonWndMsgServerImpl::EraseRemoved()
{
    hasRemovedEntries = false;
    for (auto list = m_registrations.begin(); list != m_registrations.end();)
    {
        list->second.remove_if([](const Registration& candidate) { return candidate.callback == nullptr; });
        list = list->second.empty() ? m_registrations.erase(list) : std::next(list);
    }
}

HWND QuonWndMsgServerImpl::GetWindow()
{
    return m_window;
}

BOOL QuonWndMsgServerImpl::PostToWindow(UINT message, WPARAM wParam, LPARAM lParam)
{
    return ::PostMessageW(m_window, message, wParam, lParam);
}

LRESULT QuonWndMsgServerImpl::SendToWindow(UINT message, WPARAM wParam, LPARAM lParam)
{
    return ::SendMessageW(m_window, message, wParam, lParam);
}

// Keeps all entries in their places while callbacks are called, also when one of them throws.
class QuonWndMsgServerImpl::Walk
{
public:
    explicit Walk(QuonWndMsgServerImpl& server) : m_server(server) { ++walks; }
    ~Walk()
    {
        if (--walks == 0 && hasRemovedEntries)
        {
            m_server.EraseRemoved();
        }
    }
    Walk(const Walk&) = delete;
    Walk& operator=(const Walk&) = delete;

private:
    QuonWndMsgServerImpl& m_server;
};

void QuonWndMsgServerImpl::Dispatch(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    const auto found = m_registrations.find(message);
    if (found == m_registrations.end())
    {
        return;
    }
    const Walk walk(*this);
    const WndMsgRecord record = {window, message, wParam, lParam, 0, 0};
    for (const Registration& registration : found->second)
    {
        if (registration.callback == nullptr)
        {
            continue;
        }
        try
        {
            registration.callback->OnMessage(&record);
        }
        catch (const QuonEllipsis&)
        {
            // One callback's failure is not the next one's.
        }
    }
}

}  // namespace QuonWndMsgServer_details

static_assert(sizeof(WndMsgRecord) == 48, "six 64-bit fields, shared with callers");

QuonWndMsgServer* QuonWndMsgServer::GetWndMsgServer()
{
    using namespace QuonWndMsgServer_details;
    if (theServer == nullptr)
    {
        static QuonWndMsgServerImpl server;
    }
    return theServer;
}
