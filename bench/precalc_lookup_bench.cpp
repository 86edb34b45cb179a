// Look-ups of precalculated data per second, one thread, in each storage form: the KRk data
// (generated into a scratch folder first) read at random indexes, as the search asks for them.
#include <benchmark/benchmark.h>

#include <unistd.h>

#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "precalc/generator/generator.h"
#include "precalc/global/data_file.h"
#include "split_mix.h"

namespace moremate {
namespace {

const std::filesystem::path& ScratchFolder() {
    static const std::filesystem::path folder = [] {
        const auto path =
            std::filesystem::temp_directory_path() / ("moremate-bench-" + std::to_string(getpid()));
        std::filesystem::create_directories(path);
        std::atexit([] { std::filesystem::remove_all(ScratchFolder()); });
        return path;
    }();
    return folder;
}

// The elements of KRk, made once.
const std::vector<uint8_t>& Elements() {
    static const std::vector<uint8_t> elements = [] {
        TGlobalRegisters registers;
        TGlobalRegisterSettings settings;
        settings.m_dataFolder = ScratchFolder();
        settings.m_nQuotaBytes = 1ull << 30;
        registers.Configure(settings, nullptr);
        TGenerationOptions options;
        options.m_bWriteFiles = false;
        return EnsureTypeData(registers, TPrecalcType::Parse("KRk"), options).Storage().Payload();
    }();
    return elements;
}

std::unique_ptr<CGlobalStorage> Storage(TStorageForm form) {
    switch (form) {
        case TStorageForm::kTwoBit: {  // the form holds values up to 3: the data folded into them
            std::vector<uint8_t> folded = Elements();
            for (uint8_t& v : folded) v = static_cast<uint8_t>(v == 0 ? 0 : 1 + v % 3);
            return MakeTwoBitStorage(folded);
        }
        case TStorageForm::kRunLength:
            return MakeRunLengthStorage(Elements());
        case TStorageForm::kDiskAccess: {
            const auto file = ScratchFolder() / "KRk_.precalc";
            WriteDataFile(file, "KRk", *MakePlainStorage(Elements(), 1), TStorageKind::kPlain);
            return ReadDataFile(file, "KRk", Elements().size(), true);
        }
        case TStorageForm::kRandomAccess:
            return MakePackedStorage(TStorageKind::kPackedLzw, Elements(), 1);
        case TStorageForm::kPlain:
            break;
    }
    return MakePlainStorage(Elements(), 1);
}

// One storage per form, shared by the threads of a run as the search threads share a register.
const CGlobalStorage* SharedStorage(TStorageForm form) {
    static std::mutex lock;
    static std::map<TStorageForm, std::unique_ptr<CGlobalStorage>> storages;
    std::lock_guard guard(lock);
    auto& slot = storages[form];
    if (!slot) slot = Storage(form);
    return slot.get();
}

void BM_Lookup(benchmark::State& state) {
    const auto form = static_cast<TStorageForm>(state.range(0));
    const CGlobalStorage* storage = nullptr;
    try {
        storage = SharedStorage(form);
    } catch (const std::exception& e) {
        state.SkipWithError(e.what());
        return;
    }
    const uint64_t count = storage->ElementCount();
    uint64_t seed = 7 + static_cast<uint64_t>(state.thread_index()), sum = 0;
    for (auto _ : state) sum += storage->MateCode(SplitMix(seed) % count);
    benchmark::DoNotOptimize(sum);
    state.SetItemsProcessed(state.iterations());
    state.SetLabel(StorageFormName(form) + std::string(", ") + std::to_string(storage->MemoryBytes()) +
                   " bytes");
}
BENCHMARK(BM_Lookup)
    ->Arg(static_cast<int>(TStorageForm::kPlain))
    ->Arg(static_cast<int>(TStorageForm::kTwoBit))
    ->Arg(static_cast<int>(TStorageForm::kRunLength))
    ->Arg(static_cast<int>(TStorageForm::kDiskAccess))
    ->Arg(static_cast<int>(TStorageForm::kRandomAccess))
    ->Threads(1)
    ->Threads(2);

}  // namespace
}  // namespace moremate
