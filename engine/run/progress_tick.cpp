#include "progress_tick.h"

#include "engine/passes/passes.h"
#include "engine/passes/run_register.h"
#include "engine/search/observed_lines.h"
#include "engine/state/run_control.h"

namespace moremate {
namespace {

constexpr const char* kInitialPositionCheck = "Initial position type check...";

std::string PassStatus(const TProgressSources& sources, uint64_t nodes) {
    const TPassProgress pass = sources.control ? sources.control->Pass() : TPassProgress{};
    if (pass.number == 0) return kInitialPositionCheck;
    CRunRegister* reg = sources.runRegister;
    const int fill = reg ? reg->FillPercent() : 0;
    const int configurations = reg ? static_cast<int>(reg->WhiteToMove().DoubtfulConfigurations().size() +
                                                      reg->BlackToMove().DoubtfulConfigurations().size())
                                   : 0;
    std::string line = PassStatusLine(pass.number, pass.letter, "", pass.percent,
                                      static_cast<long long>(nodes), pass.mask, fill, configurations);
    line.erase(line.find_last_not_of(" \r") + 1);
    return line;
}

}  // namespace

TRunProgress ReadProgress(const TProgressSources& sources, std::chrono::milliseconds elapsed) {
    TRunProgress progress;
    progress.nodes = sources.nodes ? sources.nodes->load(std::memory_order_relaxed) : 0;
    progress.passStatus = PassStatus(sources, progress.nodes);
    progress.elapsed = elapsed;
    if (sources.threadFigures) progress.threadFigures = sources.threadFigures();
    if (sources.observed) progress.observed = sources.observed->Text();
    return progress;
}

CProgressTick::CProgressTick(TProgressSources sources, FOnTick onTick, std::chrono::milliseconds period)
    : m_sources(std::move(sources)),
      m_onTick(std::move(onTick)),
      m_start(std::chrono::steady_clock::now()),
      m_timer(period, [this] {
          const auto elapsed = std::chrono::steady_clock::now() - m_start;
          m_onTick(ReadProgress(m_sources, std::chrono::duration_cast<std::chrono::milliseconds>(elapsed)));
          return true;
      }) {}

CProgressTick::~CProgressTick() = default;

void CProgressTick::Stop() {
    m_timer.Stop();
}

}  // namespace moremate
