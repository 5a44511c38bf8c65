#include "messaging/QuonWndMsgServerInternal.h"

#include "base/QuonEllipsis.h"

#include <algorithm>
#include <new>
#include <stdexcept>

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

LRESULT CALLBACK HiddenWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (theServer != nullptr)
    {
        theServer->Dispatch(window, message, wParam, lParam);
    }
    // Callbacks observe messages, they do not answer them.
    return ::DefWindowProcW(window, message, wParam, lParam);
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
    try
    {
        // The entry is made before the message's list is touched, so that a failure leaves no empty list behind.
        std::list<Registration> entry{{callback, newCookie}};
        std::list<Registration>& registrations = m_registrations[*message];
        registrations.splice(registrations.end(), entry);
    }
    catch (const std::bad_alloc&)
    {
        return E_FAIL;
    }
    catch (const std::length_error&)
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
    std::list<Registration>& registrations = found->second;
    const auto entry = std::find_if(registrations.begin(), registrations.end(),
                                    [value](const Registration& candidate) { return candidate.cookie == *value; });
    if (entry == registrations.end())
    {
        return E_FAIL;
    }
    registrations.erase(entry);
    if (registrations.empty())
    {
        m_registrations.erase(found);
    }
    return S_OK;
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

void QuonWndMsgServerImpl::Dispatch(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    const auto found = m_registrations.find(message);
    if (found == m_registrations.end())
    {
        return;
    }
    const WndMsgRecord record = {window, message, wParam, lParam, 0, 0};
    for (const Registration& registration : found->second)
    {
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
