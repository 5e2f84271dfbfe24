#pragma once

/// Sends every line of the log to standard error, and never to a desktop's journal. A line is the message as
/// it stands, without a prefix; where QT_MESSAGE_PATTERN is set, it is formatted as that says, for instance
/// with severity and category. To be called once, before anything is logged.
void installLog();
