// A pause at a chosen moment of writing a file, so that a test can kill the process there and
// look at what is left on disk. Inert unless $MOREMATE_PAUSE_AT names the moment.
#pragma once

namespace moremate {

// When $MOREMATE_PAUSE_AT equals `sMoment`, prints "Paused at <moment>" on stderr and sleeps for a
// minute.
void PauseForKillTest(const char* sMoment);

}  // namespace moremate
