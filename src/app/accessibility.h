#pragma once

/// Tells Qt how the program's own widgets appear to assistive programs. Call once, before any of them is
/// made.
void installAccessibility();
