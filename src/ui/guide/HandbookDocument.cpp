#include "ui/guide/HandbookDocument.h"

#include "ui/words/Localization.h"

#include "platform/desktop/Desktop.h"

#include <QAbstractTextDocumentLayout>
#include <QFontMetricsF>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextDocumentFragment>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr double indentOfLists = 1.2; ///< in lines' heights

QVariantList variants(const QList<QRectF> &areas)
{
    return {areas.cbegin(), areas.cend()};
}

} // namespace

HandbookDocument::HandbookDocument(QObject *parent)
    : QObject(parent)
    , m_english(AppLocalizer::language() == QLatin1String("en"))
{
}

void HandbookDocument::setTarget(QQuickTextDocument *target)
{
    if (m_target != target) {
        if (text()) {
            text()->documentLayout()->disconnect(this);
        }
        m_target = target;
        Q_EMIT targetChanged();
        if (text()) {
            connect(text()->documentLayout(), &QAbstractTextDocumentLayout::documentSizeChanged, this,
                &HandbookDocument::takePlaces);
        }
        loadChosen();
    }
}

void HandbookDocument::setStyleSheet(const QString &styleSheet)
{
    if (m_styleSheet != styleSheet) {
        m_styleSheet = styleSheet;
        Q_EMIT styleSheetChanged();
        fill();
    }
}

void HandbookDocument::setEnglish(bool english)
{
    if (m_english != english) {
        m_english = english;
        Q_EMIT englishChanged();
        loadChosen();
    }
}

void HandbookDocument::setTop(double top)
{
    if (m_top == top) {
        return;
    }
    const auto stretch = [this] { return m_viewHeight > 0 ? std::floor(m_top / m_viewHeight) : 0; };
    const double before = stretch();
    m_top = top;
    if (!m_filling && !m_keeping) {
        setPlace(placeAt(top));
    }
    Q_EMIT shownPartChanged();
    if (!m_hits.isEmpty() && stretch() != before) {
        Q_EMIT marksChanged();
    }
}

void HandbookDocument::setViewHeight(double height)
{
    if (m_viewHeight != height) {
        m_viewHeight = height;
        Q_EMIT shownPartChanged();
        Q_EMIT marksChanged();
    }
}

void HandbookDocument::setWanted(const QString &wanted)
{
    if (m_wanted == wanted) {
        return;
    }
    m_wanted = wanted;
    m_hit = -1;
    findHits();
    showHit();
}

QString HandbookDocument::hitText() const
{
    if (m_wanted.isEmpty()) {
        return {};
    }
    return AppLocalizer::text(m_hits.isEmpty() ? QStringLiteral("Brak wyników")
                                               : QStringLiteral("Wynik %1 z %2").arg(m_hit + 1).arg(m_hits.size()));
}

QVariantList HandbookDocument::sections() const
{
    QVariantList result;
    for (const Section &section : m_sections) {
        result.append(QVariantMap {{QStringLiteral("text"), section.text}, {QStringLiteral("anchor"), section.anchor}});
    }
    return result;
}

QVariantList HandbookDocument::marks() const
{
    QVariantList result;
    for (const int hit : m_hits) {
        for (const QRectF &area : HandbookText::areas(*text(), hit, hit + int(m_wanted.size()))) {
            if (area.bottom() > m_top - m_viewHeight && area.top() < m_top + 2 * m_viewHeight) {
                result.append(area);
            }
        }
    }
    return result;
}

QVariantList HandbookDocument::currentMarks() const
{
    return m_hit < 0 ? QVariantList()
                     : variants(HandbookText::areas(*text(), m_hits[m_hit], m_hits[m_hit] + int(m_wanted.size())));
}

void HandbookDocument::goToHit(bool forward)
{
    if (!m_hits.isEmpty()) {
        m_hit = int((m_hit + (forward ? 1 : m_hits.size() - 1)) % m_hits.size());
        Q_EMIT hitsChanged();
        Q_EMIT marksChanged();
        showHit();
    }
}

void HandbookDocument::follow(const QString &link)
{
    using Kind = HandbookText::Destination::Kind;
    const HandbookText::Destination destination = HandbookText::destination(m_loaded, link);
    switch (destination.kind) {
    case Kind::Outside:
        Desktop::openAddress(destination.address);
        break;
    case Kind::Document:
        load(destination.address, {destination.anchor});
        break;
    case Kind::Place:
        if (destination.anchor.isEmpty()) {
            goTo({});
        }
        for (const Section &section : m_sections) {
            if (section.anchor == destination.anchor) {
                goTo(section.anchor);
                Q_EMIT ledTo(section.part);
                break;
            }
        }
        break;
    case Kind::Nowhere:
        break;
    }
}

void HandbookDocument::goTo(const QString &anchor)
{
    setPlace({anchor});
    Q_EMIT scrollWanted(topOf(m_place));
}

void HandbookDocument::setPlace(const Place &place)
{
    const bool moved = m_place.anchor != place.anchor;
    m_place = place;
    if (moved) {
        Q_EMIT sectionChanged();
    }
}

