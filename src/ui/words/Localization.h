// The language of what is shown, and the one operation that every visible text passes through.
//
// All texts are in the code as Polish literals with their values put in. UI thread.
#pragma once

#include <QLocale>
#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace AppLocalizer {

/// "pl" or "en".
[[nodiscard]] QString language();
/// The text as it is to be shown in that language.
[[nodiscard]] QString text(const QString &polish);
/// How numbers and units are written in that language.
[[nodiscard]] QLocale locale();

/// Makes lists and searches follow the language; before the model is made.
void applyToTextOrder();

} // namespace AppLocalizer

/// The text operation for QML.
class L10n : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    using QObject::QObject;

    Q_INVOKABLE [[nodiscard]] QString text(const QString &polish) const { return AppLocalizer::text(polish); }
};
