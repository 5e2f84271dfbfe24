#pragma once

/// Sends every line of the log to standard error as it stands, without a prefix, and never to a desktop's
/// journal.
void installLog();
