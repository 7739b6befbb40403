// The user's choice of the language, kept in the settings, for the menu and the picker that make it.
//
// While it lives, what is shown follows the choice. UI thread.
#pragma once

#include "platform/files/Settings.h"

#include <QObject>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

class QJSEngine;
class QQmlEngine;

class Language : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    /// "system", "pl" or "en".
    Q_PROPERTY(QString choice READ choice WRITE setChoice NOTIFY choiceChanged)
    /// The language that is shown, "pl" or "en".
    Q_PROPERTY(QString code READ code NOTIFY codeChanged)

public:
    /// `settings` outlive it. The languages are the user's, the best first; they count where the choice is "system".
    Language(Settings &settings, QStringList preferredLanguages);
    ~Language() override;
    Language(const Language &) = delete;
    Language &operator=(const Language &) = delete;

    /// For QML: the program's; without a program one that keeps nothing.
    [[nodiscard]] static Language *create(QQmlEngine *engine, QJSEngine *scripts);

    [[nodiscard]] QString choice() const;
    void setChoice(const QString &choice);
    [[nodiscard]] QString code() const;

Q_SIGNALS:
    void choiceChanged();
    /// All that is shown is now to be read anew.
    void codeChanged();

private:
    explicit Language(QObject *parent);

    Settings *m_settings = nullptr;
    QStringList m_preferredLanguages;
};
