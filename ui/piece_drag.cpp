#include "piece_drag.h"

#include <QDrag>
#include <QMimeData>
#include <QPainter>
#include <QWidget>

#include "piece_glyphs.h"

namespace moremate::ui {
namespace {

constexpr const char* kMimeType = "application/x-moremate-piece";

}  // namespace

bool DragPiece(QWidget* source, const TDraggedPiece& dragged) {
    auto* data = new QMimeData;
    data->setData(kMimeType, QByteArray::number(dragged.piece) + ' ' + QByteArray::number(dragged.from));
    QPixmap image(40, 40);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    DrawPiece(painter, QRectF(0, 0, 40, 40), dragged.piece);
    painter.end();
    auto* drag = new QDrag(source);
    drag->setMimeData(data);
    drag->setPixmap(image);
    drag->setHotSpot(QPoint(20, 20));
    return drag->exec(Qt::MoveAction) != Qt::IgnoreAction;
}

std::optional<TDraggedPiece> DroppedPiece(const QMimeData* data) {
    if (!data || !data->hasFormat(kMimeType)) return std::nullopt;
    const QList<QByteArray> fields = data->data(kMimeType).split(' ');
    if (fields.size() != 2) return std::nullopt;
    return TDraggedPiece{static_cast<Piece>(fields[0].toUInt()), fields[1].toInt()};
}

}  // namespace moremate::ui
