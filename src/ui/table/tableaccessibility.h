#pragma once

/// Lets assistive programs play a row of every RVTableView and sort it by a column, besides reading it. Names
/// are the model's, by Qt::AccessibleTextRole first. To be called once, before any view is made.
void installTableAccessibility();
