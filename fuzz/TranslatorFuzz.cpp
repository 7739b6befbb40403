// English from arbitrary tables: a text that a template matches is made of its pieces and the values found, and a table
// that knows nothing changes nothing.
#include "FuzzFile.h"

#include "ui/words/TranslationTable.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    // The text, and keys and values in turn.
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    QStringList parts = QString::fromUtf8(bytes).split(QChar(u'\0'));
    const QString text = parts.takeFirst();
    QMap<QString, QString> english;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        english.insert(parts[i], parts[i + 1]);
    }
    const TranslationTable table(english);
    const QString translated = table.translateEnglish(text);
    require(!english.contains(text) || translated == english[text]);
    require(
        table.english().contains(text) || table.uppercase().contains(text) || table.translateEnglish(text, 4) == text);
    for (const TranslationTable::Pattern &pattern : table.patterns()) {
        if (const auto values = pattern.expression.match(text)) {
            QString again = pattern.expression.fixed.front();
            for (std::size_t i = 0; i < values->size(); ++i) {
                again += (*values)[i].toString() + pattern.expression.fixed[qsizetype(i) + 1];
            }
            require(again == text || again + u'\n' == text);
        }
    }
    require(TranslationTable().translateEnglish(text) == text);
    (void)TranslationTable::fromJson(bytes).translateEnglish(text);
    return 0;
}
