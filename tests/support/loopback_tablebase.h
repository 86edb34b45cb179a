// A tablebase service on the loopback address for tests: it answers "standard?fen=" from recorded
// answers and, under other folders of its address, fails in the ways a real service can. Nothing
// here ever reaches beyond this machine.
#pragma once

#include <httplib.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <map>
#include <string>
#include <thread>

namespace moremate::testing {

// A port of the loopback address taken by a socket that listens but never accepts (`listen`), or
// that is bound without listening, so that a connection is refused.
class CSilentPort {
  public:
    explicit CSilentPort(bool listen) {
        m_nFd = socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        bind(m_nFd, reinterpret_cast<sockaddr*>(&address), sizeof address);
        if (listen) ::listen(m_nFd, 8);
        socklen_t length = sizeof address;
        getsockname(m_nFd, reinterpret_cast<sockaddr*>(&address), &length);
        m_nPort = ntohs(address.sin_port);
    }
    ~CSilentPort() { close(m_nFd); }
    CSilentPort(const CSilentPort&) = delete;
    CSilentPort& operator=(const CSilentPort&) = delete;

    std::string URL() const { return "http://127.0.0.1:" + std::to_string(m_nPort) + "/"; }

  private:
    int m_nFd = -1;
    int m_nPort = 0;
};

class CLoopbackTablebase {
  public:
    // `answers`: the body for each FEN asked under "/ok/".
    explicit CLoopbackTablebase(std::map<std::string, std::string> answers) : m_answers(std::move(answers)) {
        Route();
        m_server.set_keep_alive_max_count(1);  // no connection outlives its request, so Stop() is quick
        m_nPort = m_server.bind_to_any_port("127.0.0.1");
        m_thread = std::thread([this] { m_server.listen_after_bind(); });
    }
    ~CLoopbackTablebase() { Stop(); }
    CLoopbackTablebase(const CLoopbackTablebase&) = delete;
    CLoopbackTablebase& operator=(const CLoopbackTablebase&) = delete;

    void Stop() {
        if (!m_thread.joinable()) return;
        m_server.stop();
        m_thread.join();
    }

    // The base address of one of the folders: "ok", "500", "redirect", "loop", "short", "garbage",
    // "huge".
    std::string URL(const std::string& folder) const {
        return "http://127.0.0.1:" + std::to_string(m_nPort) + "/" + folder + "/";
    }
    int Requests() const { return m_nRequests; }

  private:
    void Route() {
        m_server.Get("/ok/standard", [this](const httplib::Request& request, httplib::Response& response) {
            ++m_nRequests;
            const auto answer = m_answers.find(request.get_param_value("fen"));
            if (answer == m_answers.end()) {
                response.status = 404;
                return;
            }
            response.set_content(answer->second, "application/json");
        });
        m_server.Get("/500/standard", [](const httplib::Request&, httplib::Response& response) {
            response.status = 500;
            response.set_content(R"({"error":"internal"})", "application/json");
        });
        m_server.Get("/redirect/standard", [](const httplib::Request& request, httplib::Response& response) {
            response.set_redirect("/ok/standard?fen=" +
                                  httplib::detail::encode_query_param(request.get_param_value("fen")));
        });
        m_server.Get("/loop/standard", [](const httplib::Request&, httplib::Response& response) {
            response.set_redirect("/loop/standard?fen=x");
        });
        m_server.Get("/garbage/standard", [](const httplib::Request&, httplib::Response& response) {
            response.set_content("<html><body>Service unavailable</body></html>", "text/html");
        });
        m_server.Get("/huge/standard", [](const httplib::Request&, httplib::Response& response) {
            response.set_content(std::string(10 << 20, ' ') + R"({"category":"win"})", "application/json");
        });
        m_server.Get("/short/standard", [](const httplib::Request&, httplib::Response& response) {
            // Promises a thousand bytes, sends a hundred and closes.
            response.set_content_provider(1000, "application/json",
                                          [](size_t offset, size_t, httplib::DataSink& sink) {
                                              if (offset > 0) return false;
                                              sink.write(std::string(100, ' ').data(), 100);
                                              return true;
                                          });
        });
    }

    std::map<std::string, std::string> m_answers;
    httplib::Server m_server;
    int m_nPort = 0;
    std::thread m_thread;
    std::atomic<int> m_nRequests{0};
};

}  // namespace moremate::testing
