#include "ui/words/TranslationTable.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTextBoundaryFinder>

#include <algorithm>
#include <array>

namespace {

constexpr int deepest = 3; ///< below that, only whole texts are looked up

/// A translation that begins so explains a message that is itself translated.
const QString explanation = QStringLiteral("{0}\n\n");
/// A translation that begins so has a list of labels for its first value.
const QString missingTags = QStringLiteral("Tags not found: ");
const QString listSeparator = QStringLiteral(", ");

/// What follows one of these is a name, or a text of the system: it stays as it came.
const std::array<QString, 4> prefixes = {
    QStringLiteral("Nie odczytano tagów: "),
    QStringLiteral("Nie udało się pobrać okładki: "),
    QStringLiteral("Odsłuch na Macu · "),
    QStringLiteral("Wybór grafiki nie zmienia sprzętu ani firmware. "),
};

qsizetype characterCount(const QString &text)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype count = 0;
    while (finder.toNextBoundary() >= 0) {
        ++count;
    }
    return count;
}

} // namespace

TemplateText TemplateText::of(const QString &text)
{
    static const QRegularExpression tokens(QStringLiteral("\\{([0-9]+)\\}"));
    TemplateText result;
    qsizetype cursor = 0;
    for (auto token = tokens.globalMatch(text); token.hasNext();) {
        const QRegularExpressionMatch match = token.next();
        bool isNumber = false;
        const qint64 number = match.capturedView(1).toLongLong(&isNumber);
        if (isNumber) { // one that is too large is no place
            result.fixed.append(text.sliced(cursor, match.capturedStart() - cursor));
            result.places.push_back({number, match.captured()});
            cursor = match.capturedEnd();
        }
    }
    result.fixed.append(text.sliced(cursor));
    return result;
}

std::optional<std::vector<QStringView>> TemplateText::match(QStringView text) const
{
    text = text.isNull() ? QStringView(u"") : text; // which begins and ends with an empty text
    const QString &last = fixed.back();
    if (!text.startsWith(fixed.front())) {
        return std::nullopt;
    }
    const auto endsAt = [&](qsizetype end) { return text.first(end).endsWith(last); };
    // An expression's "$" is before a line feed at the end too, and the shorter value comes first.
    const bool canEndEarly = text.endsWith(u'\n') && endsAt(text.size() - 1);
    if (!canEndEarly && !endsAt(text.size())) {
        return std::nullopt;
    }
    std::vector<QStringView> values;
    qsizetype cursor = fixed.front().size();
    for (qsizetype i = 1; i + 1 < fixed.size(); ++i) { // each as early as possible leaves most room for the others
        const qsizetype found = text.indexOf(fixed[i], cursor);
        if (found < 0) {
            return std::nullopt;
        }
        values.push_back(text.sliced(cursor, found - cursor));
        cursor = found + fixed[i].size();
    }
    for (const qsizetype end : {text.size() - 1, text.size()}) {
        const bool isEnd = end == text.size() ? endsAt(end) : canEndEarly;
        if (isEnd && end - last.size() >= cursor) {
            values.push_back(text.sliced(cursor, end - last.size() - cursor));
            return values;
        }
    }
    return std::nullopt;
}

QString TemplateText::filled(const QHash<qint64, QString> &values) const
{
    QString result = fixed.front();
    for (std::size_t i = 0; i < places.size(); ++i) {
        result += values.value(places[i].number, places[i].written) + fixed[qsizetype(i) + 1];
    }
    return result;
}

TranslationTable TranslationTable::fromJson(const QByteArray &json)
{
    const QJsonObject object = QJsonDocument::fromJson(json).object();
    QMap<QString, QString> english;
    for (auto entry = object.begin(); entry != object.end(); ++entry) {
        if (!entry->isString()) {
            return {};
        }
        english.insert(entry.key(), entry->toString());
    }
    return TranslationTable(english);
}

