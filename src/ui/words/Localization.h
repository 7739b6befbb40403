// The language of what is shown, and the one operation that every visible text passes through.
//
// All texts are in the code as Polish literals with their values put in; English is made of them where they are shown,
// by the table English.json in the resources. UI thread.
#pragma once

#include "ui/words/TranslationTable.h"

#include <QLocale>
#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace AppLocalizer {

/// The language that a choice ("system", "pl" or "en") stands for: "pl" or "en". Any other choice is the system's:
/// Polish where the user prefers it to all others, otherwise English.
[[nodiscard]] QString languageFor(const QString &choice, const QStringList &preferredLanguages);

/// "pl" or "en"; "pl" until one is set.
[[nodiscard]] QString language();
/// Shows everything that is read from now on in that language: texts, numbers and sizes, the order of lists, the words
/// of Qt's own dialogs.
void setLanguage(const QString &language);

/// The text as it is to be shown in that language.
[[nodiscard]] QString text(const QString &polish);
/// How numbers and units are written in that language.
[[nodiscard]] QLocale locale();

/// The program's table, read on first use; empty where it is missing or damaged.
[[nodiscard]] const TranslationTable &table();

} // namespace AppLocalizer

/// The text operation for QML.
class L10n : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    using QObject::QObject;

    Q_INVOKABLE [[nodiscard]] QString text(const QString &polish) const { return AppLocalizer::text(polish); }

    /// Texts in one line, without the empty ones.
    Q_INVOKABLE [[nodiscard]] static QString enumeration(QStringList texts)
    {
        texts.removeAll(QString());
        return texts.join(QStringLiteral(", "));
    }
};
