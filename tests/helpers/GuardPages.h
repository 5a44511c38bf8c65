// An allocator for the library's own blocks under which a step past a block's end, or into a block that was freed, ends
// the program at once.
#pragma once

namespace quon_test
{

/// The exit code of a program in which a freed block shows that it was written past its end. A step onto the unmapped
/// page is an access violation.
inline constexpr unsigned long kStepDetected = 97;

/// @return how many blocks of the library lie before an unmapped page, or lay there until they were freed. 0 when the
/// environment variable QUON_GUARD_PAGES is not set: nothing is replaced then.
unsigned long long GuardedBlocks();

}  // namespace quon_test
