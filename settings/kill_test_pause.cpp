#include "kill_test_pause.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>

namespace moremate {

void PauseForKillTest(const char* sMoment) {
    const char* sWanted = std::getenv("MOREMATE_PAUSE_AT");
    if (!sWanted || std::strcmp(sWanted, sMoment) != 0) return;
    std::fprintf(stderr, "Paused at %s\n", sMoment);
    std::fflush(stderr);
    std::this_thread::sleep_for(std::chrono::minutes(1));
}

}  // namespace moremate
