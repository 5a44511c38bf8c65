// What the parts of the program Host.cpp share.
#pragma once

#include <afx.h>

/// Reports a condition that does not hold, and counts it.
void Check(bool holds, const char* condition);

#define CHECK(condition) Check(condition, #condition)

/// Handlers, procedure calls and messages of worker threads, with classes derived from the library's.
void CheckThreads();
/// Window messages, file events, the timer's log, the block pool.
void CheckServices();
/// A document with typed values, saved, loaded and walked. COM is initialised.
void CheckXml();
