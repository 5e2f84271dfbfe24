#pragma once

/// Teaches the toolkit what the program's own widgets are to assistive programs. To be called once, before
/// any of them is made.
void installAccessibility();