TranslationTable::TranslationTable(const QMap<QString, QString> &english)
{
    for (auto entry = english.begin(); entry != english.end(); ++entry) {
        m_english.insert(entry.key(), entry.value());
        if (const QString upper = entry.key().toUpper(); !m_uppercase.contains(upper)) {
            m_uppercase.insert(upper, entry.value().toUpper());
        }
        TemplateText expression = TemplateText::of(entry.key());
        if (!expression.places.empty()) {
            const qsizetype length = characterCount(expression.fixed.join(QString()));
            m_patterns.push_back({std::move(expression), entry.value(), length});
        }
    }
    // The keys came in ascending order, which stays that of equal lengths.
    std::stable_sort(m_patterns.begin(), m_patterns.end(),
        [](const Pattern &a, const Pattern &b) { return a.literalLength > b.literalLength; });
    for (const Pattern &pattern : m_patterns) {
        if (const QString &beginning = pattern.expression.fixed.front(); !beginning.isEmpty()) {
            m_beginning.insert(beginning.front(), {});
        }
    }
    for (std::size_t i = 0; i < m_patterns.size(); ++i) {
        if (const QString &beginning = m_patterns[i].expression.fixed.front(); !beginning.isEmpty()) {
            m_beginning[beginning.front()].push_back(i);
            continue;
        }
        m_open.push_back(i);
        for (std::vector<std::size_t> &candidates : m_beginning) {
            candidates.push_back(i);
        }
    }
}

QString TranslationTable::translateEnglish(const QString &text, int depth) const
{
    if (const auto known = m_english.constFind(text); known != m_english.cend()) {
        return *known;
    }
    if (const auto known = m_uppercase.constFind(text); known != m_uppercase.cend()) {
        return *known;
    }
    if (depth > deepest) {
        return text;
    }
    if (const std::optional<QString> translated = byPattern(text, depth)) {
        return *translated;
    }
    if (text.contains(u'\n')) {
        QStringList lines = text.split(u'\n');
        for (QString &line : lines) {
            line = translateEnglish(line, depth + 1);
        }
        return lines.join(u'\n');
    }
    const auto prefix
        = std::find_if(prefixes.begin(), prefixes.end(), [&](const QString &p) { return text.startsWith(p); });
    return prefix == prefixes.end() ? text : m_english.value(*prefix, *prefix) + text.sliced(prefix->size());
}

std::optional<QString> TranslationTable::byPattern(const QString &text, int depth) const
{
    const auto beginning = text.isEmpty() ? m_beginning.cend() : m_beginning.constFind(text.front());
    const std::vector<std::size_t> &candidates = beginning == m_beginning.cend() ? m_open : *beginning;
    // A template with more characters than the text has code units is longer than the text.
    const auto first = std::partition_point(
        candidates.begin(), candidates.end(), [&](std::size_t i) { return m_patterns[i].literalLength > text.size(); });
    for (auto candidate = first; candidate != candidates.end(); ++candidate) {
        const Pattern &pattern = m_patterns[*candidate];
        if (const auto captured = pattern.expression.match(text)) {
            return filledIn(pattern, *captured, depth);
        }
    }
    return std::nullopt;
}

QString TranslationTable::filledIn(const Pattern &pattern, const std::vector<QStringView> &captured, int depth) const
{
    const bool isExplanation = pattern.translated.startsWith(explanation);
    QHash<qint64, QString> values;
    for (std::size_t i = 0; i < captured.size(); ++i) {
        const qint64 number = pattern.expression.places[i].number;
        const QString value = captured[i].toString();
        values.insert(number, isExplanation && number == 0 ? translateEnglish(value, depth + 1) : value);
    }
    if (values.contains(0) && pattern.translated.startsWith(missingTags)) {
        QStringList labels = values[0].split(listSeparator);
        for (QString &label : labels) {
            label = m_english.value(label, label);
        }
        values[0] = labels.join(listSeparator);
    }
    return TemplateText::of(pattern.translated).filled(values);
}
