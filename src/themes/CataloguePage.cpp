#include "themes/Catalogue.h"

#include "platform/text/Characters.h"

#include <QHash>
#include <QRegularExpression>
#include <QTextBoundaryFinder>

#include <algorithm>

namespace Catalogue {

namespace {

/// What the page's parts look like. Possessive quantifiers and (*SKIP) change no match: they keep the engine from
/// looking at the same text again, which a page of "<th<th<th" or of digits would make it do for each character.
struct Pattern {
    QRegularExpression title {
        QStringLiteral("<th[^>]*+(*SKIP)>\\s*+<a href=\"index.php\\?themeid=([0-9]++)[^\"]*+\">([^<]++)</a>")};
    QRegularExpression image {QStringLiteral("<a href=\"index.php\\?themeid=([0-9]++)[^\"]*+\"><img ([^>]++)>")};
    QRegularExpression path {QStringLiteral("(?:^|\\s)path=\"([^\"]*)\"")};
    QRegularExpression over {QStringLiteral("(?:^|\\s)oversrc=\"([^\"]*)\"")};
    QRegularExpression source {QStringLiteral("(?:^|\\s)src=\"([^\"]*)\"")};
    QRegularExpression submitter {QStringLiteral("<strong>Submitter:</strong>\\s*+&nbsp;([^<]++)")};
    QRegularExpression entity {QStringLiteral("&#([0-9]+);")};

    Pattern()
    {
        for (QRegularExpression *each : {&title, &image, &path, &over, &source, &submitter, &entity}) {
            each->setPatternOptions(QRegularExpression::UseUnicodePropertiesOption);
            each->optimize();
        }
    }
};

const Pattern &pattern()
{
    static const Pattern patterns;
    return patterns;
}

/// The first match from `offset` on. The text is known to be valid UTF-16: to look it over each time would take long.
QRegularExpressionMatch matchFrom(const QRegularExpression &expression, QStringView text, qsizetype offset = 0)
{
    return expression.match(
        text, offset, QRegularExpression::NormalMatch, QRegularExpression::DontCheckSubjectStringMatchOption);
}

/// All matches, in order; the same holds for the text.
template <typename Use> void matches(const QRegularExpression &expression, QStringView text, const Use &use)
{
    QRegularExpressionMatch match = matchFrom(expression, text);
    for (; match.hasMatch(); match = matchFrom(expression, text, match.capturedEnd())) {
        use(match);
    }
}

/// Names of those who submitted the themes, found behind the themes' pictures.
class Authors {
public:
    explicit Authors(QStringView html)
        : m_html(html)
    {
    }

    /// The name in the rest of the table's cell behind `place`, if it is not too far away.
    [[nodiscard]] std::optional<QString> behind(qsizetype place)
    {
        const QStringView rest = m_html.sliced(place);
        const QStringView near = rest.first(std::min(rest.size(), authorDistance)); // no character is less than a unit
        const qsizetype cell = near.indexOf(cellEnd);
        const bool isAll = cell >= 0 || near.size() == rest.size();
        const QStringView name = isAll ? nameIn(cell >= 0 ? near.first(cell) : near) : nameInLongCell(place);
        return name.isEmpty() ? std::nullopt : std::optional(decoded(name.toString()).trimmed());
    }

private:
    struct Found {
        qsizetype start;
        QStringView name; ///< not empty
    };

    static QStringView nameIn(QStringView text) { return matchFrom(pattern().submitter, text).capturedView(1); }

    /// Many pictures can be far from the same author and the same end, so that these are looked for once for all.
    [[nodiscard]] QStringView nameInLongCell(qsizetype place)
    {
        if (m_boundaries.empty()) {
            survey();
        }
        const auto author = std::lower_bound(m_found.begin(), m_found.end(), place,
            [](const Found &found, qsizetype wanted) { return found.start < wanted; });
        const auto cell = std::lower_bound(m_cells.begin(), m_cells.end(), place);
        const auto next = std::upper_bound(m_boundaries.begin(), m_boundaries.end(), place);
        const qsizetype end = m_boundaries.end() - next < authorDistance ? m_html.size() : next[authorDistance - 1];
        if (author == m_found.end() || (cell != m_cells.end() && *cell < author->start)) {
            return {};
        }
        const qsizetype left = end - (author->name.begin() - m_html.begin());
        return left > 0 ? author->name.first(std::min(left, author->name.size())) : QStringView();
    }

    void survey()
    {
        matches(pattern().submitter, m_html, [this](const QRegularExpressionMatch &match) {
            m_found.push_back({match.capturedStart(), match.capturedView(1)});
        });
        for (qsizetype at = 0; (at = m_html.indexOf(cellEnd, at)) >= 0; at += cellEnd.size()) {
            m_cells.push_back(at);
        }
        QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, m_html);
        for (qsizetype at = 0; at >= 0; at = finder.toNextBoundary()) {
            m_boundaries.push_back(at);
        }
    }

    static constexpr QStringView cellEnd = u"</td>";
    /// How far behind a picture its theme's author can be, in characters.
    static constexpr qsizetype authorDistance = 10'000;

