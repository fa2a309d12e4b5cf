#pragma once

#include <string>

// What the tool does when memory runs out: the command ends with FILE: error: out of memory.
namespace zelstory {

// Notes from now on that memory has run out. Streams keep std::bad_alloc to themselves and go on
// with what they have, and a truncated result must not pass for a whole one.
void WatchMemory();

// Throws std::bad_alloc if memory has run out since WatchMemory.
void RefuseIfMemoryRanOut();

// Names the file that is worked on from now on. Throws std::bad_alloc; the file is named then, too,
// but in ASCII only.
void WorkOn(const std::string& file);

// Prints the error on standard error, with the file that is worked on. Needs no memory.
void PrintOutOfMemory() noexcept;

}  // namespace zelstory
