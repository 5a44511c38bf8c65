#include "traversal/QuonFileMatch.h"

// Out of line, so that the library holds the one virtual table of the interface.
QuonFileMatch::QuonFileMatch() = default;
QuonFileMatch::QuonFileMatch(const QuonFileMatch&) = default;
QuonFileMatch& QuonFileMatch::operator=(const QuonFileMatch&) = default;
QuonFileMatch::~QuonFileMatch() = default;
