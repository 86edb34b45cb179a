// A progress line on stderr, rewritten in place at most a few times a second, when stderr is a
// terminal; silent otherwise.
#pragma once

#include <chrono>
#include <mutex>
#include <string>

namespace moremate {

class CGeneratorProgress {
  public:
    explicit CGeneratorProgress(bool bEnabled);
    ~CGeneratorProgress();
    CGeneratorProgress(const CGeneratorProgress&) = delete;
    CGeneratorProgress& operator=(const CGeneratorProgress&) = delete;

    // Shows `text` unless a line was shown very recently (always with `force`).
    void Show(const std::string& text, bool force = false);

  private:
    bool m_bEnabled;
    bool m_bShown = false;
    std::mutex m_lock;
    std::chrono::steady_clock::time_point m_last{};
};

}  // namespace moremate
