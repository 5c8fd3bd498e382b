#pragma once

namespace validator {

/// Is thrown where what was under way is not to go on.
struct Interrupted {};

/// Takes notice of signals that end a program (SIGINT, SIGTERM, SIGHUP) from now on: the first one
/// has isInterrupted() answer true, a second one ends the program at once. One that is ignored
/// stays so.
void noticeInterrupts();

/// Any thread.
bool isInterrupted();

}  // namespace validator
