#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <fstream>
#include <memory>
#include <new>
#include <span>
#include <thread>
#include <vector>

#include "core/chess_exception.h"
#include "core/fen.h"
#include "core/squares_hash.h"
#include "core/thread_start.h"
#include "core/validation.h"
#include "register_file.h"
#include "register_levels.h"
#include "register_packing.h"

namespace moremate {
namespace {

constexpr const char* kEmptyFile = "Error - data file is empty.";
constexpr const char* kAllocationError = "Error allocating memory";
constexpr const char* kDecompressionError = "An error occurred during LZ4 decompression.";
constexpr const char* kLoadLogHeader =
    "nMovesMate/Doubtful,nMovesNoMate/NotDoubtful,Heuristics,HeurParams,FEN\n";

uint16_t ReadU16(const uint8_t* p) {
    return static_cast<uint16_t>(p[0] | p[1] << 8);
}
uint64_t ReadU64(const uint8_t* p) {
    uint64_t value = 0;
    for (int i = 7; i >= 0; --i) value = value << 8 | p[i];
    return value;
}

// Loads of files smaller than this are not shared out between threads.
constexpr uint64_t kShardedMinFileSize = uint64_t{4} << 20;
constexpr unsigned kMaxShards = 8;

// Checks each record's position and stores the valid ones, logging them when asked. Records wait
// in a ring on their way to the register: the bucket word of a record is asked for when it comes
// in, its node kLag records later, and it is stored in a batch of kLag at least kLag records after
// that, so that the memory accesses of many records overlap and the register's lock and count are
// taken once a batch. Records of a bucket are stored in file order.
//
// Of several stores fed the same records, each takes those of its shard only: the own store's
// records (configuration 0) whose hash falls to it, and shard 0 every other record. The shards
// of a bucket's records are then the same, so each bucket still gets its records in file order.
class CRecordStore {
  public:
    CRecordStore(TAggregatedTemporaryChessboardRegister& reg, const TRegisterLoadOptions& options,
                 unsigned nShard, unsigned nShards)
        : m_reg(reg), m_options(options), m_nShard(nShard), m_nShardMask(nShards - 1) {
        if (!options.bLogToFile) return;
        m_log.open(options.workingFolder / kLoadLogFile, std::ios::app);
        m_log << kLoadLogHeader;
    }

    void Store(uint64_t nConfiguration, const uint8_t* pRecord) {
        if (nConfiguration != m_nConfiguration) Flush();
        m_nConfiguration = nConfiguration;
        const uint32_t nHash = SquaresHash(pRecord + 4);
        if (!Mine(nHash)) return;
        if (BrokenRuleOf(pRecord + 4)) {
            ++m_report.nInvalidPositions;
            return;
        }
        if (m_nCame - m_nStored == kRing) StoreOldestBatch();
        TChessboardRegisterEntry& entry = m_ring[m_nCame % kRing];
        m_hashes[m_nCame % kRing] = nHash;
        entry.MovesMate = ReadU16(pRecord);
        entry.MovesNoMate = ReadU16(pRecord + 2);
        std::memcpy(entry.key.squares, pRecord + 4, sizeof entry.key.squares);
        ++m_report.nRecords;
        if (m_log.is_open()) Log(nConfiguration, entry);
        ++m_nCame;
        // The stores of the doubtfulness registers look their register up first: not prefetched.
        if (m_nConfiguration != 0) return;
        m_reg.PrefetchBucket(nHash);
        if (m_nCame > kLag) m_reg.Prefetch(m_hashes[(m_nCame - 1 - kLag) % kRing], TPrefetchFor::Insertion);
    }

    // Stores the records still waiting; the ring starts again at its first place.
    void Flush() {
        while (m_nStored < m_nCame) StoreOldest();
        m_nCame = m_nStored = 0;
    }

    // What was stored and skipped so far.
    const TRegisterLoadReport& Report() const { return m_report; }

  private:
    bool Mine(uint32_t nHash) const {
        if (m_nShardMask == 0) return true;
        if (m_nConfiguration != 0) return m_nShard == 0;
        return (nHash & m_nShardMask) == m_nShard;
    }

    void StoreOldest() {
        const size_t i = m_nStored++ % kRing;
        m_reg.Merge(m_nConfiguration, m_ring[i], m_hashes[i]);
    }
    // The ring is full: its oldest kLag records, in a row from a multiple of kLag (the ring starts
    // at 0 after every Flush), go to the register at once.
    void StoreOldestBatch() {
        if (m_nConfiguration != 0) {
            while (m_nCame - m_nStored > kRing - kLag) StoreOldest();
            return;
        }
        const size_t i = m_nStored % kRing;
        m_reg.MergeBatch({m_ring.data() + i, kLag}, m_hashes.data() + i);
        m_nStored += kLag;
    }

    void Log(uint64_t nConfiguration, const TChessboardRegisterEntry& entry) {
        char line[64];
        std::snprintf(line, sizeof line, "%d,%d,%d,%d,", entry.MovesMate, entry.MovesNoMate,
                      static_cast<int>(static_cast<uint32_t>(nConfiguration)),
                      static_cast<int>(static_cast<uint32_t>(nConfiguration >> 32)));
        m_log << line << WriteFen(ChessboardOf(entry.key, m_options.bBlackToMove ? 2 : 1)) << '\n';
    }

