#include "run_keys.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>

#include "core/thread_start.h"
#include "engine/run/run_texts.h"

namespace moremate::cli {
namespace {

constexpr char kInterrupt = 'i';
constexpr char kEndWatching = 'x';

int g_nInterruptPipe = -1;

void OnInterrupt(int) {
    const int savedErrno = errno;
    const ssize_t written = write(g_nInterruptPipe, &kInterrupt, 1);
    (void)written;
    errno = savedErrno;
}

// Keys without Enter and without echo; Ctrl-C still interrupts. Only for the foreground job.
bool StartReadingKeys(termios& saved) {
    if (!isatty(STDIN_FILENO) || tcgetpgrp(STDIN_FILENO) != getpgrp()) return false;
    if (tcgetattr(STDIN_FILENO, &saved) != 0) return false;
    termios keys = saved;
    keys.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    keys.c_cc[VMIN] = 1;
    keys.c_cc[VTIME] = 0;
    return tcsetattr(STDIN_FILENO, TCSANOW, &keys) == 0;
}

}  // namespace

CRunKeys::CRunKeys(CRunControl& control, FSay say) : m_control(control), m_say(std::move(say)) {
    if (pipe(m_pipe) != 0) return;
    g_nInterruptPipe = m_pipe[1];
    struct sigaction interrupt {};
    interrupt.sa_handler = OnInterrupt;
    sigemptyset(&interrupt.sa_mask);
    interrupt.sa_flags = SA_RESTART;
    sigaction(SIGINT, &interrupt, &m_savedInterrupt);
    m_bKeys = StartReadingKeys(m_savedTerminal);
    m_thread = StartThread([this] { Watch(); });
}

CRunKeys::~CRunKeys() {
    if (m_pipe[0] < 0) return;
    const ssize_t written = write(m_pipe[1], &kEndWatching, 1);
    (void)written;
    m_thread.join();
    if (m_bKeys) tcsetattr(STDIN_FILENO, TCSANOW, &m_savedTerminal);
    sigaction(SIGINT, &m_savedInterrupt, nullptr);
    g_nInterruptPipe = -1;
    close(m_pipe[0]);
    close(m_pipe[1]);
}

void CRunKeys::Watch() {
    pollfd sources[2] = {{m_pipe[0], POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}};
    bool keys = m_bKeys;
    while (true) {
        if (poll(sources, keys ? 2 : 1, -1) < 0) {
            if (errno == EINTR) continue;
            return;
        }
        char c = 0;
        if (sources[0].revents & POLLIN) {
            if (read(m_pipe[0], &c, 1) != 1 || c == kEndWatching) return;
            StopRun();
        } else if (sources[1].revents & POLLIN) {
            if (read(STDIN_FILENO, &c, 1) == 1)
                Key(c);
            else
                keys = false;  // end of input: no more keys
        } else if (sources[1].revents & (POLLHUP | POLLERR)) {
            keys = false;
        }
    }
}

void CRunKeys::Key(char key) {
    switch (key) {
        case 'p':
            if (m_control.Paused()) {
                m_control.Resume();
                m_say("Resumed");
            } else {
                m_control.Pause();
                m_say("Paused (p: resume, s: skip to the next move, q: stop)");
            }
            break;
        case 's':
            m_say(m_control.Skip() ? "Skipping to the next move" : kSkipFailedText);
            break;
        case 'q':
            StopRun();
            break;
        default:
            break;
    }
}

void CRunKeys::StopRun() {
    if (m_control.StoppedByUser()) return;
    m_say(kStopAllThreadsText);
    m_control.Stop();
    m_say(kStopPendingText);
}

}  // namespace moremate::cli
