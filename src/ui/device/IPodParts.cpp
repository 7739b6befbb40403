#include "ui/device/IPodParts.h"

#include "ui/device/Shades.h"
#include "ui/pictures/Symbols.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace {

using Shape = IPodProfile::Shape;
using Shades::black;
using Shades::grey;
using Shades::white;

/// The side of a symbol's square to the size that it has as a letter.
constexpr double symbolBox = 1.5;

QRectF square(QPointF centre, double side)
{
    return {centre.x() - side / 2, centre.y() - side / 2, side, side};
}

QLinearGradient downwards(const QRectF &rect, const QGradientStops &stops)
{
    QLinearGradient gradient(rect.topLeft(), rect.bottomLeft());
    gradient.setStops(stops);
    return gradient;
}

/// The middle of the capitals' height is at `centre`.
void drawText(QPainter &painter, QPointF centre, const QString &text, double size, QFont::Weight weight,
    const QColor &colour, double spacing = 0)
{
    constexpr int outline = 200; // pixels; drawn from outlines, a size need not be whole
    QFont font;
    font.setPixelSize(outline);
    font.setWeight(weight);
    font.setLetterSpacing(QFont::AbsoluteSpacing, spacing * outline);
    font.setHintingPreference(QFont::PreferNoHinting);
    const QFontMetricsF metrics(font);
    QPainterPath path;
    path.addText(-(metrics.horizontalAdvance(text) - spacing * outline) / 2, metrics.capHeight() / 2, font, text);
    painter.save();
    painter.translate(centre);
    painter.scale(size / outline, size / outline);
    painter.fillPath(path, colour);
    painter.restore();
}

void drawSymbol(QPainter &painter, QPointF centre, const QString &name, double size, const QColor &colour)
{
    Symbols::paint(painter, name, colour, square(centre, symbolBox * size));
}

enum class Legend : std::uint8_t { Back, Forward, PlayPause, List };

/// A triangle with soft corners, as printed ones have, that points right; as high as it is wide times 1.1.
QPainterPath arrow(double left, double right)
{
    constexpr double softness = 0.09;
    const double half = (right - left) * 0.55;
    QPainterPath sharp;
    sharp.moveTo(left + softness / 2, softness - half);
    sharp.lineTo(right - softness, 0);
    sharp.lineTo(left + softness / 2, half - softness);
    sharp.closeSubpath();
    QPainterPathStroker stroker;
    stroker.setWidth(softness);
    stroker.setJoinStyle(Qt::RoundJoin);
    return stroker.createStroke(sharp).united(sharp);
}

/// Around the origin, for a letter size of 1.
QPainterPath outlineOf(Legend legend)
{
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    switch (legend) {
    case Legend::Back:
    case Legend::Forward:
        path = arrow(-0.4, 0.3);
        path.addRoundedRect(QRectF(0.3, -0.375, 0.11, 0.75), 0.04, 0.04);
        if (legend == Legend::Back) {
            path = QTransform::fromScale(-1, 1).map(path);
        }
        break;
    case Legend::PlayPause:
        path = arrow(-0.6, 0.06);
        path.addRoundedRect(QRectF(0.16, -0.355, 0.13, 0.71), 0.04, 0.04);
        path.addRoundedRect(QRectF(0.42, -0.355, 0.13, 0.71), 0.04, 0.04);
        break;
    case Legend::List:
        for (const double y : {-0.34, -0.05, 0.24}) {
            path.addRoundedRect(QRectF(-0.42, y, 0.84, 0.1), 0.05, 0.05);
        }
        break;
    }
    return path;
}

void drawLegend(QPainter &painter, QPointF centre, Legend legend, double size, const QColor &colour)
{
    const QTransform place = QTransform::fromTranslate(centre.x(), centre.y()).scale(size, size);
    painter.fillPath(place.map(outlineOf(legend)), colour);
}

