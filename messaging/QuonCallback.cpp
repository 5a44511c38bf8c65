#include "messaging/QuonCallback.h"

QuonCallback::QuonCallback() = default;
QuonCallback::QuonCallback(const QuonCallback&) = default;
QuonCallback& QuonCallback::operator=(const QuonCallback&) = default;
QuonCallback::~QuonCallback() = default;

QuonHEVENTCallback::QuonHEVENTCallback(HANDLE event, bool pulse) : m_pulse(pulse), m_event(event) {}
QuonHEVENTCallback::QuonHEVENTCallback(const QuonHEVENTCallback&) = default;
QuonHEVENTCallback& QuonHEVENTCallback::operator=(const QuonHEVENTCallback&) = default;
QuonHEVENTCallback::~QuonHEVENTCallback() = default;

BOOL QuonHEVENTCallback::Invoke()
{
    return m_pulse ? ::PulseEvent(m_event) : ::SetEvent(m_event);
}
