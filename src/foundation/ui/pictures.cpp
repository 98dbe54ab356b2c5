#include "foundation/ui/pictures.h"

#include <QPainter>
#include <QPainterPath>

namespace tq::pictures {

namespace {

const QColor kInk(0x1f, 0x4e, 0x79);
const QColor kFill(0xd6, 0xe9, 0xf8);
const QColor kAccent(0xc0, 0x39, 0x2b);

// Draws on a 100 x 100 canvas scaled to the requested size.
template <typename Draw>
QPixmap paint(int size, Draw draw)
{
    QPixmap pm(size, size);
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    p.scale(size / 100.0, size / 100.0);
    p.setPen(QPen(kInk, 4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(kFill);
    draw(p);
    return pm;
}

void person(QPainter& p, qreal x, qreal y, qreal s)
{
    p.drawEllipse(QPointF(x, y), 11 * s, 11 * s);
    QPainterPath body;
    body.moveTo(x - 22 * s, y + 44 * s);
    body.cubicTo(x - 22 * s, y + 14 * s, x + 22 * s, y + 14 * s, x + 22 * s, y + 44 * s);
    body.closeSubpath();
    p.drawPath(body);
}

}  // namespace

QPixmap flask(int size)
{
    return paint(size, [](QPainter& p) {
        QPainterPath f;
        f.moveTo(40, 10);
        f.lineTo(60, 10);
        f.lineTo(60, 40);
        f.lineTo(85, 85);
        f.quadTo(87, 92, 78, 92);
        f.lineTo(22, 92);
        f.quadTo(13, 92, 15, 85);
        f.lineTo(40, 40);
        f.closeSubpath();
        p.drawPath(f);
        QPainterPath liquid;
        liquid.moveTo(27, 64);
        liquid.lineTo(73, 64);
        liquid.lineTo(84, 86);
        liquid.lineTo(16, 86);
        liquid.closeSubpath();
        p.setPen(Qt::NoPen);
        p.setBrush(kAccent);
        p.drawPath(liquid);
        p.setBrush(Qt::white);
        p.drawEllipse(QPointF(45, 76), 4, 4);
        p.drawEllipse(QPointF(58, 70), 3, 3);
    });
}

QPixmap patients(int size)
{
    return paint(size, [](QPainter& p) { person(p, 50, 28, 1.4); });
}

QPixmap exams(int size)
{
    return paint(size, [](QPainter& p) {
        p.save();
        p.translate(50, 50);
        p.rotate(25);
        p.drawRoundedRect(QRectF(-11, -42, 22, 80), 11, 11);
        p.setPen(Qt::NoPen);
        p.setBrush(kAccent);
        p.drawRoundedRect(QRectF(-8, 2, 16, 33), 8, 8);
        p.restore();
    });
}

QPixmap employees(int size)
{
    return paint(size, [](QPainter& p) {
        person(p, 30, 32, 1.0);
        person(p, 70, 32, 1.0);
        person(p, 50, 42, 1.15);
    });
}

QPixmap invoice(int size)
{
    return paint(size, [](QPainter& p) {
        p.setBrush(Qt::white);
        p.drawRect(QRectF(22, 10, 56, 80));
        for (int y = 28; y <= 52; y += 12)
            p.drawLine(QPointF(32, y), QPointF(68, y));
        QFont f;
        f.setPixelSize(26);
        f.setBold(true);
        p.setFont(f);
        p.setPen(kAccent);
        p.drawText(QRectF(22, 56, 56, 32), Qt::AlignCenter, QStringLiteral("L"));
    });
}

QPixmap results(int size)
{
    return paint(size, [](QPainter& p) {
        p.setBrush(Qt::white);
        p.drawRoundedRect(QRectF(20, 14, 60, 78), 4, 4);
        p.setBrush(kFill);
        p.drawRoundedRect(QRectF(36, 6, 28, 14), 3, 3);
        p.setPen(QPen(kAccent, 5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        p.drawPolyline(QPolygonF({QPointF(32, 52), QPointF(44, 66), QPointF(68, 36)}));
    });
}

QPixmap exitDoor(int size)
{
    return paint(size, [](QPainter& p) {
        p.setBrush(Qt::white);
        p.drawRect(QRectF(18, 10, 44, 80));
        p.setBrush(kFill);
        QPainterPath door;
        door.moveTo(18, 10);
        door.lineTo(46, 18);
        door.lineTo(46, 96);
        door.lineTo(18, 90);
        door.closeSubpath();
        p.drawPath(door);
        p.setPen(QPen(kAccent, 6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        p.drawLine(QPointF(60, 50), QPointF(90, 50));
        p.drawPolyline(QPolygonF({QPointF(80, 40), QPointF(90, 50), QPointF(80, 60)}));
    });
}

QPixmap light(int size)
{
    return paint(size, [](QPainter& p) {
        p.setBrush(QColor(0xf1, 0xc4, 0x0f));
        p.drawEllipse(QPointF(50, 50), 36, 36);
    });
}

}  // namespace tq::pictures
