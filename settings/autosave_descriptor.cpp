#include "autosave_descriptor.h"

#include <signal.h>
#include <unistd.h>

#include <cerrno>

#include "ini_file.h"

namespace moremate {
namespace {

constexpr std::size_t kMaxTextLength = 4095;

std::string ExecutablePath(const std::string& process = "self") {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/" + process + "/exe", error).string();
}

}  // namespace

TAutoSaveDescriptor ReadAutoSaveDescriptor(const std::filesystem::path& path) {
    CIniFile ini(path);
    TAutoSaveDescriptor d;
    d.m_sDescription = ini.ReadString(kAutoSaveSection, "Description", "", kMaxDescriptionLength);
    d.m_nHeuristicsOnStart = static_cast<uint32_t>(ini.ReadInt(kAutoSaveSection, "HeuristicsOnStart", 0));
    d.m_bHeuristicsOnStartSelectedByUser =
        ini.ReadInt(kAutoSaveSection, "HeuristicsOnStartSelectedByUser", 0) != 0;
    d.m_sHeuristicsOnStartString =
        ini.ReadString(kAutoSaveSection, "HeuristicsOnStartString", "", kMaxTextLength);
    d.m_nMaxMemRatioForPrecalculatedData =
        ini.ReadInt(kAutoSaveSection, "MaxMemRatioForPrecalculatedData", 0);
    d.m_nMaxMemRatioPerProblem = ini.ReadInt(kAutoSaveSection, "MaxMemRatioPerProblem", 0);
    d.m_nProcessId = ini.ReadInt(kAutoSaveSection, "ProcessId", 0);
    d.m_sProcessFileName = ini.ReadString(kAutoSaveSection, "ProcessFileName", "", kMaxTextLength);
    return d;
}

bool WriteAutoSaveDescriptor(const std::filesystem::path& path, const TAutoSaveDescriptor& descriptor) {
    CIniFile ini(path);
    const TAutoSaveDescriptor& d = descriptor;
    // Every key is written even after a failure, so that one bad key does not lose the rest.
    bool bWritten = ini.WriteString(kAutoSaveSection, "Description", d.m_sDescription);
    bWritten &= ini.WriteInt(kAutoSaveSection, "HeuristicsOnStart", d.m_nHeuristicsOnStart);
    bWritten &= ini.WriteInt(kAutoSaveSection, "HeuristicsOnStartSelectedByUser",
                             d.m_bHeuristicsOnStartSelectedByUser);
    bWritten &= ini.WriteString(kAutoSaveSection, "HeuristicsOnStartString", d.m_sHeuristicsOnStartString);
    bWritten &= ini.WriteInt(kAutoSaveSection, "MaxMemRatioForPrecalculatedData",
                             d.m_nMaxMemRatioForPrecalculatedData);
    bWritten &= ini.WriteInt(kAutoSaveSection, "MaxMemRatioPerProblem", d.m_nMaxMemRatioPerProblem);
    bWritten &= ini.WriteInt(kAutoSaveSection, "ProcessId", getpid());
    bWritten &= ini.WriteString(kAutoSaveSection, "ProcessFileName", ExecutablePath());
    return bWritten;
}

bool EndedForcibly(const TAutoSaveDescriptor& descriptor) {
    const int pid = descriptor.m_nProcessId;
    if (pid <= 0) return false;
    const bool alive = kill(pid, 0) == 0 || errno == EPERM;
    return !alive || ExecutablePath(std::to_string(pid)) != descriptor.m_sProcessFileName;
}

bool MarkAutoSaveClosed(const std::filesystem::path& path) {
    return CIniFile(path).WriteInt(kAutoSaveSection, "ProcessId", 0);
}

}  // namespace moremate
