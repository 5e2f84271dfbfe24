#pragma once

/// Makes the allocator give back what each station leaves behind. With the C library's own, growing
/// thresholds a program that changes stations for a day keeps several times the memory that it uses. Call
/// before anything else.
///
/// A program that calls this also gets blocks of 8 MiB and more from posix_memalign() in large pages.
void returnFreedMemory();
