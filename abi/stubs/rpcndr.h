/// @file
/// Makes interfaces carry their identifiers, as the platform's do, so that __uuidof finds them, and defines the words
/// that the platform defines.
#pragma once

#include_next <rpcndr.h>
#undef DECLSPEC_UUID
#define DECLSPEC_UUID(x) __declspec(uuid(x))
#undef MIDL_INTERFACE
#define MIDL_INTERFACE(x) struct DECLSPEC_UUID(x) DECLSPEC_NOVTABLE
#undef hyper
#define hyper __int64
#undef small
#define small char
