#pragma once

/// Makes the genre picker readable for assistive programs: the grid as a list of what it shows, each tile as
/// an item of it that can be pressed. To be called once, before any of them is made.
void installGenreAccessibility();
