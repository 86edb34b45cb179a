#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <fstream>
#include <functional>
#include <random>
#include <thread>

#include "core/chess_exception.h"
#include "register_file.h"
#include "register_file_header.h"
#include "register_levels.h"
#include "register_packing.h"
#include "register_pair_commit.h"
#include "register_stream.h"
#include "settings/kill_test_pause.h"
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

uint64_t NewPairId() {
    std::random_device device;
    const uint64_t nRandom = (static_cast<uint64_t>(device()) << 32) ^ device();
    return nRandom ^ static_cast<uint64_t>(std::chrono::system_clock::now().time_since_epoch().count());
}

void WriteHeader(std::FILE* pFile, const std::filesystem::path& path, const TRegisterFileHeader& header) {
    const auto bytes = EncodeRegisterHeader(header);
    if (std::fseek(pFile, 0, SEEK_SET) != 0 ||
        std::fwrite(bytes.data(), 1, bytes.size(), pFile) != bytes.size())
        throw ChessException(FileErrorText(kRecordWriteError, path.string()));
}

// Writes the header and the data, closes the file and makes it durable.
void WriteRegisterFile(const std::filesystem::path& path, TRegisterFileHeader header,
                       const std::function<void(CRegisterStream&)>& writeData) {
    CFileHandle file(std::fopen(path.c_str(), "wb"), &std::fclose);
    if (!file) throw ChessException(FileErrorText(kRecordWriteError, path.string()));
    std::setvbuf(file.get(), nullptr, _IONBF, 0);
    WriteHeader(file.get(), path, header);  // a stand-in until the data are known
    CRegisterStream out(file.get(), path.string());
    writeData(out);
    out.Flush(kRecordWriteError);
    header.nDataBytes = out.FileBytes();
    header.nDataCrc = out.FileCrc();
    header.nRecords = out.Records();
    WriteHeader(file.get(), path, header);
    if (fsync(fileno(file.get())) != 0 || std::fclose(file.release()) != 0)
        throw ChessException(FileErrorText(kRecordWriteError, path.string()));
}

// One file of a pair, under its ".saving" name.
TRegisterSaveResult SaveOne(const std::filesystem::path& path,
                            const TAggregatedTemporaryChessboardRegister& reg,
                            const TRegisterSaveOptions& options, const TRegisterFileHeader& header) {
    TRegisterSaveResult result;
    if (options.form == TRegisterFileForm::Plain) {
        WriteRegisterFile(SavingPath(path), header,
                          [&](CRegisterStream& out) { result = SaveLevels(reg, out, options.nByteLimit); });
        return result;
    }
    CRegisterStream memory;
    result = SaveLevels(reg, memory, options.nByteLimit);
    const std::vector<uint8_t> packed = Pack(path, memory.Bytes(), options);
    memory.Bytes() = {};
    WriteRegisterFile(SavingPath(path), header, [&](CRegisterStream& out) {
        out.Write(packed.data(), packed.size(), kRecordWriteError);
        out.CountRecords(memory.Records());
    });
    return result;
}

// The save's descriptor, if it has one, under its ".saving" name.
void WriteDescriptor(const std::filesystem::path& whiteFile, const TRegisterSaveOptions& options) {
    if (!options.writeDescriptor) return;
    const std::filesystem::path temporary = SavingPath(DescriptorPath(whiteFile));
    if (!options.writeDescriptor(temporary)) throw ChessException("Cannot write " + temporary.string());
}

}  // namespace

std::string FileErrorText(const char* sMessage, const std::string& sFileName) {
    return std::string(sMessage) + ": " + sFileName + " (" + std::strerror(errno) + ")";
}

void CRegisterStream::WriteToFile(const uint8_t* p, size_t size, const char* sError) {
    if (std::fwrite(p, 1, size, m_pFile) != size) throw ChessException(FileErrorText(sError, m_sFileName));
    m_nFileBytes += size;
    m_nFileCrc = UpdateCrc32(m_nFileCrc, p, size);
}

void CRegisterStream::Write(const void* pData, size_t size, const char* sError) {
    const uint8_t* p = static_cast<const uint8_t*>(pData);
    if (m_pFile && m_bytes.size() + size > kFileBufferSize) {
        Flush(sError);
        if (size >= kFileBufferSize) {
            WriteToFile(p, size, sError);
            return;
        }
    }
    m_bytes.insert(m_bytes.end(), p, p + size);
}

void CRegisterStream::Flush(const char* sError) {
    if (!m_pFile || m_bytes.empty()) return;
    WriteToFile(m_bytes.data(), m_bytes.size(), sError);
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
    uint64_t nRecords = 0;
    for (; nFitting < records.size(); ++nRecords) {
        const size_t nUnit = IsGroupMarker(records.data() + nFitting)
                                 ? kRegisterMarkerSize + kRegisterRecordSize
                                 : kRegisterRecordSize;
        if (!Fits(nCount, nUnit, nByteLimit)) break;
        nCount += nUnit;
        nFitting += nUnit;
    }
    out.Write(records.data(), nFitting, kRecordWriteError);
    out.CountRecords(nRecords);
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
    return SaveRegisterFile(path, reg, nullptr, options);
}

TRegisterSaveResult SaveRegisterFile(const std::filesystem::path& path,
                                     const TAggregatedTemporaryChessboardRegister& white,
                                     const TAggregatedTemporaryChessboardRegister* pBlack,
                                     const TRegisterSaveOptions& options) {
    for (const std::filesystem::path& file : {path, BlackToMoveFilePath(path)})
        if (std::filesystem::is_directory(file))
            throw ChessException(std::string(kRecordWriteError) + ": " + file.string() + " is a folder");
    const CRegisterSaveLock lock(path, true);
    RecoverInterruptedSave(path, lock);
    TRegisterFileHeader header;
    header.form = options.form;
    header.bHasBlackFile = pBlack != nullptr;
    header.nPairId = NewPairId();
    try {
        TRegisterSaveResult result = SaveOne(path, white, options, header);
        if (pBlack) {
            header.bBlackToMove = true;
            header.bHasBlackFile = false;
            const TRegisterSaveResult black = SaveOne(BlackToMoveFilePath(path), *pBlack, options, header);
            result.nStreamBytes += black.nStreamBytes;
            result.bComplete = result.bComplete && black.bComplete;
        }
        WriteDescriptor(path, options);
        PauseForKillTest("register-pair");
        CommitRegisterPair(path, pBlack != nullptr);
        return result;
    } catch (...) {
        if (!std::filesystem::exists(CommitFilePath(path))) RemoveSavingFiles(path);
        throw;
    }
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
