#pragma once

/// Makes the allocator give back what each station leaves behind. With its own, growing thresholds a program
/// that changes stations for a day keeps several times what it uses. To be called before anything else.
///
/// A program that calls this also gets blocks of 8 MiB and more from posix_memalign() in large pages.
void returnFreedMemory();
