#pragma once

/// @file afxver_.h
/// Calling conventions and export marks of the framework stand-in.

#include <windows.h>

#if !defined(_UNICODE) || !defined(UNICODE)
#error The framework stand-in is Unicode only: define UNICODE and _UNICODE.
#endif

/// Tells code that it is compiled against the framework, as the framework's own headers do.
#ifndef _AFX
#define _AFX
#endif
/// Version of the framework whose interface is offered: that of Visual Studio 2015 to 2022.
#ifndef _MFC_VER
#define _MFC_VER 0x0E00
#endif

#if defined(QUON_BUILDING_FRAMEWORK)
#define QUON_FRAMEWORK_API __declspec(dllexport)
#else
#define QUON_FRAMEWORK_API __declspec(dllimport)
#endif

#define AFX_CDECL __cdecl
#define AFXAPI __stdcall
#define AFX_MSG_CALL
#define AFX_IMPORT_DATA __declspec(dllimport)
#define AFX_EXPORT_DATA __declspec(dllexport)
