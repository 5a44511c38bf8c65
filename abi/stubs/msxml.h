/// @file
/// Wine's header, with the platform's names where Wine's differ.
#pragma once

#define _newEnum get__newEnum
#include_next <msxml.h>
#undef _newEnum
