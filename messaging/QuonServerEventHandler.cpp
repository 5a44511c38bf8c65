#include "messaging/QuonServerEventHandler.h"

QuonServerEventHandler::QuonServerEventHandler(std::uintptr_t owner) : m_owner(owner) {}
QuonServerEventHandler::QuonServerEventHandler(const QuonServerEventHandler&) = default;
QuonServerEventHandler& QuonServerEventHandler::operator=(const QuonServerEventHandler&) = default;
QuonServerEventHandler::~QuonServerEventHandler() = default;

void QuonServerEventHandler::SetOwner(std::uintptr_t owner)
{
    m_owner = owner;
}

void QuonServerEventHandler::OnClose() {}

QuonSocket::QuonSocket(std::uintptr_t owner) : QuonServerEventHandler(owner) {}
QuonSocket::QuonSocket(const QuonSocket&) = default;
QuonSocket& QuonSocket::operator=(const QuonSocket&) = default;
QuonSocket::~QuonSocket() = default;
