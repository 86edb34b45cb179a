// Killing a process in the middle of writing a file: a child process runs the writer with
// $MOREMATE_PAUSE_AT set, and is killed (SIGKILL) once it says that it paused there.
#pragma once

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <functional>
#include <string>

namespace moremate::testing {

inline void KillWhileWriting(const char* sMoment, const std::function<void()>& write) {
    int fds[2];
    ASSERT_EQ(pipe(fds), 0);
    const pid_t pid = fork();
    ASSERT_GE(pid, 0);
    if (pid == 0) {
        close(fds[0]);
        dup2(fds[1], STDERR_FILENO);
        setenv("MOREMATE_PAUSE_AT", sMoment, 1);
        try {
            write();
        } catch (...) {
        }
        _exit(0);
    }
    close(fds[1]);
    std::string said;
    char c;
    while (read(fds[0], &c, 1) == 1 && c != '\n') said += c;
    close(fds[0]);
    kill(pid, SIGKILL);
    int status = 0;
    waitpid(pid, &status, 0);
    EXPECT_EQ(said, std::string("Paused at ") + sMoment);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
}

// Files of this process may not grow beyond `nBytes` while it lives, as on a full disk; a write
// beyond fails with EFBIG instead of raising SIGXFSZ.
class CFileSizeLimit {
  public:
    explicit CFileSizeLimit(rlim_t nBytes) : m_previousHandler(signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &m_previous);
        rlimit limit = m_previous;
        limit.rlim_cur = nBytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~CFileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &m_previous);
        signal(SIGXFSZ, m_previousHandler);
    }
    CFileSizeLimit(const CFileSizeLimit&) = delete;
    CFileSizeLimit& operator=(const CFileSizeLimit&) = delete;

  private:
    sighandler_t m_previousHandler;
    rlimit m_previous{};
};

}  // namespace moremate::testing
