#include "ui/words/Localization.h"

#include "platform/text/TextOrder.h"

#include <QCoreApplication>
#include <QFile>
#include <QLibraryInfo>
#include <QTranslator>

namespace {

const QString polish = QStringLiteral("pl");
const QString english = QStringLiteral("en");

QString &shownLanguage()
{
    static QString shown = polish;
    return shown;
}

/// The words of the dialogs that Qt draws itself where the desktop has none.
void translateQt(const QString &language)
{
    auto *application = QCoreApplication::instance();
    for (const QString &part : {QStringLiteral("qtbase_"), QStringLiteral("qtdeclarative_")}) {
        delete application->findChild<QTranslator *>(part); // which takes it out of use
        auto *translator = new QTranslator(application);
        translator->setObjectName(part);
        if (translator->load(part + language, QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
            QCoreApplication::installTranslator(translator);
        }
    }
}

} // namespace

namespace AppLocalizer {

QString languageFor(const QString &choice, const QStringList &preferredLanguages)
{
    if (choice == polish || choice == english) {
        return choice;
    }
    return preferredLanguages.value(0).startsWith(polish) ? polish : english;
}

QString language()
{
    return shownLanguage();
}

void setLanguage(const QString &language)
{
    shownLanguage() = language;
    TextOrder::setLanguage(language == polish ? TextOrder::Language::Polish : TextOrder::Language::English);
    QLocale::setDefault(locale());
    if (QCoreApplication::instance()) {
        translateQt(language);
    }
}

QString text(const QString &polish)
{
    return shownLanguage() == english ? table().translateEnglish(polish) : polish;
}

QLocale locale()
{
    return TextOrder::locale();
}

const TranslationTable &table()
{
    static const TranslationTable read = [] {
        QFile file(QStringLiteral(":/English.json"));
        return file.open(QIODevice::ReadOnly) ? TranslationTable::fromJson(file.readAll()) : TranslationTable();
    }();
    return read;
}

} // namespace AppLocalizer
