/// @file
/// The mark of everything that the library exports.
#pragma once

/// Exported while the library itself is built, imported by everybody else. Exports carry numbers, not names: clients
/// link the import library.
#if defined(QUON_BUILDING_LIBRARY)
#define QUON_API __declspec(dllexport)
#else
#define QUON_API __declspec(dllimport)
#endif
