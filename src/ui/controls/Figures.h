// A number, a time of day or a length whose digits stand under those of others, from the right, for QML. The font's own
// digits are of different widths, and Qt 6.4 cannot ask it for others.
//
// Painted rather than made of items: a long list changes hundreds of them in a frame. Has no place in the accessibility
// tree: what it stands in speaks for it. UI thread.
#pragma once

#include <QColor>
#include <QFont>
#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

class Figures : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    Q_PROPERTY(QFont font READ font WRITE setFont NOTIFY fontChanged)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)

public:
    explicit Figures(QQuickItem *parent = nullptr);

    [[nodiscard]] QString text() const { return m_text; }
    void setText(const QString &text);
    [[nodiscard]] QFont font() const { return m_font; }
    void setFont(const QFont &font);
    [[nodiscard]] QColor color() const { return m_color; }
    void setColor(const QColor &color);

    void paint(QPainter *painter) override;

Q_SIGNALS:
    void textChanged();
    void fontChanged();
    void colorChanged();

private:
    void measure();
    [[nodiscard]] double widthOf(QChar figure) const;

    QString m_text;
    QFont m_font;
    QColor m_color = Qt::black;
    double m_digitWidth = 0; ///< of each digit
};
