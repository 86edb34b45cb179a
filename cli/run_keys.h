// The keys of a running `moremate solve`: p pauses and resumes the run, s skips to the next move,
// q stops; they are read while stdin is a terminal. An interrupt (Ctrl-C, SIGINT) stops as q does.
// A thread of its own waits for them, without busy waiting, for as long as the object lives.
#pragma once

#include <signal.h>
#include <termios.h>

#include <functional>
#include <string>
#include <thread>

#include "engine/state/run_control.h"

namespace moremate::cli {

class CRunKeys {
  public:
    using FSay = std::function<void(const std::string&)>;
    // `say` prints the messages about the run.
    CRunKeys(CRunControl& control, FSay say);
    ~CRunKeys();
    CRunKeys(const CRunKeys&) = delete;
    CRunKeys& operator=(const CRunKeys&) = delete;

  private:
    void Watch();
    void Key(char key);
    void StopRun();

    CRunControl& m_control;
    FSay m_say;
    int m_pipe[2] = {-1, -1};  // the interrupt and the end of watching come through it
    bool m_bKeys = false;      // stdin is read for keys; the terminal's settings are restored at the end
    termios m_savedTerminal{};
    struct sigaction m_savedInterrupt {};
    std::thread m_thread;
};

}  // namespace moremate::cli