/// An eighth note, for a letter size of 1 around the origin.
QPainterPath noteOutline()
{
    QPainterPath head;
    head.addEllipse(QPointF(), 0.18, 0.135);
    QPainterPath note = (QTransform::fromTranslate(-0.08, 0.36).rotate(-20)).map(head);
    note.setFillRule(Qt::WindingFill);
    note.addRect(QRectF(0.045, -0.48, 0.05, 0.82));
    note.moveTo(0.045, -0.48);
    note.lineTo(0.095, -0.48);
    note.cubicTo(0.12, -0.27, 0.40, -0.22, 0.31, 0.09);
    note.cubicTo(0.33, -0.12, 0.16, -0.17, 0.045, -0.2);
    note.closeSubpath();
    return note;
}

/// A line just inside a circle's edge.
void drawRim(QPainter &painter, const QRectF &circle, const QColor &colour, double width)
{
    painter.setPen(QPen(colour, width));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(circle.adjusted(width / 2, width / 2, -width / 2, -width / 2));
    painter.setPen(Qt::NoPen);
}

/// The groove around a round part: its upper wall is in the shade, its lower one in the light.
void drawGroove(QPainter &painter, const QRectF &part, double width, double shade, double light)
{
    const QRectF groove = part.adjusted(-width, -width, width, width);
    painter.setPen(Qt::NoPen);
    painter.setBrush(
        downwards(groove, {{0, black(shade)}, {0.4, black(shade / 3)}, {0.6, white(light / 3)}, {1, white(light)}}));
    painter.drawEllipse(groove);
}

void drawDisc(QPainter &painter, const QRectF &disc, const QBrush &brush)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(brush);
    painter.drawEllipse(disc);
}

/// Four buttons that glow from below.
void drawButtonRow(QPainter &painter, QSizeF body)
{
    const double side = 0.13 * body.width();
    const double step = side + 0.075 * body.width();
    QPointF centre(body.width() / 2 - 1.5 * step, 0.49 * body.height());
    for (const Legend legend : {Legend::Back, Legend::List, Legend::PlayPause, Legend::Forward}) {
        const QRectF button = square(centre, side);
        drawGroove(painter, button, 0.005 * body.width(), 0.22, 0.8);
        drawDisc(painter, button, white(0.9));
        drawDisc(painter, button, downwards(button, {{0, black(0)}, {1, black(0.07)}}));
        drawRim(painter, button, Shades::faded(Shades::middleGrey, 0.3), 0.6);
        drawLegend(painter, centre, legend, 0.05 * body.width(), Shades::red);
        centre.rx() += step;
    }
}

void drawHomeButton(QPainter &painter, const IPodFinish &finish, QSizeF body)
{
    const QRectF button = square({body.width() / 2, 0.9 * body.height()}, 0.18 * body.width());
    const bool isDark = finish.home.lightnessF() < 0.5F;
    drawGroove(painter, button, 0.008 * body.width(), 0.25, isDark ? 0.15 : 0.5);
    drawDisc(painter, button, finish.home);
    drawDisc(painter, button,
        isDark ? downwards(button, {{0, white(0)}, {1, white(0.13)}})
               : downwards(button, {{0, black(0.09)}, {1, black(0)}}));
    drawRim(painter, button, Shades::faded(Shades::middleGrey, 0.5), 1);
}

/// Pressed into the body: the light catches its lower edge.
void drawStick(QPainter &painter, const IPodFinish &finish, QSizeF body)
{
    const QPointF mark(body.width() / 2, 0.69 * body.height());
    drawSymbol(painter, mark, QStringLiteral("shuffle"), 0.23 * body.width(), Shades::middleGrey);
    QRectF bar(0, 0, 0.7 * body.width(), 0.02 * body.height());
    bar.moveCenter({body.width() / 2, 0.9 * body.height()});
    painter.setPen(Qt::NoPen);
    painter.setBrush(white(0.7 * std::pow(finish.body.lightnessF(), 2)));
    painter.drawRoundedRect(bar.translated(0, 0.006 * body.width()), bar.height() / 2, bar.height() / 2);
    painter.setBrush(Shades::faded(Shades::middleGrey, 0.25));
    painter.drawRoundedRect(bar, bar.height() / 2, bar.height() / 2);
    painter.setBrush(downwards(bar, {{0, black(0.12)}, {0.5, black(0)}}));
    painter.drawRoundedRect(bar, bar.height() / 2, bar.height() / 2);
}

