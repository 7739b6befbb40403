// From Polish texts to English ones, by a table whose keys are Polish texts.
//
// A key is a plain text or a template with "{0}", "{1}", … in the places of values; the English text can have the same
// places in any order. A text is translated with its values already in it: the templates are held against it, those
// with the longest fixed text first. What the table does not know stays as it is. Immutable; any thread.
//
// A template matches as the expression "^fixed([\s\S]*?)fixed([\s\S]*?)fixed$" would, but in one pass: an expression
// tries the ends of its lazy groups by backtracking, which takes quadratic time on a long text and gives up at a limit.
#pragma once

#include <QHash>
#include <QMap>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

/// A text taken apart at its places: one more fixed piece than places.
struct TemplateText {
    struct Place {
        qint64 number = 0;
        QString written;
    };
    QStringList fixed;
    std::vector<Place> places;

    [[nodiscard]] static TemplateText of(const QString &text);
    /// The values of a whole text of this template, in the order of the places; each as short as it can be.
    [[nodiscard]] std::optional<std::vector<QStringView>> match(QStringView text) const;
    /// The text with these values; a place without one stays as it is written.
    [[nodiscard]] QString filled(const QHash<qint64, QString> &values) const;
};

class TranslationTable {
public:
    struct Pattern {
        TemplateText expression;
        QString translated;
        qsizetype literalLength = 0; ///< of the key without its places, in characters
    };

    TranslationTable() = default;
    explicit TranslationTable(const QMap<QString, QString> &english);
    /// Of one JSON object whose values are texts; anything else gives an empty table.
    [[nodiscard]] static TranslationTable fromJson(const QByteArray &json);

    [[nodiscard]] QString translateEnglish(const QString &text, int depth = 0) const;

    [[nodiscard]] const QHash<QString, QString> &english() const { return m_english; }
    /// The same in capitals, for labels that are shown in them.
    [[nodiscard]] const QHash<QString, QString> &uppercase() const { return m_uppercase; }
    /// In the order in which they are tried.
    [[nodiscard]] const std::vector<Pattern> &patterns() const { return m_patterns; }

private:
    [[nodiscard]] std::optional<QString> byPattern(const QString &text, int depth) const;
    [[nodiscard]] QString filledIn(const Pattern &pattern, const std::vector<QStringView> &captured, int depth) const;

    QHash<QString, QString> m_english;
    QHash<QString, QString> m_uppercase;
    std::vector<Pattern> m_patterns;
    /// Those that a text can match by its first character, in their order: m_open is for all characters that begin no
    /// template, and holds the templates that begin with a place; so does each of the others.
    QHash<QChar, std::vector<std::size_t>> m_beginning;
    std::vector<std::size_t> m_open;
};
