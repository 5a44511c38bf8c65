/// @file
/// The catch type of handlers that stop any other error.
#pragma once

/// Caught by constant reference where the library stops every error that it has no text for. Nothing in the library
/// throws it; callbacks and objects that callers hand in may.
class QuonEllipsis
{
};
