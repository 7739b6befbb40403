// The line icons, by the names under which pages ask for them, drawn in any one colour.
//
// "image://symbol/NAME/AARRGGBB" in QML; the picture fills a square of the requested size. No state; any thread.
#pragma once

#include <QColor>
#include <QImage>
#include <QQuickImageProvider>
#include <QString>
#include <QStringList>

class QPainter;

namespace Symbols {

/// All names.
[[nodiscard]] QStringList names();
/// The icon's file in the program's resources; empty for a name that there is not.
[[nodiscard]] QString file(const QString &name);
/// Null for a name that there is not.
[[nodiscard]] QImage draw(const QString &name, const QColor &colour, int side);

/// The same, filling `rect` of what is being painted. Nothing for a name that there is not.
void paint(QPainter &painter, const QString &name, const QColor &colour, const QRectF &rect);

class Provider : public QQuickImageProvider {
public:
    Provider();
    QImage requestImage(const QString &id, QSize *size, const QSize &requestedSize) override;
};

} // namespace Symbols
