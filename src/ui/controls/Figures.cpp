#include "ui/controls/Figures.h"

#include <QFontMetricsF>
#include <QPainter>

#include <cmath>

Figures::Figures(QQuickItem *parent)
    : QQuickPaintedItem(parent)
{
}

void Figures::setText(const QString &text)
{
    if (m_text != text) {
        m_text = text;
        measure();
        Q_EMIT textChanged();
    }
}

void Figures::setFont(const QFont &font)
{
    if (m_font != font) {
        m_font = font;
        m_digitWidth = std::ceil(QFontMetricsF(m_font).horizontalAdvance(u'0'));
        measure();
        Q_EMIT fontChanged();
    }
}

void Figures::setColor(const QColor &color)
{
    if (m_color != color) {
        m_color = color;
        update();
        Q_EMIT colorChanged();
    }
}

double Figures::widthOf(QChar figure) const
{
    return figure.isDigit() ? m_digitWidth : QFontMetricsF(m_font).horizontalAdvance(figure);
}

void Figures::measure()
{
    double width = 0;
    for (const QChar figure : m_text) {
        width += widthOf(figure);
    }
    setImplicitSize(std::ceil(width), std::ceil(QFontMetricsF(m_font).height()));
    update();
}

void Figures::paint(QPainter *painter)
{
    painter->setFont(m_font);
    painter->setPen(m_color);
    double end = width();
    for (auto figure = m_text.crbegin(); figure != m_text.crend(); ++figure) {
        const double own = widthOf(*figure);
        end -= own;
        painter->drawText(QRectF(end, 0, own, height()), Qt::AlignHCenter | Qt::TextDontClip, *figure);
    }
}