HandbookDocument::Place HandbookDocument::placeAt(double top) const
{
    const auto after = std::find_if(
        m_sections.cbegin(), m_sections.cend(), [top](const Section &section) { return section.top > top; });
    if (after == m_sections.cbegin()) {
        return {{}, top};
    }
    const Section &section = *std::prev(after);
    const double end = after == m_sections.cend() ? m_size.height() : after->top;
    return {section.anchor, (top - section.top) / std::max(1.0, end - section.top)};
}

double HandbookDocument::topOf(const Place &place) const
{
    const auto section = std::find_if(
        m_sections.cbegin(), m_sections.cend(), [&](const Section &each) { return each.anchor == place.anchor; });
    if (section == m_sections.cend()) {
        return place.anchor.isEmpty() ? place.share : 0;
    }
    const auto after = std::next(section);
    const double end = after == m_sections.cend() ? m_size.height() : after->top;
    return section->top + place.share * (end - section->top);
}

void HandbookDocument::load(const QUrl &document, const Place &place)
{
    m_loaded = document;
    setPlace(place);
    fill();
}

/// The document of the chosen language, at the section that was read in the other one.
void HandbookDocument::loadChosen()
{
    const QUrl chosen(m_english ? QStringLiteral("qrc:/guide/en.html") : QStringLiteral("qrc:/guide/index.html"));
    if (text() && m_loaded != chosen) {
        load(chosen, m_place);
    }
}

void HandbookDocument::fill()
{
    if (!text() || m_loaded.isEmpty()) {
        return;
    }
    m_filling = true;
    const std::unique_ptr<QTextDocument> read = HandbookText::read(m_loaded, m_styleSheet);
    text()->setUndoRedoEnabled(false);
    text()->setIndentWidth(QFontMetricsF(text()->defaultFont()).height() * indentOfLists);
    text()->clear();
    QTextCursor(text()).insertFragment(QTextDocumentFragment(read.get()));
    m_filling = false;
    findHits();
    takePlaces();
}

void HandbookDocument::takePlaces()
{
    if (m_filling) {
        return;
    }
    const QTextDocument &shown = *text();
    m_size = shown.documentLayout()->documentSize();
    m_parts.clear();
    m_sections.clear();
    for (const HandbookText::Part &part : HandbookText::parts(shown)) {
        const QList<QRectF> areas = HandbookText::areas(shown, part.begin, part.end);
        if (areas.isEmpty()) {
            continue; // not laid out
        }
        if (!part.anchor.isEmpty()) {
            m_sections.append({part.anchor, part.text, areas.front().top(), int(m_parts.size())});
        }
        m_parts.append(QVariantMap {{QStringLiteral("text"), part.text}, {QStringLiteral("target"), part.target},
            {QStringLiteral("anchor"), part.anchor}, {QStringLiteral("areas"), variants(areas)}});
    }
    m_grounds.clear();
    for (const HandbookText::Ground &ground : HandbookText::grounds(shown)) {
        m_grounds.append(QVariantMap {{QStringLiteral("area"), ground.area}, {QStringLiteral("color"), ground.color}});
    }
    m_rules = variants(HandbookText::rules(shown));
    Q_EMIT placesChanged();
    Q_EMIT marksChanged();
    m_keeping = true;
    if (!m_place.anchor.isEmpty()) { // else what changes lies behind the reader
        Q_EMIT scrollWanted(topOf(m_place));
    }
    m_settled.start(); // the view may not yet have the text's new height
}

void HandbookDocument::keepPlace()
{
    if (!m_place.anchor.isEmpty()) {
        Q_EMIT scrollWanted(topOf(m_place));
    }
    m_keeping = false;
    setPlace(placeAt(m_top));
}

/// The reader stays at the hit of the same place in the row; a new search begins at what is shown.
void HandbookDocument::findHits()
{
    if (!text()) {
        return;
    }
    m_hits = HandbookText::find(*text(), m_wanted);
    if (m_hit < 0) {
        const auto shown = std::find_if(m_hits.cbegin(), m_hits.cend(), [this](int hit) {
            const QList<QRectF> areas = HandbookText::areas(*text(), hit, hit + 1);
            return !areas.isEmpty() && areas.front().bottom() > m_top;
        });
        m_hit = shown == m_hits.cend() ? 0 : int(shown - m_hits.cbegin());
    }
    m_hit = std::min(m_hit, int(m_hits.size()) - 1);
    Q_EMIT hitsChanged();
    Q_EMIT marksChanged();
}

/// Hits at the edges count as out of sight: the find bar lies there.
void HandbookDocument::showHit()
{
    const QVariantList areas = currentMarks();
    if (areas.isEmpty()) {
        return;
    }
    const QRectF area = areas.front().toRectF();
    const double margin = m_viewHeight / 8;
    if (area.top() < m_top + margin || area.bottom() > m_top + m_viewHeight - margin) {
        Q_EMIT scrollWanted(area.top() - m_viewHeight / 3);
    }
}
