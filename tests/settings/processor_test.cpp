#include <gtest/gtest.h>

#include "settings/machine.h"
#include "settings/processor_affinity.h"
#include "tests/support/temp_folder.h"

namespace moremate {
namespace {

using testing::CTempFolder;

TProcessorMask Mask(std::initializer_list<std::size_t> processors) {
    TProcessorMask mask;
    for (std::size_t processor : processors) mask.set(processor);
    return mask;
}

struct TToggleCase {
    const char* pszName;
    std::vector<bool> menuChecks;
    std::size_t processor;
    TProcessorMask current;
    std::optional<TProcessorMask> expected;

    friend void PrintTo(const TToggleCase& c, std::ostream* os) { *os << c.pszName; }
};

class ProcessorToggle : public ::testing::TestWithParam<TToggleCase> {};

TEST_P(ProcessorToggle, TogglesOnlyAnUpToDateMenu) {
    EXPECT_EQ(ToggledAffinity(GetParam().menuChecks, GetParam().processor, GetParam().current),
              GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ProcessorToggle,
    ::testing::Values(TToggleCase{"SwitchesOff", {true, true, false, true}, 1, Mask({0, 1, 3}), Mask({0, 3})},
                      TToggleCase{
                          "SwitchesOn", {true, true, false, true}, 2, Mask({0, 1, 3}), Mask({0, 1, 2, 3})},
                      TToggleCase{"ChangedOutside", {true, true, false, true}, 0, Mask({0, 1}), std::nullopt},
                      TToggleCase{"ProcessorBeyondMenu", {true, true}, 0, Mask({0, 1, 5}), std::nullopt}),
    [](const auto& info) { return info.param.pszName; });

TEST(ProcessorToggle, StaleMenuIsReportedAndChangesNothing) {
    std::optional<TProcessorMask> before = ReadProcessAffinity();
    ASSERT_TRUE(before);
    std::vector<bool> staleMenu(LogicalProcessorCount());
    for (std::size_t i = 0; i < staleMenu.size(); ++i) staleMenu[i] = (*before)[i];
    staleMenu[0] = !staleMenu[0];

    CRecordingReporter reporter;
    EXPECT_FALSE(ToggleProcessor(staleMenu, 0, reporter, kPolish));
    EXPECT_EQ(ReadProcessAffinity(), before);
    ASSERT_EQ(reporter.Reports().size(), 1u);
    EXPECT_EQ(reporter.Reports()[0].sText,
              "Settings were changed outside the program.\nRetry the attempt to change settings.");
}

TEST(ProcessorCount, CountsDistinctCoresOfAllPackages) {
    CTempFolder folder;
    auto addCpu = [&](const std::string& name, const std::string& package, const std::string& core) {
        std::filesystem::create_directories(folder.File(name) / "topology");
        folder.Write(name + "/topology/physical_package_id", package + "\n");
        folder.Write(name + "/topology/core_id", core + "\n");
    };
    addCpu("cpu0", "0", "0");
    addCpu("cpu1", "0", "0");  // the second hardware thread of core 0
    addCpu("cpu2", "0", "1");
    addCpu("cpu10", "1", "0");  // the same core id in another package is another core
    addCpu("cpufreq", "0", "7");
    std::filesystem::create_directories(folder.File("cpu3"));  // offline: no topology
    EXPECT_EQ(CountPhysicalCores(folder.File("")), 3u);
    EXPECT_EQ(CountPhysicalCores(folder.File("absent")), 0u);
}

}  // namespace
}  // namespace moremate
