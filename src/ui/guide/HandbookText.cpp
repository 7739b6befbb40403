#include "ui/guide/HandbookText.h"

#include <QAbstractTextDocumentLayout>
#include <QFile>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextLayout>
#include <QTextTable>

#include <algorithm>
#include <numeric>
#include <utility>

namespace HandbookText {

namespace {

constexpr int groundProperty = QTextFormat::UserProperty + 1;

/// The file behind an address; empty for one that is not local.
QString localFile(const QUrl &address)
{
    return address.scheme() == QLatin1String("qrc") ? QLatin1Char(':') + address.path() : address.toLocalFile();
}

QUrl folderOf(const QUrl &address)
{
    return address.adjusted(
        QUrl::RemoveFilename | QUrl::RemoveFragment | QUrl::RemoveQuery | QUrl::NormalizePathSegments);
}

bool liesBeside(const QUrl &document, const QUrl &other)
{
    return !localFile(other).isEmpty() && folderOf(other) == folderOf(document) && QFile::exists(localFile(other));
}

/// Reads only what lies beside the document.
class Reader final : public QTextDocument {
public:
    explicit Reader(QUrl document)
        : m_document(std::move(document))
    {
    }

protected:
    QVariant loadResource(int type, const QUrl &name) override
    {
        const QUrl address = m_document.resolved(name);
        QFile file(localFile(address));
        return type == HtmlResource || !liesBeside(m_document, address) || !file.open(QIODevice::ReadOnly)
            ? QVariant()
            : file.readAll();
    }

private:
    QUrl m_document;
};

template <typename Visit> void eachFragment(const QTextDocument &document, const Visit &visit)
{
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        for (auto piece = block.begin(); !piece.atEnd(); ++piece) {
            visit(piece.fragment());
        }
    }
}

/// The view would fetch them by itself.
void dropForeignPictures(QTextDocument &text, const QUrl &document)
{
    QList<int> foreign;
    eachFragment(text, [&](const QTextFragment &piece) {
        const QTextImageFormat picture = piece.charFormat().toImageFormat();
        if (picture.isValid() && !liesBeside(document, document.resolved(QUrl(picture.name())))) {
            for (int i = 0; i < piece.length(); ++i) { // equal pictures in a row are one piece
                foreign.prepend(piece.position() + i);
            }
        }
    });
    for (const int position : foreign) {
        QTextCursor cursor(&text);
        cursor.setPosition(position);
        cursor.deleteChar();
    }
}

void setAsideGrounds(QTextDocument &text)
{
    for (QTextBlock block = text.begin(); block.isValid(); block = block.next()) {
        QTextBlockFormat format = block.blockFormat();
        if (format.hasProperty(QTextFormat::BackgroundBrush)) {
            format.setProperty(groundProperty, format.background().color());
            format.clearBackground();
            QTextCursor(block).setBlockFormat(format);
            QTextCharFormat letters = block.charFormat(); // it has the ground too
            letters.clearBackground();
            QTextCursor(block).setBlockCharFormat(letters);
        }
    }
}

template <typename Visit> void eachTable(const QTextFrame &frame, const Visit &visit)
{
    for (const QTextFrame *child : frame.childFrames()) {
        if (const auto *table = qobject_cast<const QTextTable *>(child)) {
            visit(*table);
        }
        eachTable(*child, visit);
    }
}

/// How much of a table's width a column wants: enough for its longest word, and some for its longest text.
double wishOf(const QTextTable &table, int column)
{
    constexpr double padding = 3; // all in letters
    constexpr double longestLine = 40; // more take several lines
    constexpr double ofTexts = 0.2;
    double word = 1;
    double text = 1;
    for (int row = 0; row < table.rows(); ++row) {
        const QString words = table.cellAt(row, column).firstCursorPosition().block().text();
        for (const QString &each : words.split(u' ')) {
            word = std::max(word, double(each.size()));
        }
        text = std::max(text, std::min(longestLine, double(words.size())));
    }
    return padding + word + ofTexts * (text - word);
}

/// Rich text would give all columns the same width. The lines between the rows are drawn beside the text.
void layOutTables(const QTextDocument &text)
{
    eachTable(*text.rootFrame(), [](const QTextTable &table) {
        QList<double> wishes;
        for (int column = 0; column < table.columns(); ++column) {
            wishes.append(wishOf(table, column));
        }
        const double all = std::accumulate(wishes.cbegin(), wishes.cend(), 0.0);
        QList<QTextLength> widths;
        for (const double wish : wishes) {
            widths.append(QTextLength(QTextLength::PercentageLength, 100 * wish / all));
        }
        QTextTableFormat format = table.format();
        format.setWidth(QTextLength(QTextLength::PercentageLength, 100));
        format.setColumnWidthConstraints(widths);
        format.setBorder(0);
        format.setCellSpacing(0);
        const_cast<QTextTable &>(table).setFormat(format); // the tree of frames is handed out as const
    });
}

} // namespace

