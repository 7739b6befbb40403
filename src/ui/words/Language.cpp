#include "ui/words/Language.h"

#include "ui/words/Localization.h"

#include <QQmlEngine>

namespace {

const QString settingsKey = QStringLiteral("appLanguage");
const QString bySystem = QStringLiteral("system");
const QStringList choices = {bySystem, QStringLiteral("pl"), QStringLiteral("en")};

Language *programsOwn = nullptr;

} // namespace

Language::Language(Settings &settings, QStringList preferredLanguages)
    : m_settings(&settings)
    , m_preferredLanguages(std::move(preferredLanguages))
{
    programsOwn = this;
    AppLocalizer::setLanguage(AppLocalizer::languageFor(choice(), m_preferredLanguages));
}

Language::Language(QObject *parent)
    : QObject(parent)
{
}

Language::~Language()
{
    if (programsOwn == this) {
        programsOwn = nullptr;
    }
}

Language *Language::create(QQmlEngine *engine, QJSEngine *)
{
    if (!programsOwn) {
        return new Language(engine);
    }
    QQmlEngine::setObjectOwnership(programsOwn, QQmlEngine::CppOwnership);
    return programsOwn;
}

QString Language::choice() const
{
    const QString kept = m_settings ? m_settings->text(settingsKey).value_or(bySystem) : bySystem;
    return choices.contains(kept) ? kept : bySystem;
}

void Language::setChoice(const QString &choice)
{
    if (!m_settings || !choices.contains(choice) || choice == this->choice()) {
        return;
    }
    m_settings->setText(settingsKey, choice);
    const QString language = AppLocalizer::languageFor(choice, m_preferredLanguages);
    const bool isOther = language != code();
    if (isOther) {
        AppLocalizer::setLanguage(language);
    }
    Q_EMIT choiceChanged();
    if (isOther) {
        Q_EMIT codeChanged();
    }
}

QString Language::code() const
{
    return AppLocalizer::language();
}