void drawRemote(QPainter &painter, QSizeF body)
{
    constexpr double lampHeight = 3;
    const double padding = 0.2 * body.width();
    QRectF lamp(0, padding, 0.16 * body.width(), lampHeight);
    lamp.moveLeft((body.width() - lamp.width()) / 2);
    painter.setPen(Qt::NoPen);
    for (const double glow : {3.0, 1.5}) {
        painter.setBrush(Shades::faded(Shades::green, 0.12));
        painter.drawRoundedRect(lamp.adjusted(-glow, -glow, glow, glow), lampHeight / 2 + glow, lampHeight / 2 + glow);
    }
    painter.setBrush(Shades::green);
    painter.drawRoundedRect(lamp, lampHeight / 2, lampHeight / 2);
    const QPointF centre(body.width() / 2, (body.height() + lampHeight) / 2);
    const double size = 0.18 * body.width();
    drawText(
        painter, centre - QPointF(0, 0.012 * body.width()), QStringLiteral("iPod"), size, QFont::DemiBold, black(0.14));
    drawText(painter, centre, QStringLiteral("iPod"), size, QFont::DemiBold, white(0.7));
}

} // namespace

bool IPodParts::hasGreyScreen(const IPodProfile &profile)
{
    return profile.screenRatio == 1.25; // this value alone is that of the early models
}

QColor IPodParts::screenInk(const IPodProfile &profile)
{
    return hasGreyScreen(profile) ? grey(0.24) : white(0.8);
}

void IPodParts::drawScreen(
    QPainter &painter, const IPodProfile &profile, const IPodFinish &finish, const QRectF &screen)
{
    const bool isDark = finish.body.lightnessF() < 0.5F;
    const double step = std::max(1.0, 0.008 * screen.width());
    const QRectF frame = screen.adjusted(-step, -step, step, step);
    painter.setPen(Qt::NoPen);
    painter.setBrush(downwards(frame,
        {{0, black(isDark ? 0.55 : 0.3)}, {0.5, black(isDark ? 0.3 : 0.12)}, {0.9, white(0.1)},
            {1, white(isDark ? 0.22 : 0.7)}}));
    painter.drawRoundedRect(frame, 1 + step, 1 + step);
    painter.setBrush(grey(hasGreyScreen(profile) ? 0.73 : 0.06));
    painter.drawRoundedRect(screen, 1, 1);
}

void IPodParts::drawGlass(QPainter &painter, const IPodProfile &profile, const QRectF &screen)
{
    const bool isGrey = hasGreyScreen(profile);
    painter.setPen(Qt::NoPen);
    // The upper and the left wall throw a little shade onto what lies deeper.
    const double depth = 0.035 * screen.width();
    const double shade = isGrey ? 0.26 : 0.5;
    QLinearGradient wall(screen.topLeft(), screen.topLeft() + QPointF(0, depth));
    wall.setStops({{0, black(shade)}, {0.35, black(shade / 3)}, {1, black(0)}});
    painter.fillRect(QRectF(screen.topLeft(), QSizeF(screen.width(), depth)), wall);
    wall.setFinalStop(screen.topLeft() + QPointF(depth, 0));
    wall.setStops({{0, black(shade / 2)}, {0.35, black(shade / 6)}, {1, black(0)}});
    painter.fillRect(QRectF(screen.topLeft(), QSizeF(depth, screen.height())), wall);
    // A faint reflection comes in from the upper left.
    QLinearGradient sheen(screen.topLeft(), screen.topLeft() + QPointF(0.55 * screen.width(), 0.9 * screen.width()));
    const double strength = isGrey ? 0.14 : 0.11;
    sheen.setStops({{0, white(strength)}, {0.35, white(strength / 2.5)}, {0.7, white(0)}});
    painter.fillRect(screen, sheen);

    constexpr double line = 1.2;
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(white(0.25), line));
    painter.drawRoundedRect(screen.adjusted(line / 2, line / 2, -line / 2, -line / 2), 1, 1);
}

