/// @file
/// The DOM as the library sees it: the namespace `MSXML2`, in the shape that `#import` of the platform's type library
/// gives it. Only one compiler has `#import`, so these headers are written by hand.
///
/// - Each interface is in the namespace, with its identifier and a smart pointer: `MSXML2::IXMLDOMNodePtr`.
/// - A *raw method* returns the `HRESULT`, in the slot of the interface: `get_nodeName`, `raw_selectSingleNode`.
/// - A *wrapper method* calls its raw method once, raises `_com_error` when that fails and returns the result:
///   `GetnodeName()`, `selectSingleNode(L"a")`. A success code other than `S_OK` is not a failure: the result is then
///   what the method left, most often empty. An empty smart pointer raises `E_POINTER` as `_com_error`.
/// - A *property* is a name for the wrappers that read and write it: `document->async = VARIANT_FALSE`. It needs
///   `__declspec(property)`, which MSVC has, and clang in its MSVC mode. GCC does not: there, and in sources for all
///   compilers, call `Putasync(VARIANT_FALSE)` and `Getasync()`.
///
/// The names are also in the global namespace, where the platform's own headers declare the interfaces without
/// wrappers: write `MSXML2::`, not `using namespace MSXML2`.
///
/// **A host that imports the type library itself** defines `QUON_HOST_IMPORTS_MSXML2` for all its sources, or after its
/// `#import` and before the library's headers. They then declare nothing in `MSXML2` and use what the import made: the
/// names, the types and so the decorated names of the library's functions are the same. The import keeps its namespace
/// and its smart pointers (no `no_namespace`, `rename_namespace` or `no_smart_pointers`).
/// @code
/// #import <msxml6.dll>
/// #define QUON_HOST_IMPORTS_MSXML2
/// #include "xml/XmlNodes.h"
/// @endcode
#pragma once

#include <afx.h>

#include "xml/ComSupport.h"

// A generated header defines no macro that it could be recognized by, so the host says that it included one.
#if !defined(QUON_HOST_IMPORTS_MSXML2)
#include "xml/Msxml2Documents.h"
#include "xml/Msxml2Members.h"
#include "xml/Msxml2Nodes.h"
#include "xml/Msxml2Types.h"
#endif
