// The handbook in a text view: fills the view's document, follows links, finds words, and tells where on the page the
// parts lie that are drawn beside the words. Keeps the reader at the same place when the looks, the width or the
// language of the document change.
//
// All areas are in the text view's own coordinates. UI thread.
#pragma once

#include "ui/guide/HandbookText.h"

#include "platform/tasks/BurstTimer.h"

#include <QObject>
#include <QPointer>
#include <QQuickTextDocument>
#include <QVariant>
#include <QtQml/qqmlregistration.h>

class HandbookDocument : public QObject {
    Q_OBJECT
    QML_ELEMENT
    /// The text view's document.
    Q_PROPERTY(QQuickTextDocument *target READ target WRITE setTarget NOTIFY targetChanged)
    Q_PROPERTY(QString styleSheet READ styleSheet WRITE setStyleSheet NOTIFY styleSheetChanged)
    /// Of the two documents the English one; at first by the program's language.
    Q_PROPERTY(bool english READ english WRITE setEnglish NOTIFY englishChanged)

    /// What of the text the view shows: from where, and how much.
    Q_PROPERTY(double top READ top WRITE setTop NOTIFY shownPartChanged)
    Q_PROPERTY(double viewHeight READ viewHeight WRITE setViewHeight NOTIFY shownPartChanged)

    /// Headings and links in the order of the text; each has "text", "target" (empty: a heading), "anchor" and "areas".
    Q_PROPERTY(QVariantList parts READ parts NOTIFY placesChanged)
    /// Each has "text" and "anchor"; and the anchor of the one that is being read, empty before the first.
    Q_PROPERTY(QVariantList sections READ sections NOTIFY placesChanged)
    Q_PROPERTY(QString section READ section NOTIFY sectionChanged)
    /// Each has "area" and "color".
    Q_PROPERTY(QVariantList grounds READ grounds NOTIFY placesChanged)
    Q_PROPERTY(QVariantList rules READ rules NOTIFY placesChanged)

    Q_PROPERTY(QString wanted READ wanted WRITE setWanted NOTIFY hitsChanged)
    Q_PROPERTY(int hitCount READ hitCount NOTIFY hitsChanged)
    /// The place of the hit that the reader is at among all; -1 without any.
    Q_PROPERTY(int hit READ hit NOTIFY hitsChanged)
    /// "Wynik 3 z 17"; empty while nothing is wanted.
    Q_PROPERTY(QString hitText READ hitText NOTIFY hitsChanged)
    /// Areas of the hits in and near what is shown, and of the one that the reader is at.
    Q_PROPERTY(QVariantList marks READ marks NOTIFY marksChanged)
    Q_PROPERTY(QVariantList currentMarks READ currentMarks NOTIFY marksChanged)

public:
    explicit HandbookDocument(QObject *parent = nullptr);

    [[nodiscard]] QQuickTextDocument *target() const { return m_target; }
    void setTarget(QQuickTextDocument *target);
    [[nodiscard]] QString styleSheet() const { return m_styleSheet; }
    void setStyleSheet(const QString &styleSheet);
    [[nodiscard]] bool english() const { return m_english; }
    void setEnglish(bool english);
    [[nodiscard]] double top() const { return m_top; }
    void setTop(double top);
    [[nodiscard]] double viewHeight() const { return m_viewHeight; }
    void setViewHeight(double height);

    [[nodiscard]] QVariantList parts() const { return m_parts; }
    [[nodiscard]] QVariantList sections() const;
    [[nodiscard]] QString section() const { return m_place.anchor; }
    [[nodiscard]] QVariantList grounds() const { return m_grounds; }
    [[nodiscard]] QVariantList rules() const { return m_rules; }

    [[nodiscard]] QString wanted() const { return m_wanted; }
    void setWanted(const QString &wanted);
    [[nodiscard]] int hitCount() const { return int(m_hits.size()); }
    [[nodiscard]] int hit() const { return m_hit; }
    [[nodiscard]] QString hitText() const;
    [[nodiscard]] QVariantList marks() const;
    [[nodiscard]] QVariantList currentMarks() const;

    /// Goes to the next hit, or back to the one before; around the ends.
    Q_INVOKABLE void goToHit(bool forward);
    Q_INVOKABLE void follow(const QString &link);
    /// Shows the beginning of a section.
    Q_INVOKABLE void goTo(const QString &anchor);

Q_SIGNALS:
    void targetChanged();
    void styleSheetChanged();
    void englishChanged();
    void shownPartChanged();
    void placesChanged();
    void sectionChanged();
    void hitsChanged();
    void marksChanged();
    /// A link within the document has led to the part at that place.
    void ledTo(int part);
    /// The view is to show the text from there on.
    void scrollWanted(double top);

private:
    /// Where the reader is: after a heading with an anchor, at a share of the way to the next.
    struct Place {
        QString anchor; ///< empty: before the first
        double share = 0;
    };
    struct Section {
        QString anchor;
        QString text;
        double top = 0;
        int part = 0; ///< the place of its heading among the parts
    };

    [[nodiscard]] QTextDocument *text() const { return m_target ? m_target->textDocument() : nullptr; }
    void setPlace(const Place &place);
    [[nodiscard]] Place placeAt(double top) const;
    [[nodiscard]] double topOf(const Place &place) const;
    void load(const QUrl &document, const Place &place);
    void loadChosen();
    void fill();
    void takePlaces();
    void keepPlace();
    void findHits();
    void showHit();

    QPointer<QQuickTextDocument> m_target;
    QUrl m_loaded; ///< the document that is shown
    QString m_styleSheet;
    bool m_english;
    bool m_filling = false;
    bool m_keeping
        = false; ///< the text finds its size; till then the view moves by itself, which is no wish of the reader
    BurstTimer m_settled {[this] { keepPlace(); }};
    double m_top = 0;
    double m_viewHeight = 0;
    Place m_place;
    QSizeF m_size; ///< of the text for which all below was taken
    QList<Section> m_sections;
    QVariantList m_parts;
    QVariantList m_grounds;
    QVariantList m_rules;
    QString m_wanted;
    QList<int> m_hits; ///< their beginnings in the text
    int m_hit = -1;
};