void IPodParts::drawScreenWords(QPainter &painter, const IPodProfile &profile, const IPodLayout &layout)
{
    const QRectF &screen = *layout.screen;
    if (profile.shape == Shape::Unknown) {
        drawSymbol(
            painter, screen.center(), QStringLiteral("questionmark"), 0.11 * layout.body.width(), Shades::middleGrey);
        return;
    }
    constexpr double padding = 7;
    constexpr double spacing = 4;
    constexpr double lineHeight = 1.2; // of text and symbols, to their size
    const QColor ink = screenInk(profile);
    const double words = 0.09 * screen.width();
    const double note = 0.26 * screen.width();
    const double height = lineHeight * (words + note) + 2 * spacing + 1;
    double y = screen.center().y() - height / 2;
    drawText(painter, {screen.center().x(), y + lineHeight * words / 2}, QStringLiteral("iPod"), words, QFont::DemiBold,
        ink);
    const double ratio = painter.transform().m11();
    y = std::round((y + lineHeight * words + spacing) * ratio) / ratio; // the line is as fine as a pixel
    painter.fillRect(QRectF(screen.left() + padding, y, screen.width() - 2 * padding, 1), white(0.25));
    y += 1 + spacing;
    const QTransform place
        = QTransform::fromTranslate(screen.center().x(), y + lineHeight * note / 2).scale(note, note);
    painter.fillPath(place.map(noteOutline()), ink);
}

void IPodParts::drawWheel(QPainter &painter, const IPodFinish &finish, const QRectF &wheel, const QString &topLabel)
{
    const double diameter = wheel.width();
    const bool isDark = finish.body.lightnessF() < 0.5F;
    drawGroove(painter, wheel, 0.012 * diameter, isDark ? 0.6 : 0.25, isDark ? 0.16 : 0.85);
    drawDisc(painter, wheel, finish.ring);
    // A dish: its upper half turns away from the light, its lower one towards it.
    drawDisc(painter, wheel, downwards(wheel, {{0, black(0.1)}, {0.5, black(0)}, {0.5, white(0)}, {1, white(0.14)}}));
    QRadialGradient edge(wheel.center(), diameter / 2);
    edge.setStops({{0.3, black(0.1)}, {0.42, black(0)}, {0.86, black(0)}, {0.97, black(0.05)}, {1, black(0.12)}});
    drawDisc(painter, wheel, edge);
    drawRim(painter, wheel, Shades::faded(Shades::middleGrey, 0.3), 0.7);

    const QRectF ring = wheel.adjusted(0.121 * diameter, 0.121 * diameter, -0.121 * diameter, -0.121 * diameter);
    const QPointF centre = wheel.center();
    const bool isWord = topLabel.size() > 1;
    drawText(painter, {centre.x(), ring.top()}, topLabel, (isWord ? 0.057 : 0.1) * diameter, QFont::Medium,
        finish.legend, isWord ? 0.04 : 0);
    drawLegend(painter, {centre.x(), ring.bottom()}, Legend::PlayPause, 0.064 * diameter, finish.legend);
    drawLegend(painter, {ring.left(), centre.y()}, Legend::Back, 0.069 * diameter, finish.legend);
    drawLegend(painter, {ring.right(), centre.y()}, Legend::Forward, 0.069 * diameter, finish.legend);

    const QRectF button = square(centre, 0.33 * diameter);
    const bool darkButton = finish.centre.lightnessF() < 0.5F;
    drawGroove(painter, button, 0.009 * diameter, 0.3, darkButton ? 0.2 : 0.7);
    drawDisc(painter, button, finish.centre);
    drawDisc(painter, button,
        darkButton ? downwards(button, {{0, white(0.12)}, {0.6, white(0)}, {1, black(0.2)}})
                   : downwards(button, {{0, black(0)}, {0.4, black(0.015)}, {1, black(0.1)}}));
    drawRim(painter, button, Shades::faded(Shades::middleGrey, 0.4), 0.6);
}

void IPodParts::drawExtras(QPainter &painter, const IPodProfile &profile, const IPodFinish &finish, QSizeF body)
{
    switch (profile.shape) {
    case Shape::Buttons:
        drawButtonRow(painter, body);
        break;
    case Shape::Touch:
        drawHomeButton(painter, finish, body);
        break;
    case Shape::ShuffleStick:
        drawStick(painter, finish, body);
        break;
    case Shape::ShuffleRemote:
        drawRemote(painter, body);
        break;
    default:
        break;
    }
}
