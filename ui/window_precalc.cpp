// The main window's commands on the precalculated data of the position shown: its look-up, the
// generation and the verification of its type's data and the type's longest mates (long tools on
// the engine thread, see window_tests.cpp), and the positions of its type by index.
#include <fmt/format.h>

#include <QInputDialog>
#include <memory>

#include "core/chess_exception.h"
#include "core/fen.h"
#include "main_window.h"
#include "precalc/generator/generator.h"
#include "precalc/generator/longest_mate.h"
#include "precalc/generator/lookahead.h"
#include "precalc/generator/partial_verification.h"
#include "precalc/generator/verification.h"
#include "precalc/types/precalc_files.h"
#include "settings/machine.h"
#include "texts.h"

namespace moremate::ui {
namespace {

// The text `id` in `language` with its %1, %2... filled in by `args` in turn.
std::string Worded(const char* id, int language, std::initializer_list<QString> args = {}) {
    QString text = UiText(id, language);
    for (const QString& arg : args) text = text.arg(arg);
    return text.toStdString();
}

QString Qs(const std::string& text) {
    return QString::fromStdString(text);
}

// The type of the position, or the reason why there is none.
TPrecalcType TypeOf(const TChessboard& board, int language) {
    const std::optional<TPrecalcType> type = TPrecalcType::OfPosition(board.squares);
    if (!type) throw ChessException(Worded("prec.notype", language));
    return *type;
}

unsigned VerificationThreads() {
    return std::max(1u, LogicalProcessorCount());
}

// The line that tells of a type's verification, with its fault file when there are faults.
std::string VerificationLine(const std::string& description, const TVerificationReport& r, int language) {
    const std::string line =
        Worded("prec.checked", language,
               {Qs(description), QString::number(r.m_nChecked), QString::number(r.m_nFaults)});
    return r.m_nFaults != 0 ? line + "\n" + r.m_faultFile.string() : line;
}

// Verifies the type's data: the faults and the line that tells of them.
std::pair<uint64_t, std::string> Verified(const TPrecalcType& type, int language) {
    TGlobalRegisters& registers = TGlobalRegisters::Instance();
    const TVerificationReport r =
        VerifyTypeData(registers, registers.Require(type), VerificationThreads(), false);
    return {r.m_nFaults, VerificationLine(type.Description(), r, language)};
}

}  // namespace

void TMainWindow::PositionInformation() {
    if (RefuseTool()) return;
    StartTool([board = ShownBoard(), language = m_nLanguage](CRunControl&) {
        TGlobalRegister* reg = TGlobalRegisters::Instance().Find(board);
        const int halfMoves = reg ? reg->HalfMovesToMate(board) : kStoredUnknown;
        const QString fen =
            Qs(fmt::format("{} {}", WriteFenPlacement(board), board.WhiteToMove() ? 'w' : 'b'));
        if (halfMoves == kStoredUnknown) return Worded("prec.unknown", language, {fen});
        if (halfMoves == kStoredNoMate) return Worded("prec.nomate", language, {fen});
        if (halfMoves == 0) return Worded("prec.mated", language, {fen});
        return Worded("prec.matesin", language, {fen, QString::number((halfMoves + 1) / 2)});
    });
}

void TMainWindow::PrecalculateType() {
    if (RefuseTool()) return;
    StartTool([run = &m_run, board = ShownBoard(), language = m_nLanguage](CRunControl& control) {
        TGenerationOptions options;
        options.m_pStop = control.StopFlag();  // Stop ends it before the next type or level
        options.m_kind = StorageKindNamed("lz4");
        options.m_nThreads = std::max(1u, LogicalProcessorCount());
        const TPrecalcType type = TypeOf(board, language);
        EnsureTypeData(TGlobalRegisters::Instance(), type, options,
                       [run, language](const TGenerationReport& r) {
                           run->Say(Worded("prec.generated", language,
                                           {Qs(r.m_sDescription), QString::number(r.m_nIndexes),
                                            QString::number(r.m_nLongestMate)}));
                       });
        return fmt::format("{}: {}", type.Description(),
                           TGlobalRegisters::Instance().FileToLoad(type).string());
    });
}

void TMainWindow::VerifyType() {
    if (RefuseTool()) return;
    StartTool([board = ShownBoard(), language = m_nLanguage](CRunControl&) {
        return Verified(TypeOf(board, language), language).second;
    });
}

// What an interrupted or incomplete generation of the type left on disk, verified type by type;
// Stop ends it before the next type.
void TMainWindow::VerifyPartialType() {
    if (RefuseTool()) return;
    StartTool([board = ShownBoard(), language = m_nLanguage](CRunControl& control) {
        const TPartialVerification result =
            VerifyPartialData(TGlobalRegisters::Instance(), TypeOf(board, language), VerificationThreads(),
                              false, control.StopFlag());
        std::string text;
        const auto add = [&text](const std::string& line) { text += (text.empty() ? "" : "\n") + line; };
        for (const auto& [description, report] : result.m_vVerified)
            add(VerificationLine(description, report, language));
        for (const std::string& note : PartialVerificationNotes(result)) add(note);
        return text;
    });
}

// Every type with data on disk in the order of their descriptions, or those from the current
// position's type on; Stop ends the series after the type being verified.
void TMainWindow::VerifyAllTypes(bool fromCurrent) {
    if (RefuseTool()) return;
    StartTool(
        [run = &m_run, board = ShownBoard(), fromCurrent, language = m_nLanguage](CRunControl& control) {
            const std::string from = fromCurrent ? TypeOf(board, language).Description() : "";
            uint64_t faults = 0;
            int types = 0;
            for (const std::string& description : TGlobalRegisters::Instance().TypesOnDisk()) {
                if (description < from) continue;
                if (control.StoppedByUser()) break;
                const auto [typeFaults, line] = Verified(TPrecalcType::ParseAny(description), language);
                run->Say(line);
                faults += typeFaults;
                ++types;
            }
            return Worded("prec.verifiedall", language, {QString::number(types), QString::number(faults)});
        });
}

// The position `step` placements away in the type of the position shown, with the same side to
// move; placements that are no legal position are passed over.
void TMainWindow::StepInType(int step) {
    if (RefuseWhileAnalysing() || m_collection.Size() == 0) return;
    const TChessboard board = ShownBoard();
    try {
        const TPrecalcType type = TypeOf(board, m_nLanguage);
        const std::optional<uint64_t> index =
            NextPlacement(type, type.IndexOf(board.squares), step, board.WhiteToMove());
        TChessboard next;
        if (index && SetUpPlacement(type, *index, board.WhiteToMove(), next)) SetTypePosition(next, *index);
    } catch (const ChessException& e) {
        Inform(e.what());
    }
}

void TMainWindow::SetTypePosition(const TChessboard& board, uint64_t index) {
    Edit([&board](ProblemEntry& e) { e.m_position.board = board; });
    Say(Text("label.typeindex").arg(index));
}

void TMainWindow::PasteTypeIndex() {
    if (RefuseWhileAnalysing() || m_collection.Size() == 0) return;
    try {
        const TPrecalcType type = TypeOf(ShownBoard(), m_nLanguage);
        bool ok = false;
        const QString text = QInputDialog::getText(
            this, Title("adv.typeindex"), Text("label.typeindexprompt").arg(type.PlacementCount() - 1),
            QLineEdit::Normal, QString(), &ok);
        if (!ok) return;
        const uint64_t index = text.trimmed().toULongLong(&ok);
        TChessboard board;
        if (!ok || index >= type.PlacementCount() || !SetUpPlacement(type, index, true, board))
            return Inform(Text("msg.badindex").arg(text).toStdString());
        SetTypePosition(board, index);
    } catch (const ChessException& e) {
        Inform(e.what());
    }
}

// Looks for the next placement (by `step`) holding the type's longest mate on the engine thread
// and, when the run ends, shows it as the problem's position.
void TMainWindow::StepToLongestMate(int step) {
    if (RefuseTool()) return;
    auto found = std::make_shared<std::optional<std::pair<TChessboard, uint64_t>>>();
    StartTool(
        [found, board = ShownBoard(), step, language = m_nLanguage](CRunControl&) {
            const TPrecalcType type = TypeOf(board, language);
            const QString description = Qs(type.Description());
            const CGlobalStorage& storage = TGlobalRegisters::Instance().Require(type).Storage();
            const TLongestMate longest = LongestMate(type, storage);
            if (longest.nValue == 0) return Worded("prec.nomatestored", language, {description});
            const uint64_t from = board.WhiteToMove() ? type.IndexOf(board.squares) : longest.nIndex - step;
            const std::optional<uint64_t> index =
                NextPlacementWith(type, storage, from, step, longest.nValue);
            TChessboard next;
            if (!index || !SetUpPlacement(type, *index, true, next))
                return Worded("prec.nosuchposition", language, {description});
            *found = std::pair(next, *index);
            return Worded("prec.longest", language,
                          {description, QString::number(longest.nValue), QString::number(*index),
                           Qs(WriteFenPlacement(next))});
        },
        [this, found] {
            if (*found) SetTypePosition((*found)->first, (*found)->second);
        });
}

}  // namespace moremate::ui
