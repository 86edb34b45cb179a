// Comments of the moves made on the board, kept for the window's life beside the position and
// the line that leads to the commented move.
#include <QInputDialog>
#include <algorithm>

#include "ui/main_window.h"
#include "ui/texts.h"

namespace moremate::ui {

TMainWindow::TMoveComment TMainWindow::CommentKey(size_t index) const {
    const TChessboard& start = m_collection.Current().m_position.board;
    TMoveComment key;
    key.sStart.assign(reinterpret_cast<const char*>(start.squares), 64);
    key.vLine.assign(m_vMoves.begin(),
                     m_vMoves.begin() + static_cast<long>(std::min(index + 1, m_vMoves.size())));
    return key;
}

QString TMainWindow::MoveComment(size_t index) const {
    if (index >= m_vMoves.size() || m_vComments.empty()) return {};
    const TMoveComment key = CommentKey(index);
    for (const TMoveComment& c : m_vComments)
        if (c.sStart == key.sStart && c.vLine == key.vLine) return c.sText;
    return {};
}

void TMainWindow::SetMoveComment(size_t index, const QString& text) {
    if (index >= m_vMoves.size()) return;
    TMoveComment key = CommentKey(index);
    std::erase_if(m_vComments,
                  [&](const TMoveComment& c) { return c.sStart == key.sStart && c.vLine == key.vLine; });
    key.sText = text.trimmed();
    if (!key.sText.isEmpty()) m_vComments.push_back(std::move(key));
    ShowMoves();
}

void TMainWindow::EditMoveComment(size_t index) {
    if (m_collection.Size() == 0) return;
    if (index >= m_vMoves.size()) return Inform(Text("msg.nomovecomment").toStdString());
    bool ok = false;
    const QString text = QInputDialog::getText(this, Title("prob.comment"), Text("cmt.prompt").arg(index + 1),
                                               QLineEdit::Normal, MoveComment(index), &ok);
    if (ok) SetMoveComment(index, text);
}

void TMainWindow::CommentLastMove() {
    EditMoveComment(m_nShown == 0 ? m_vMoves.size() : m_nShown - 1);
}

void TMainWindow::CommentPickedMove() {
    EditMoveComment(m_nCommentRow);
}

}  // namespace moremate::ui
