// Writes seed inputs of the binary formats, which the repository does not keep as files:
// register files in every form, packed buffer images, data files of every kind and tablebase
// answer files. Usage: make_seeds CORPUS_FOLDER (one sub-folder per target is filled).
#include <fstream>
#include <iostream>

#include "fuzz_support.h"
#include "precalc/buffers/packed_buffer.h"
#include "precalc/global/data_file.h"
#include "precalc/global/global_storage.h"
#include "registers/register_file.h"
#include "tablebase/answer_file.h"
#include "tests/registers/register_test_support.h"

using namespace moremate;
namespace fs = std::filesystem;

namespace {

std::vector<uint8_t> Elements(size_t count) {
    std::vector<uint8_t> bytes(count);
    for (size_t i = 0; i < count; ++i) bytes[i] = static_cast<uint8_t>(i % 97 < 80 ? 0 : i % 7);
    return bytes;
}

void WriteBytes(const fs::path& file, const std::vector<uint8_t>& bytes) {
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

void RegisterSeeds(const fs::path& folder) {
    TAggregatedTemporaryChessboardRegister reg(10'000, 16);
    testing::FillRegister(reg, 40);
    const TRegisterFileForm forms[] = {TRegisterFileForm::Plain, TRegisterFileForm::Lz4,
                                       TRegisterFileForm::Lz4e, TRegisterFileForm::Lz4Container,
                                       TRegisterFileForm::Lz4eContainer};
    for (const TRegisterFileForm form : forms) {
        TRegisterSaveOptions save;
        save.form = form;
        save.nCompressionThreads = 1;
        SaveRegisterFile(folder / ("form" + std::to_string(static_cast<int>(form)) + ".tmpReg"), reg, save);
    }
}

void PackedBufferSeeds(const fs::path& folder) {
    using namespace RandomAccessLZWBuffer;
    for (int shape = 0; shape < 8; ++shape) {
        const TPacking packing = (shape & 1) != 0 ? TPacking::Lz4 : TPacking::Lzw;
        const unsigned elementSize = (shape & 2) != 0 ? 2 : 1;
        std::vector<uint8_t> image =
            PackBuffer(packing, Elements(20'000), elementSize, (shape & 4) != 0)->Image();
        image.insert(image.begin(), static_cast<uint8_t>(shape));
        WriteBytes(folder / ("shape" + std::to_string(shape)), image);
    }
}

void DataFileSeeds(const fs::path& folder) {
    const std::vector<uint8_t> elements = Elements(5'000);
    const auto storage = MakePlainStorage(elements, 1);
    for (const TStorageKind kind : kAllStorageKinds) {
        const fs::path file = folder / ("kind" + std::to_string(static_cast<int>(kind)));
        WriteDataFile(file, "KRK", *storage, kind);
    }
}

void TablebaseSeeds(const fs::path& folder) {
    TTablebaseAnswer answer;
    answer.m_byWdl = 2;
    answer.m_shDtm = 17;
    answer.m_byDtz = 1;
    answer.m_nMoves = 2;
    answer.m_vMoves.resize(2);
    std::ofstream(folder / "answer") << WriteAnswerText("8/6KP/8/8/8/8/8/6k1 w - - 0 1", answer);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: make_seeds CORPUS_FOLDER\n";
        return 2;
    }
    const fs::path corpus = argv[1];
    const std::pair<const char*, void (*)(const fs::path&)> seeds[] = {{"register_file", RegisterSeeds},
                                                                       {"packed_buffer", PackedBufferSeeds},
                                                                       {"data_file", DataFileSeeds},
                                                                       {"tablebase_answer", TablebaseSeeds}};
    for (const auto& [target, make] : seeds) {
        fs::create_directories(corpus / target);
        make(corpus / target);
    }
    return 0;
}
