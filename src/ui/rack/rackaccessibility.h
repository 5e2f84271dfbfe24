#pragma once

/// Lets assistive programs see every RackView as what it stands for, whatever tiles there are: a list with
/// one item for each station. To be called once, before any view is made.
void installRackAccessibility();
