#include <algorithm>
#include <fstream>
#include <thread>

#include "core/chess_exception.h"
#include "register_file.h"
#include "register_levels.h"
#include "register_packing.h"
#include "register_stream.h"
#include "settings/program_folder.h"

namespace moremate {
namespace {

constexpr const char* kRecordWriteError = "Cannot write to file in TRegisterCombinedMap::SaveExact";
constexpr const char* kMarkerWriteError = "Cannot write in TAggregatedTemporaryChessboardRegister::SaveExact";
constexpr const char* kPackingError = "Cannot compress the temporary register data";
constexpr size_t kFileBufferSize = size_t{1} << 20;

bool Fits(uint64_t nCount, uint64_t nBytes, uint64_t nByteLimit) {
    return nCount <= nByteLimit && nBytes <= nByteLimit - nCount;
}

std::vector<uint8_t> Pack(const std::filesystem::path& path, const std::vector<uint8_t>& data,
                          const TRegisterSaveOptions& options) {
    const TBlockForm blockForm =
        options.form == TRegisterFileForm::Lz4 || options.form == TRegisterFileForm::Lz4Container
            ? TBlockForm::Lz4
            : TBlockForm::Lz4e;
    if (options.form == TRegisterFileForm::Lz4 || options.form == TRegisterFileForm::Lz4e) {
        auto block = CompressBlock(blockForm, data.data(), data.size());
        if (!block) throw ChessException(kPackingError);
        return std::move(*block);
    }
    const unsigned nThreads =
        options.nCompressionThreads ? options.nCompressionThreads : std::thread::hardware_concurrency();
    std::vector<TBlockReport> reports;
    auto container = CompressContainer(blockForm, data.data(), data.size(), nThreads, &reports);
    if (!container) throw ChessException(kPackingError);
    if (options.bLogCompression) {
        std::ofstream log(path.string() + ".log", std::ios::app);
        for (size_t i = 0; i < reports.size(); ++i) log << CompressionLogLine(i, reports[i]);
    }
    return std::move(*container);
}

// Runs `write(file)` on a temporary file and renames it to `path` when it succeeded.
template <class FWrite>
void WriteFileAtomically(const std::filesystem::path& path, FWrite&& write) {
    const std::filesystem::path temporary = path.string() + ".saving";
    try {
        CFileHandle file(std::fopen(temporary.c_str(), "wb"), &std::fclose);
        if (!file) throw ChessException(kRecordWriteError);
        std::setvbuf(file.get(), nullptr, _IONBF, 0);
        write(file.get());
        if (std::fclose(file.release()) != 0) throw ChessException(kRecordWriteError);
        std::filesystem::rename(temporary, path);
    } catch (...) {
        std::error_code error;
        std::filesystem::remove(temporary, error);
        throw;
    }
}

}  // namespace

void CRegisterStream::Write(const void* pData, size_t size, const char* sError) {
    const uint8_t* p = static_cast<const uint8_t*>(pData);
    if (m_pFile && m_bytes.size() + size > kFileBufferSize) {
        Flush(sError);
        if (size >= kFileBufferSize) {
            if (std::fwrite(p, 1, size, m_pFile) != size) throw ChessException(sError);
            return;
        }
    }
    m_bytes.insert(m_bytes.end(), p, p + size);
}

void CRegisterStream::Flush(const char* sError) {
    if (!m_pFile || m_bytes.empty()) return;
    if (std::fwrite(m_bytes.data(), 1, m_bytes.size(), m_pFile) != m_bytes.size())
        throw ChessException(sError);
    m_bytes.clear();
}

bool SaveExact(CRegisterLevels& levels, CRegisterStream& out, uint64_t nByteLimit, uint64_t& nCount,
               uint16_t n) {
    if (!Fits(nCount, kRegisterMarkerSize + kRegisterRecordSize, nByteLimit)) return false;
    std::vector<uint8_t> marker;
    AppendMarker(marker, 0);
    out.Write(marker.data(), marker.size(), kMarkerWriteError);
    nCount += kRegisterMarkerSize;
    const std::vector<uint8_t>& records = levels.Records(n);
    // Up to the limit: a marker only with the record that follows it.
    size_t nFitting = 0;
    while (nFitting < records.size()) {
        const size_t nUnit = IsGroupMarker(records.data() + nFitting)
                                 ? kRegisterMarkerSize + kRegisterRecordSize
                                 : kRegisterRecordSize;
        if (!Fits(nCount, nUnit, nByteLimit)) break;
        nCount += nUnit;
        nFitting += nUnit;
    }
    out.Write(records.data(), nFitting, kRecordWriteError);
    const bool bWhole = nFitting == records.size();
    levels.Release(n);
    return bWhole;
}

TRegisterSaveResult SaveLevels(const TAggregatedTemporaryChessboardRegister& reg, CRegisterStream& out,
                               uint64_t nByteLimit) {
    CRegisterLevels levels(reg);
    TRegisterSaveResult result;
    for (uint32_t n = levels.FirstLevel(); n <= levels.LastLevel(); ++n) {
        if (!SaveExact(levels, out, nByteLimit, result.nStreamBytes, static_cast<uint16_t>(n))) {
            result.bComplete = false;
            break;
        }
    }
    return result;
}

TRegisterSaveResult SaveRegisterFile(const std::filesystem::path& path,
                                     const TAggregatedTemporaryChessboardRegister& reg,
                                     const TRegisterSaveOptions& options) {
    TRegisterSaveResult result;
    if (options.form == TRegisterFileForm::Plain) {
        WriteFileAtomically(path, [&](std::FILE* pFile) {
            CRegisterStream out(pFile);
            result = SaveLevels(reg, out, options.nByteLimit);
            out.Flush(kRecordWriteError);
        });
        return result;
    }
    std::vector<uint8_t> packed;
    {
        CRegisterStream out;
        result = SaveLevels(reg, out, options.nByteLimit);
        packed = Pack(path, out.Bytes(), options);
    }
    WriteFileAtomically(path, [&](std::FILE* pFile) {
        if (std::fwrite(packed.data(), 1, packed.size(), pFile) != packed.size())
            throw ChessException(kRecordWriteError);
    });
    return result;
}

TRegisterSaveResult SaveRegisterFile(const std::filesystem::path& path,
                                     const TAggregatedTemporaryChessboardRegister& white,
                                     const TAggregatedTemporaryChessboardRegister* pBlack,
                                     const TRegisterSaveOptions& options) {
    TRegisterSaveResult result = SaveRegisterFile(path, white, options);
    if (pBlack) {
        const TRegisterSaveResult black = SaveRegisterFile(BlackToMoveFilePath(path), *pBlack, options);
        result.nStreamBytes += black.nStreamBytes;
        result.bComplete = result.bComplete && black.bComplete;
    }
    return result;
}

std::filesystem::path BlackToMoveFilePath(const std::filesystem::path& path) {
    std::filesystem::path black = path;
    black.replace_filename(path.stem().string() + ".black" + path.extension().string());
    return black;
}

std::filesystem::path SavedRegisterFilePath(const std::string& sName) {
    return ProgramFolder() / kSavedRegisterFolder / (sName + kRegisterFileExtension);
}

}  // namespace moremate