Destination destination(const QUrl &document, const QString &link)
{
    const QUrl address = document.resolved(QUrl(link));
    if (address.scheme() == QLatin1String("https") || address.scheme() == QLatin1String("mailto")) {
        return {Destination::Kind::Outside, address, {}};
    }
    const QUrl whole = address.adjusted(QUrl::RemoveFragment);
    const QString anchor = address.fragment(QUrl::FullyDecoded);
    if (link.isEmpty() || !liesBeside(document, whole)) {
        return {};
    }
    return {whole == document ? Destination::Kind::Place : Destination::Kind::Document, whole, anchor};
}

std::unique_ptr<QTextDocument> read(const QUrl &document, const QString &styleSheet)
{
    auto text = std::make_unique<Reader>(document);
    text->setUndoRedoEnabled(false);
    text->setDefaultStyleSheet(styleSheet);
    QFile file(localFile(document));
    if (file.open(QIODevice::ReadOnly)) {
        text->setHtml(QString::fromUtf8(file.readAll()));
        dropForeignPictures(*text, document);
        setAsideGrounds(*text);
        layOutTables(*text);
    }
    return text;
}

QList<Part> parts(const QTextDocument &document)
{
    QList<Part> result;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        const int end = block.position() + block.length() - 1;
        if (block.blockFormat().headingLevel() > 0 && block.position() < end) {
            result.append({block.text(), {}, {}, block.position(), end});
        }
        for (auto piece = block.begin(); !piece.atEnd(); ++piece) {
            const QTextFragment &words = piece.fragment();
            const QStringList anchors = words.charFormat().anchorNames();
            if (!anchors.isEmpty() && !result.isEmpty() && result.back().begin == block.position()) {
                result.back().anchor = anchors.front();
            }
            const QString target = words.charFormat().anchorHref();
            if (!target.isEmpty() && !result.isEmpty() && result.back().end == words.position()
                && result.back().target == target) { // a link with words in other type
                result.back().text += words.text();
                result.back().end += words.length();
            } else if (!target.isEmpty()) {
                result.append({words.text(), target, {}, words.position(), words.position() + words.length()});
            }
        }
    }
    return result;
}

QList<Ground> grounds(const QTextDocument &document)
{
    QList<Ground> result;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        if (block.blockFormat().hasProperty(groundProperty)) {
            QRectF area;
            for (const QRectF &line : areas(document, block.position(), block.position() + block.length() - 1)) {
                area |= line;
            }
            result.append({area, block.blockFormat().property(groundProperty).value<QColor>()});
        }
    }
    return result;
}

QList<QRectF> rules(const QTextDocument &document)
{
    QList<QRectF> result;
    eachTable(*document.rootFrame(), [&](const QTextTable &table) {
        const QRectF whole = document.documentLayout()->frameBoundingRect(const_cast<QTextTable *>(&table));
        for (int row = 1; row < table.rows(); ++row) {
            double top = whole.bottom();
            for (int column = 0; column < table.columns(); ++column) {
                const QTextTableCell cell = table.cellAt(row, column);
                const double padding = cell.format().toTableCellFormat().topPadding();
                const QTextBlock first = cell.firstCursorPosition().block();
                top = std::min(top, document.documentLayout()->blockBoundingRect(first).top() - padding);
            }
            result.append({whole.left(), top, whole.width(), 0});
        }
    });
    return result;
}

QList<QRectF> areas(const QTextDocument &document, int begin, int end)
{
    QList<QRectF> result;
    for (QTextBlock block = document.findBlock(begin); block.isValid() && block.position() < end;
        block = block.next()) {
        const QPointF corner = document.documentLayout()->blockBoundingRect(block).topLeft();
        const QTextLayout &layout = *block.layout();
        for (int i = 0; i < layout.lineCount(); ++i) {
            const QTextLine line = layout.lineAt(i);
            const int from = std::max(begin - block.position(), line.textStart());
            const int to = std::min(end - block.position(), line.textStart() + line.textLength());
            if (from < to) {
                const double left = line.cursorToX(from);
                const QRectF area(left, line.y(), line.cursorToX(to) - left, line.height());
                result.append(area.normalized().translated(corner));
            }
        }
    }
    return result;
}

QList<int> find(const QTextDocument &document, const QString &wanted)
{
    QList<int> result;
    const QString printed = QString(wanted).replace(u'\'', u'\u2019'); // as the documents have it
    if (!printed.isEmpty()) {
        for (QTextCursor hit = document.find(printed); !hit.isNull(); hit = document.find(printed, hit)) {
            result.append(hit.selectionStart());
        }
    }
    return result;
}

} // namespace HandbookText