    QStringView m_html;
    // Empty until needed.
    std::vector<Found> m_found;
    std::vector<qsizetype> m_cells; ///< where they end
    std::vector<qsizetype> m_boundaries; ///< of the page's characters
};

/// A picture on the page, and the theme that it is of.
struct Picture {
    QStringView id;
    QStringView attributes;
    qsizetype end; ///< of the first occurrence of its text
};

/// Places in a list, by the normalized names of themes.
using Names = QHash<QString, qsizetype>;

/// The places of the themes on the page that have one of these names, by the ids that the page gives them.
QHash<QStringView, qsizetype> wantedIds(const QString &html, const Names &names)
{
    QHash<QStringView, QString> titles;
    matches(pattern().title, html, [&](const QRegularExpressionMatch &match) {
        titles.insert(match.capturedView(1), decoded(match.captured(2))); // the last of an id counts
    });
    QHash<QStringView, qsizetype> wanted;
    for (auto title = titles.cbegin(); title != titles.cend(); ++title) {
        const auto name = names.constFind(normalize(*title));
        if (name != names.cend()) {
            wanted.insert(title.key(), *name);
        }
    }
    return wanted;
}

/// The last picture of each wanted theme.
std::vector<std::optional<Picture>> lastPictures(
    const QString &html, const QHash<QStringView, qsizetype> &wanted, qsizetype count)
{
    std::vector<std::optional<Picture>> pictures(std::size_t(count), std::nullopt);
    QHash<QStringView, qsizetype> firstEnds;
    qsizetype taken = 0;
    QRegularExpressionMatch match = matchFrom(pattern().image, html);
    // The first occurrence of a picture's text can lie within another match, so these are looked through as well.
    for (; match.hasMatch(); match = matchFrom(pattern().image, html, match.capturedStart() + 1)) {
        const bool counts = match.capturedStart() >= taken;
        taken = counts ? match.capturedEnd() : taken;
        const auto place = wanted.constFind(match.capturedView(1));
        if (place == wanted.cend()) {
            continue;
        }
        auto first = firstEnds.constFind(match.capturedView());
        if (first == firstEnds.cend()) {
            first = firstEnds.insert(match.capturedView(), match.capturedEnd());
        }
        if (counts) {
            pictures[std::size_t(*place)] = Picture {match.capturedView(1), match.capturedView(2), *first};
        }
    }
    return pictures;
}

QString attribute(const QRegularExpression &expression, QStringView attributes)
{
    const QRegularExpressionMatch match = matchFrom(expression, attributes);
    return match.hasMatch() ? decoded(match.captured(1)) : QString();
}

/// Only what lies below the site's folder of themes: a page can make the program fetch nothing else.
std::optional<PicturePlace> remote(const QString &path, const QUrl &root)
{
    if (!path.startsWith(QLatin1String("themes/")) || path.contains(QLatin1String(".."))) {
        return std::nullopt;
    }
    const QUrl url = address(root, QUrl::toPercentEncoding(path, "!$&'()*+,/:=@"));
    return url.isValid() ? std::optional<PicturePlace>(url) : std::nullopt;
}

ThemePreview record(const Picture &picture, Authors &authors, const QUrl &root)
{
    const QString over = attribute(pattern().over, picture.attributes);
    ThemePreview preview;
    preview.playing = remote(attribute(pattern().source, picture.attributes), root);
    if (!over.isEmpty()) {
        preview.menu = remote(attribute(pattern().path, picture.attributes) + over, root);
    }
    preview.source = QStringLiteral("Zrzuty z katalogu Rockbox (wersja katalogowa)");
    // The kind of device is the same for all: so the site's own pages link to it.
    preview.detail = address(root, "index.php?themeid=" + picture.id.toLatin1() + "&target=ipodvideo");
    preview.author = authors.behind(picture.end);
    return preview;
}

} // namespace

ThemePreviews parseCatalog(const QString &html, const std::vector<Theme> &themes, const QUrl &root)
{
    if (themes.empty() || !html.isValidUtf16()) {
        return {};
    }
    Names names;
    for (const Theme &theme : themes) {
        const QString name = normalize(theme.name());
        if (!names.contains(name)) {
            names.insert(name, names.size());
        }
    }
    const std::vector<std::optional<Picture>> pictures = lastPictures(html, wantedIds(html, names), names.size());
    Authors authors(html);
    std::vector<std::optional<ThemePreview>> records;
    records.reserve(pictures.size());
    for (const std::optional<Picture> &picture : pictures) {
        records.push_back(picture ? std::optional(record(*picture, authors, root)) : std::nullopt);
    }
    ThemePreviews result;
    for (const Theme &theme : themes) {
        if (const auto &preview = records[std::size_t(names.value(normalize(theme.name())))]) {
            result.insert(theme.id(), *preview);
        }
    }
    return result;
}

QString decoded(const QString &text)
{
    if (!text.contains(u'&')) {
        return text;
    }
    QString plain = text;
    plain.replace(QLatin1String("&amp;"), QLatin1String("&")); // first: "&amp;#65;" is an "A" too
    plain.replace(QLatin1String("&quot;"), QLatin1String("\""));
    plain.replace(QLatin1String("&#039;"), QLatin1String("'"));
    plain.replace(QLatin1String("&lt;"), QLatin1String("<"));
    plain.replace(QLatin1String("&gt;"), QLatin1String(">"));
    QString result;
    qsizetype taken = 0;
    for (auto found = pattern().entity.globalMatch(plain); found.hasNext();) {
        const QRegularExpressionMatch match = found.next();
        bool isNumber = false;
        const char32_t code = match.capturedView(1).toUInt(&isNumber);
        if (isNumber && code <= QChar::LastValidCodePoint && !QChar::isSurrogate(code)) {
            result.append(QStringView(plain).sliced(taken, match.capturedStart() - taken));
            result.append(QChar::fromUcs4(code));
            taken = match.capturedEnd();
        }
    }
    return result.append(QStringView(plain).sliced(taken));
}

QString normalize(const QString &text)
{
    // Composed, because names on a disk can be decomposed, and are the same to a reader.
    return lettersAndNumbers(text.toLower()).normalized(QString::NormalizationForm_C);
}

} // namespace Catalogue
