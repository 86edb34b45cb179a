// "options.ini": the options read from it, and any key of any section.
#include "fuzz_support.h"
#include "settings/ini_file.h"
#include "settings/options.h"

using namespace moremate;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::filesystem::path file = fuzz::WriteFile("options.ini", data, size);
    CRecordingReporter reporter;
    ReadOptions(file, reporter, uint64_t{16} << 30);
    const CIniFile ini(file);
    ini.ReadString("chess", "PrecalcPath", "", 260);
    ini.ReadInt("chess", "LanguageId", 1);
    return 0;
}
