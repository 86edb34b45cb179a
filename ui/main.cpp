// moremate-gui: the desktop program. Opens the collection named on the command line, else the
// default collection (created when missing), at its first problem. A crash is shown in a dialog
// by the program started anew with kShowCrashArgument and the message.
#include <csignal>
#include <cstring>
#include <filesystem>

#include <QApplication>

#include "crash_dialogs.h"
#include "diagnostics/crash_handler.h"
#include "library_text_reporter.h"
#include "main_window.h"
#include "message_box_reporter.h"
#include "precalc/global/global_registers.h"
#include "settings/program_folder.h"
#include "start_log.h"

namespace {

// The options, their notes reported in the language the options choose once they are read.
moremate::TOptions ReadOptionsReportingInTheirLanguage(moremate::CReporter& reporter) {
    moremate::CRecordingReporter notes;  // every note of the options asks for Ok only
    const moremate::TOptions options = moremate::ReadOptions(moremate::OptionsFilePath(), notes);
    moremate::ui::CLibraryTextReporter translated(reporter, options.m_nLanguageId);
    for (const auto& note : notes.Reports()) translated.Report(note.sTitle, note.sText, note.buttons);
    return options;
}

}  // namespace

int main(int argc, char** argv) {
    using namespace moremate;
    // Past a file-size limit a write then fails with EFBIG and is reported, the old file kept.
    std::signal(SIGXFSZ, SIG_IGN);
    QApplication app(argc, argv);
    QApplication::setApplicationName("moremate");
    // Started anew by the crash handler of a crashed instance, to show its message.
    if (argc == 3 && std::strcmp(argv[1], diagnostics::kShowCrashArgument) == 0)
        return ui::ShowCrashMessage(QString::fromUtf8(argv[2]));
    ui::CMessageBoxReporter reporter;
    const TOptions options = ReadOptionsReportingInTheirLanguage(reporter);
    std::error_code error;
    diagnostics::InstallCrashHandler(options, std::filesystem::read_symlink("/proc/self/exe", error));
    ui::AppendStartLog(true);
    ui::TMainWindow window(options, reporter);
    TGlobalRegisters::Instance().Configure(TGlobalRegisterSettings::FromOptions(options), &window.Reporter());
    const QStringList arguments = QApplication::arguments();
    const bool opened = arguments.size() > 1 && window.OpenCollection(arguments.at(1).toStdString());
    if (!opened && !window.OpenDefaultCollection()) return 2;
    window.show();
    window.ShowRecoveryNotice();
    const int status = QApplication::exec();
    reporter.Close();  // a run still ending must not wait for a message box
    ui::AppendStartLog(false);
    return status;
}
