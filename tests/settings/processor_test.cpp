#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "settings/machine.h"
#include "settings/process_priority.h"
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

// Only a menu that shows the current affinity is toggled.
TEST(ProcessorToggle, TogglesOnlyAnUpToDateMenu) {
    const std::vector<bool> menu = {true, true, false, true};
    EXPECT_EQ(ToggledAffinity(menu, 1, Mask({0, 1, 3})), Mask({0, 3}));
    EXPECT_EQ(ToggledAffinity(menu, 2, Mask({0, 1, 3})), Mask({0, 1, 2, 3}));
    EXPECT_EQ(ToggledAffinity(menu, 0, Mask({0, 1})), std::nullopt);  // changed outside
    EXPECT_EQ(ToggledAffinity({true, true}, 0, Mask({0, 1, 5})),
              std::nullopt);  // a processor beyond the menu
}

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

// Lowering the priority needs no privilege; a thread already running is lowered too.
TEST(ProcessPriority, EveryThreadOfTheProcessTakesIt) {
    std::atomic<pid_t> thread{0};
    std::atomic<bool> done{false};
    std::thread other([&] {
        thread = gettid();
        while (!done) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    });
    while (thread == 0) std::this_thread::yield();
    EXPECT_TRUE(SetProcessPriority(ProcessPriority::Low));
    EXPECT_EQ(getpriority(PRIO_PROCESS, static_cast<id_t>(thread.load())), NiceValue(ProcessPriority::Low));
    EXPECT_EQ(CurrentPriority(), ProcessPriority::Low);
    done = true;
    other.join();
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
