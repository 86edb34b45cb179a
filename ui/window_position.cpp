// The main window's position commands: showing the problem and the moves made on the board,
// edits with undo and redo, the position setting mode, the clipboard, and the variants.
#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QToolButton>

#include "board_widget.h"
#include "bulk_paste.h"
#include "click_button.h"
#include "core/chess_exception.h"
#include "core/chessboard_id.h"
#include "core/fen.h"
#include "core/movegen.h"
#include "core/notation.h"
#include "core/transform.h"
#include "core/validation.h"
#include "interface_state.h"
#include "main_window.h"
#include "piece_palette.h"
#include "problems/annotations/mirrored_entry.h"
#include "problems/annotations/problem_variants.h"
#include "problems/format/collection_reader.h"
#include "problems/format/problem_moves.h"
#include "problems/format/record_writer.h"
#include "texts.h"

namespace moremate::ui {
namespace {

// The positions of a line of play from `start`: the start, then one after each move.
std::vector<TChessboard> PlayLine(const TChessboard& start, const std::vector<TMove>& moves, size_t count) {
    std::vector<TChessboard> line;
    line.reserve(count + 1);
    line.push_back(start);
    line.back().previous = nullptr;
    for (size_t i = 0; i < count; ++i) {
        TChessboard child;
        PlayMove(line.back(), moves[i], child);
        line.push_back(child);
    }
    return line;
}

QString StipulationText(const ProblemEntry& entry) {
    switch (entry.m_type) {
        case ProblemType::Selfmate:
            return QString("s#%1").arg(entry.StipulationMoves());
        case ProblemType::Position:
            return "-";
        default:
            return QString("#%1").arg(entry.StipulationMoves());
    }
}

}  // namespace

TChessboard TMainWindow::BoardAfter(size_t moves) const {
    return PlayLine(m_collection.Current().m_position.board, m_vMoves, moves).back();
}

void TMainWindow::ShowProblemHeader() {
    const ProblemEntry& entry = m_collection.Current();
    m_pNumber->setText(Text("label.problem")
                           .arg(QString::number(entry.m_nNumber),
                                QString::number(m_collection.CurrentIndex() + 1),
                                QString::number(m_collection.Size())));
    m_pDescription->setText(QString::fromStdString(entry.m_sDescription));
    m_pDescription->setCursorPosition(0);
    m_pStipulation->setText(StipulationText(entry));
    ShowLinks();
    ShowAnnotations();
    UpdateTitle();
}

void TMainWindow::ShowProblem() {
    ShowProblemHeader();
    const ProblemEntry& entry = m_collection.Current();
    m_vMoves = entry.m_vMoves;
    if (m_options.m_bShowMainVariant && m_vMoves.empty()) {
        const TVariants variants = ReadVariants(entry).variants;
        if (const auto main = variants.find(kMainVariantName); main != variants.end())
            m_vMoves = main->second;
    }
    m_nShown = 0;
    m_nPicked = kNoSquare;
    ShowBoard();
}

void TMainWindow::ShowBoard() {
    InterfaceState().m_bPreparingChessboard = true;
    m_pBoard->SetSquares(ShownBoard().squares);
    m_pBoard->SetMarked(m_nPicked);
    ShowMoves();
    InterfaceState().m_bPreparingChessboard = false;
}

void TMainWindow::ShowMoves() {
    m_pMoves->clear();
    const TChessboard& start = m_collection.Current().m_position.board;
    const std::vector<TChessboard> line = PlayLine(start, m_vMoves, m_vMoves.size());
    const int moves = m_collection.Current().StipulationMoves();
    const bool remaining = m_bRemainingMoves && m_collection.Current().m_type == ProblemType::Directmate;
    for (size_t i = 0; i < m_vMoves.size(); ++i) {
        const bool white = line[i].WhiteToMove();
        const size_t ordinal = (i + (start.WhiteToMove() ? 0 : 1)) / 2 + 1;
        const int64_t number =
            remaining ? moves - static_cast<int64_t>(ordinal) + 1 : static_cast<int64_t>(ordinal);
        QString text = QString("%1%2 %3")
                           .arg(number)
                           .arg(white ? "." : "...")
                           .arg(QString::fromStdString(MoveToText(line[i], m_vMoves[i])));
        if (const QString comment = MoveComment(i); !comment.isEmpty()) text += "  {" + comment + "}";
        m_pMoves->addItem(text);
    }
    if (m_nShown > 0) m_pMoves->setCurrentRow(static_cast<int>(m_nShown) - 1);
}

void TMainWindow::Edit(const std::function<void(ProblemEntry&)>& change) {
    if (RefuseWhileAnalysing()) return;
    ProblemEntry entry = m_collection.Current();
    change(entry);
    if (entry == m_collection.Current()) return;
    m_history.Record(m_collection.Current());
    m_collection.SetCurrent(entry);
    ShowProblem();
}

void TMainWindow::Undo() {
    if (RefuseWhileAnalysing() || !m_history.CanUndo()) return;
    m_collection.SetCurrent(m_history.Undo(m_collection.Current()));
    ShowProblem();
}

void TMainWindow::Redo() {
    if (RefuseWhileAnalysing() || !m_history.CanRedo()) return;
    m_collection.SetCurrent(m_history.Redo(m_collection.Current()));
    ShowProblem();
}

void TMainWindow::ChangeStipulation(int delta) {
    if (m_collection.Current().m_type != ProblemType::Directmate) return;
    Edit([delta](ProblemEntry& e) {
        const int moves = std::clamp(e.StipulationMoves() + delta, 1, (kPositionPlies - 1) / 2);
        e.m_nPlies = 2 * moves - 1;
        e.m_position.board.movesLeft = e.m_position.board.movesAtStart = static_cast<int16_t>(e.m_nPlies);
    });
}

void TMainWindow::ClickInSettingMode(int square, Qt::MouseButton button) {
    const std::optional<Piece> chosen = m_pPalette->Chosen();
    if (button == Qt::RightButton) return PutPiece(kNoSquare, square, kEmpty);
    if (chosen) return PutPiece(kNoSquare, square, *chosen);
    if (m_nPicked < 64) {
        const int from = m_nPicked;
        m_nPicked = kNoSquare;
        return PutPiece(from, square, m_collection.Current().m_position.board.squares[from]);
    }
    if (m_collection.Current().m_position.board.squares[square] != kEmpty) m_nPicked = square;
    m_pBoard->SetMarked(m_nPicked);
}

void TMainWindow::DropPiece(int from, int to, Piece piece) {
    if (!m_bSettingMode) return;
    m_nPicked = kNoSquare;
    PutPiece(from, to, piece);
}

// The squares as edited, with the derived fields of a valid position when it is one; the rule
// it breaks goes to the status bar.
void TMainWindow::PutPiece(int from, int to, Piece piece) {
    QString problem;
    Edit([&](ProblemEntry& e) {
        TChessboard& board = e.m_position.board;
        if (from < 64) board.squares[from] = kEmpty;
        if (to < 64) board.squares[to] = piece;
        try {
            Validate(board, true);
        } catch (const ChessException& ex) {
            problem = ex.what();
        }
    });
    m_pBoard->SetMarked(m_nPicked);
    Say(problem.isEmpty() ? Text("label.setting") : problem);
}

void TMainWindow::ClickSquare(int square, Qt::MouseButton button) {
    if (m_bSettingMode) return ClickInSettingMode(square, button);
    if (button != Qt::LeftButton) return;
    ClickMove(square);
}

// Click-click: the first click picks a piece of the side to move, the second plays the legal
// move to the square clicked (a promotion to a queen), or picks another piece.
void TMainWindow::ClickMove(int square) {
    const TChessboard board = ShownBoard();
    const Piece piece = board.squares[square];
    if (m_nPicked >= 64 || (piece != kEmpty && ColourOf(piece) == board.ToMove())) {
        m_nPicked = piece != kEmpty && ColourOf(piece) == board.ToMove() ? square : kNoSquare;
        m_pBoard->SetMarked(m_nPicked);
        return;
    }
    TMoveList list;
    GenerateLegalMoves(board, list);
    for (const TMove& move : list) {
        if (move.from != m_nPicked || move.to != square) continue;
        if (move.PromotedType() != 0 && move.PromotedType() != kQueen) continue;
        m_nPicked = kNoSquare;
        return PlayMadeMove(move);
    }
    m_nPicked = kNoSquare;
    m_pBoard->SetMarked(m_nPicked);
}

void TMainWindow::PlayMadeMove(const TMove& move) {
    m_vMoves.resize(m_nShown);
    m_vMoves.push_back(move);
    ++m_nShown;
    ShowBoard();
}

void TMainWindow::MoveBack() {
    if (m_nShown == 0) return;
    --m_nShown;
    ShowBoard();
}

void TMainWindow::MoveForward() {
    if (m_nShown >= m_vMoves.size()) return;
    ++m_nShown;
    ShowBoard();
}

void TMainWindow::ToggleSettingMode() {
    if (!m_bSettingMode && RefuseWhileAnalysing()) return;
    m_bSettingMode = !m_bSettingMode;
    m_nPicked = kNoSquare;
    m_pPalette->Choose(std::nullopt);
    m_pPalette->setVisible(m_bSettingMode);
    m_pBoard->SetDragging(m_bSettingMode);
    if (m_bSettingMode) {
        m_vMoves.clear();
        m_nShown = 0;
        ShowBoard();
    }
    Say(m_bSettingMode ? Text("label.setting") : Text("label.ready"));
}

void TMainWindow::CopyRecord(bool variants, bool tags) {
    ProblemEntry entry = m_collection.Current();
    if (!variants) entry.m_annotations.vsVariantLines.clear();
    if (!tags) entry.m_annotations.vsTags.clear();
    QApplication::clipboard()->setText(QString::fromStdString(WriteRecord(entry)));
}

void TMainWindow::CopyFen() {
    QApplication::clipboard()->setText(QString::fromStdString(WriteFenPlacement(ShownBoard())));
}

void TMainWindow::CopyFullFen() {
    QApplication::clipboard()->setText(QString::fromStdString(WriteFen(ShownBoard())));
}

void TMainWindow::CopyMoves() {
    const TChessboard& start = m_collection.Current().m_position.board;
    QApplication::clipboard()->setText(QString::fromStdString(MoveSequenceText(start, m_vMoves)));
}

// The current problem with the clipboard's text pasted into it: a FEN replaces the position, a
// problem record the problem (its number kept). None when the text is neither.
std::optional<ProblemEntry> TMainWindow::PastedEntry(const std::string& text) {
    ProblemEntry entry = m_collection.Current();
    if (ReadFen(text, entry.m_position.board)) return entry;
    std::vector<ProblemEntry> pasted;
    try {
        ReadCollectionText(text, pasted, {{&m_reporter, m_nLanguage}, {}});
    } catch (const ChessException&) {
        pasted.clear();
    }
    if (pasted.empty()) return std::nullopt;
    pasted.front().m_nNumber = entry.m_nNumber;
    return pasted.front();
}

void TMainWindow::ReportPasteFailure(const std::string& why) {
    Inform(Text("msg.pastefail").toStdString() + (why.empty() ? "" : "\n" + why));
}

// A position or a problem replaces the current one; moves are played on from the position shown.
void TMainWindow::Paste() {
    const std::string text = QApplication::clipboard()->text().trimmed().toStdString();
    try {
        if (const std::optional<ProblemEntry> entry = PastedEntry(text))
            return Edit([&entry](ProblemEntry& e) { e = *entry; });
        if (RefuseWhileAnalysing()) return;
        const std::vector<TMove> moves = ReadMoveSequence(text, ShownBoard());
        m_vMoves.resize(m_nShown);
        m_vMoves.insert(m_vMoves.end(), moves.begin(), moves.end());
        m_nShown = m_vMoves.size();
        ShowBoard();
    } catch (const ChessException& e) {
        ReportPasteFailure(e.what());
    }
}

void TMainWindow::PasteAsMirror() {
    const std::string text = QApplication::clipboard()->text().trimmed().toStdString();
    try {
        const std::optional<ProblemEntry> entry = PastedEntry(text);
        if (!entry) return ReportPasteFailure("");
        Edit([&entry](ProblemEntry& e) { e = MirroredEntry(*entry); });
    } catch (const ChessException& e) {
        ReportPasteFailure(e.what());
    }
}

// The problems of the clipboard go after the last one; the first of them is shown.
void TMainWindow::BulkPasteText(bool prizedOnly) {
    if (RefuseWhileAnalysing()) return;
    const TBulkPaste paste =
        ReadBulkPaste(QApplication::clipboard()->text().toStdString(),
                      m_options.m_nMaxStipulationForBulkInsert, prizedOnly, {&m_reporter, m_nLanguage});
    if (!paste.entries.empty()) {
        m_collection.AddProblems(paste.entries);
        m_history.Clear();
        ShowProblem();
    }
    std::string text = Text("msg.bulkadded").arg(paste.entries.size()).toStdString();
    for (const std::string& fault : paste.faults) text += "\n" + fault;
    Inform(text);
}

void TMainWindow::ShiftPosition(int files, int ranks) {
    QString problem;
    try {
        Edit([&](ProblemEntry& e) {
            if (const auto fault = Shift(e.m_position.board, files, ranks))
                problem = QString::fromStdString(*fault);
        });
    } catch (const ChessException& e) {
        problem = e.what();
    }
    if (!problem.isEmpty()) Say(problem);
}

void TMainWindow::RotatePosition() {
    QString problem;
    Edit([&problem](ProblemEntry& e) {
        if (const auto fault = Rotate90(e.m_position.board, e.m_sDescription))
            problem = QString::fromStdString(*fault);
    });
    if (!problem.isEmpty()) Say(problem);
}

void TMainWindow::SwapColoursCommand() {
    QString problem;
    Edit([&problem](ProblemEntry& e) {
        if (const auto fault = SwapColours(e.m_position.board, e.m_sDescription))
            problem = QString::fromStdString(*fault);
    });
    if (!problem.isEmpty()) Say(problem);
}

void TMainWindow::SaveMainVariant() {
    const std::vector<TMove> moves = m_vMoves;
    Edit([&moves](ProblemEntry& e) {
        TVariants variants = ReadVariants(e).variants;
        variants[kMainVariantName] = moves;
        WriteVariants(e, variants);
    });
}

void TMainWindow::ShowMainVariant() {
    const TVariants variants = ReadVariants(m_collection.Current()).variants;
    const auto main = variants.find(kMainVariantName);
    if (main == variants.end()) return;
    m_vMoves = main->second;
    m_nShown = m_vMoves.size();
    ShowBoard();
}

void TMainWindow::RotateView() {
    m_pBoard->SetRotated(!m_pBoard->Rotated());
}

void TMainWindow::ToggleProgressSize() {
    m_bProgressLarge = !m_bProgressLarge;
    m_pProgress->setMaximumHeight(m_bProgressLarge ? QWIDGETSIZE_MAX : 140);
    m_pMoves->setVisible(!m_bProgressLarge);
}

void TMainWindow::PositionId() {
    const QString id = QString::fromStdString(ToAlphanum6(EncodeId(ShownBoard().squares)));
    QApplication::clipboard()->setText(id);
    Say(Text("label.idcopied").arg(id));
}

}  // namespace moremate::ui
