// A document of the handbook as Qt's rich text: reading it, what its links do, and where its parts lie on the page.
//
// Nothing is ever fetched: a picture or style sheet counts only if it lies in the document's own folder; scripts are
// nothing to rich text. Any thread for what touches no shown document.
#pragma once

#include <QColor>
#include <QList>
#include <QRectF>
#include <QString>
#include <QUrl>

#include <memory>

class QTextDocument;

namespace HandbookText {

/// What following a link does.
struct Destination {
    enum class Kind { Nowhere, Outside, Place, Document };

    Kind kind = Kind::Nowhere;
    QUrl address; ///< of the document that is left for or stayed in, without its fragment; or the one outside
    QString anchor; ///< a place in the document; empty: its beginning
};

/// Only "https" and "mailto" leave the program. Of local documents those of the same folder are reached.
[[nodiscard]] Destination destination(const QUrl &document, const QString &link);

/// The document in the colours and sizes of a style sheet; empty if it is not there.
/// What has a ground by that sheet loses it as rich text and is found by grounds() instead, since rich text would draw
/// it without a margin around the words.
[[nodiscard]] std::unique_ptr<QTextDocument> read(const QUrl &document, const QString &styleSheet);

/// A heading or a link.
struct Part {
    QString text;
    QString target; ///< of a link; empty for a heading
    QString anchor; ///< of a heading, may be empty
    int begin = 0; ///< in the whole text
    int end = 0;
};
struct Ground {
    QRectF area; ///< of the words alone
    QColor color;
};

/// In the order of the text.
[[nodiscard]] QList<Part> parts(const QTextDocument &document);
[[nodiscard]] QList<Ground> grounds(const QTextDocument &document);
/// The upper edges of the rows of all tables but their first ones, without a height.
[[nodiscard]] QList<QRectF> rules(const QTextDocument &document);
/// Where the text between two positions lies, a rectangle for each line.
[[nodiscard]] QList<QRectF> areas(const QTextDocument &document, int begin, int end);
/// The beginnings of all places that read so, in either case.
[[nodiscard]] QList<int> find(const QTextDocument &document, const QString &wanted);

} // namespace HandbookText
