// How failures and warnings name a file and a place in it.
#pragma once

#include <afx.h>

#include "host/Console.h"

#include <string>

namespace quonhost
{

/// Returns a file's name as error texts show it: in quotes, "the standard input" for "-".
std::wstring ShownName(const std::wstring& name);

/// Returns the failure `NAME: WHAT`. `name` is already as error texts show it.
CommandError FileError(const std::wstring& name, const std::wstring& what);

/// Returns the failure `NAME line LINE: WHAT`.
CommandError LineError(const std::wstring& name, unsigned int line, const std::wstring& what);

}  // namespace quonhost
