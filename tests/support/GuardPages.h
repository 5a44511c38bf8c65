// An allocator for the library's own blocks under which a step past a block's end, or into a block that was freed, ends
// the program at once.
#pragma once

namespace quon_test
{

/// @return how many blocks of the library lie before an unmapped page, or lay there until they were freed. 0 when the
/// environment variable QUON_GUARD_PAGES is not set: nothing is replaced then.
unsigned long long GuardedBlocks();

}  // namespace quon_test