    TAggregatedTemporaryChessboardRegister& m_reg;
    const TRegisterLoadOptions& m_options;
    const unsigned m_nShard;
    const unsigned m_nShardMask;
    TRegisterLoadReport m_report;
    std::ofstream m_log;
    static constexpr size_t kLag = 8;
    static constexpr size_t kRing = 3 * kLag;
    std::array<TChessboardRegisterEntry, kRing> m_ring;
    std::array<uint32_t, kRing> m_hashes;
    uint64_t m_nCame = 0;  // records that came into the ring
    uint64_t m_nStored = 0;
    uint64_t m_nConfiguration = 0;
};

// Stores the records of `data` and takes the configuration of each group marker met (a marker
// is told from a record by its first four bytes). Returns the bytes used: a marker or record cut
// by the end of `data` is left for the next call.
size_t StoreShardUnits(std::span<const uint8_t> data, uint64_t& nConfiguration, CRecordStore& store) {
    size_t nUsed = 0;
    for (;;) {
        const uint8_t* p = data.data() + nUsed;
        const size_t nLeft = data.size() - nUsed;
        if (nLeft >= kRegisterMarkerSize && IsGroupMarker(p)) {
            nConfiguration = ReadU64(p + 4);
            nUsed += kRegisterMarkerSize;
        } else if (nLeft >= kRegisterRecordSize) {
            store.Store(nConfiguration, p);
            nUsed += kRegisterRecordSize;
        } else {
            return nUsed;
        }
    }
}

// The record stores of a load, one per shard, each on a thread of its own while a piece of the
// file is stored (the first on the calling thread). The threads start for each piece: pieces are
// megabytes, a thread's start microseconds.
class CShardedStore {
  public:
    CShardedStore(TAggregatedTemporaryChessboardRegister& reg, const TRegisterLoadOptions& options,
                  unsigned nShards)
        : m_configurations(nShards, 0) {
        for (unsigned i = 0; i < nShards; ++i)
            m_stores.push_back(std::make_unique<CRecordStore>(reg, options, i, nShards));
    }

    // Stores the records of `data`, each shard its own; returns the bytes used, as StoreShardUnits.
    size_t StoreUnits(std::span<const uint8_t> data) {
        std::vector<size_t> used(m_stores.size());
        RunOnThreads(m_stores.size(),
                     [&](size_t i) { used[i] = StoreShardUnits(data, m_configurations[i], *m_stores[i]); });
        return used[0];
    }

    // Stores the records still waiting in every shard; what all of them stored and skipped.
    TRegisterLoadReport Finish() {
        TRegisterLoadReport report;
        for (const std::unique_ptr<CRecordStore>& store : m_stores) {
            store->Flush();
            report.nRecords += store->Report().nRecords;
            report.nInvalidPositions += store->Report().nInvalidPositions;
        }
        return report;
    }

  private:
    std::vector<std::unique_ptr<CRecordStore>> m_stores;
    std::vector<uint64_t> m_configurations;  // the group each shard is in, from the markers it met
};

// One shard per processor, a power of two, unless the file is small, the records are logged (in
// file order) or the table has fewer buckets than shards.
unsigned ShardCount(const TRegisterLoadOptions& options, uint64_t nFileSize, size_t nBuckets) {
    const unsigned nThreads = options.nThreads ? options.nThreads : std::thread::hardware_concurrency();
    if (options.bLogToFile || nFileSize < kShardedMinFileSize) return 1;
    const unsigned nShards = std::bit_floor(std::clamp(nThreads, 1u, kMaxShards));
    return nBuckets >= nShards ? nShards : 1;
}

// The packed file decoded whole.
std::vector<uint8_t> UnpackFile(std::span<const uint8_t> packed) {
    std::optional<std::vector<uint8_t>> data;
    try {
        data = DecompressPacked(packed.data(), packed.size());
    } catch (const std::bad_alloc&) {
        throw ChessException(kAllocationError);
    }
    if (!data) throw ChessException(kDecompressionError);
    return std::move(*data);
}

void WriteScratchCopy(const std::filesystem::path& path, const std::vector<uint8_t>& data) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(data.data()), static_cast<std::streamsize>(data.size()));
}

}  // namespace

bool Load(std::span<const uint8_t> data, TAggregatedTemporaryChessboardRegister& reg, size_t nBuckets,
          const TRegisterLoadOptions& options, TRegisterLoadReport& report) {
    reg.SetBucketCount(nBuckets);
    if (data.size() < kPackedMagicSize) throw ChessException(kEmptyFile);
    std::vector<uint8_t> unpacked;
    if (IsPackedMagic(data.data())) {
        unpacked = UnpackFile(data);
        WriteScratchCopy(options.workingFolder / kLoadScratchFile, unpacked);
        data = unpacked;
    }
    CShardedStore store(reg, options, ShardCount(options, data.size(), nBuckets));
    const bool bComplete = store.StoreUnits(data) == data.size();
    report = store.Finish();  // every record stored, the last batch too
    return bComplete;
}

}  // namespace moremate
