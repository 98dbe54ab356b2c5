#pragma once
// How the program's allocator hands freed memory back to the system.

namespace tq {

// Lists of 100,000 patients are built and dropped whole each time a picker
// opens. By default the C library returns the freed memory to the system at
// once, and the next opening pays again to have every page of it handed in
// (measured here, more than reading the rows costs). The
// program keeps 32 MiB of headroom at the top of its heap instead; memory it
// never uses is never taken. Called once, first thing, by the program (and
// by the benchmark, which times the program's paths as the program runs them).
void keepHeapHeadroom();

}  // namespace tq
