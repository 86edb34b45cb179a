// The automatic save of a solving run's registers: every AutoSaveMinutes minutes, asked by the
// register's emptying (its autosave hook) and by the solving run, the registers are written to
// "AutoSave.tmpReg" in the folder of saved registers, replacing the previous automatic save, and
// the descriptor "AutoSave.tmpReg.ini" beside them is replaced in the same commit as the pair, so
// that a kill never leaves the descriptor of another save. AutoSaveMB bounds the file: the save
// keeps the shortest levels that fit (before packing). The file is a "lz4 " container.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <mutex>
#include <string>

#include "aggregated_register.h"
#include "settings/autosave_descriptor.h"

namespace moremate {

inline constexpr const char* kAutoSaveFileName = "AutoSave.tmpReg";

struct TAutoSaveSettings {
    int nMinutes = 0;              // AutoSaveMinutes; 0 or less: never
    int nMegabytes = 0;            // AutoSaveMB; 0 or less: no bound
    bool bEnabled = false;         // automatic saving enabled for this run
    std::filesystem::path folder;  // the folder of saved registers
};

class CRegisterAutoSave {
  public:
    using CClock = std::function<int64_t()>;  // milliseconds of a monotonic clock

    // The interval starts now. Without a clock the steady clock is used.
    CRegisterAutoSave(TAutoSaveSettings settings, TAutoSaveDescriptor descriptor, CClock clock = {});
    // Removes the hooks it installed and, when it saved, marks the descriptor as closed normally.
    ~CRegisterAutoSave();
    CRegisterAutoSave(const CRegisterAutoSave&) = delete;
    CRegisterAutoSave& operator=(const CRegisterAutoSave&) = delete;

    // Saves `white` (and `*pBlack` beside it) and installs the hook on both. A failure inside a
    // hook does not reach the search: it is kept for LastError.
    void Attach(TAggregatedTemporaryChessboardRegister& white,
                TAggregatedTemporaryChessboardRegister* pBlack);

    // Saves when enabled and due; true when it saved. Throws ChessException when writing fails;
    // a failed save starts the interval again as a save does, so that it is not retried at once.
    bool SaveIfDue();
    // The same from a hook or a timer: a failure is kept for LastError instead of thrown.
    void SaveIfDueKeepingFailure();

    std::filesystem::path FilePath() const { return m_settings.folder / kAutoSaveFileName; }
    std::string LastError() const;

  private:
    const TAutoSaveSettings m_settings;
    const TAutoSaveDescriptor m_descriptor;
    const CClock m_clock;
    mutable std::mutex m_mutex;
    int64_t m_nLastSaveMs;
    bool m_bSaved = false;
    TAggregatedTemporaryChessboardRegister* m_pWhite = nullptr;
    TAggregatedTemporaryChessboardRegister* m_pBlack = nullptr;
    std::string m_sLastError;
};

}  // namespace moremate
