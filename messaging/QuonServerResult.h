/// @file
/// The result codes of server threads, selectors and message queues.
#pragma once

/// Unsigned 32-bit result code; one of the constants below.
using QuonServerResult = unsigned int;

/// Done.
constexpr QuonServerResult kQuonServerOk = 0;
/// The work block that carries a change to the other thread could not be allocated.
constexpr QuonServerResult kQuonServerOutOfMemory = 6;
/// The asynchronous procedure call could not be queued, or the handle is already registered or not registered. Also the
/// fixed result of QuonServerThread::Stop and QuonMessageQueue::Close.
constexpr QuonServerResult kQuonServerRefused = 1000001;
/// A null message was posted.
constexpr QuonServerResult kQuonServerNullMessage = 1000002;
/// The thread could not be created.
constexpr QuonServerResult kQuonServerNoThread = 2000003;
/// The message queue is empty.
constexpr QuonServerResult kQuonServerQueueEmpty = 2002001;
/// The message queue is empty and closed.
constexpr QuonServerResult kQuonServerQueueClosed = 2002002;
