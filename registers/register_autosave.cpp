#include "register_autosave.h"

#include "core/chess_exception.h"
#include "register_emptying.h"
#include "register_file.h"

namespace moremate {
namespace {

constexpr int64_t kMsPerMinute = 60'000;

}  // namespace

CRegisterAutoSave::CRegisterAutoSave(TAutoSaveSettings settings, TAutoSaveDescriptor descriptor, CClock clock)
    : m_settings(std::move(settings)),
      m_descriptor(std::move(descriptor)),
      m_clock(clock ? std::move(clock) : CClock(EmptyingClockMs)),
      m_nLastSaveMs(m_clock()) {}

CRegisterAutoSave::~CRegisterAutoSave() {
    if (m_bSaved) MarkAutoSaveClosed(FilePath().string() + ".ini");  // the analysis ends normally
    if (m_pWhite) m_pWhite->SetAutosave({});
    if (m_pBlack) m_pBlack->SetAutosave({});
}

void CRegisterAutoSave::Attach(TAggregatedTemporaryChessboardRegister& white,
                               TAggregatedTemporaryChessboardRegister* pBlack) {
    m_pWhite = &white;
    m_pBlack = pBlack;
    white.SetAutosave([this] { SaveIfDueKeepingFailure(); });
    if (pBlack) pBlack->SetAutosave([this] { SaveIfDueKeepingFailure(); });
}

bool CRegisterAutoSave::SaveIfDue() {
    std::lock_guard lock(m_mutex);
    const int64_t nNow = m_clock();
    if (!m_pWhite || !m_settings.bEnabled || m_settings.nMinutes <= 0 ||
        nNow - m_nLastSaveMs < m_settings.nMinutes * kMsPerMinute)
        return false;
    m_nLastSaveMs = nNow;
    std::error_code error;
    std::filesystem::create_directories(m_settings.folder, error);
    if (error)
        throw ChessException("Cannot create the folder " + m_settings.folder.string() + " (" +
                             error.message() + ")");
    TRegisterSaveOptions options;
    options.form = TRegisterFileForm::Lz4Container;
    if (m_settings.nMegabytes > 0) options.nByteLimit = static_cast<uint64_t>(m_settings.nMegabytes) << 20;
    options.writeDescriptor = [this](const std::filesystem::path& file) {
        return WriteAutoSaveDescriptor(file, m_descriptor);
    };
    SaveRegisterFile(FilePath(), *m_pWhite, m_pBlack, options);
    m_bSaved = true;
    return true;
}

std::string CRegisterAutoSave::LastError() const {
    std::lock_guard lock(m_mutex);
    return m_sLastError;
}

void CRegisterAutoSave::SaveIfDueKeepingFailure() {
    try {
        SaveIfDue();
    } catch (const std::exception& exception) {
        std::lock_guard lock(m_mutex);
        m_sLastError = exception.what();
    }
}

}  // namespace moremate
