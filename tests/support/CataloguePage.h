// A page of the form that the themes' site gives: a heading, a picture and a description for each theme.
#pragma once

#include <QString>

#include <vector>

struct CatalogueEntry {
    int id = 0;
    QString title;
    QString image; ///< the attributes of its picture; none: no picture
    QString submitter;
};

/// Attributes of a picture of the theme `folder`, of its two screens.
inline QString screenshots(const QString &folder)
{
    return QStringLiteral(
        "src=\"themes/320x240/%1/wps (main)-1.png\" alt=\"Theme details\" width=\"320\" height=\"240\" "
        "path=\"themes/320x240/%1/\" oversrc=\"menu-1.png\" /")
        .arg(folder);
}

/// As many as asked for, each with a title of its own, "Amber 0 / Dawn" and so on.
inline std::vector<CatalogueEntry> catalogueEntries(int count)
{
    const QString words[] = {QStringLiteral("Amber"), QStringLiteral("Żółw"), QStringLiteral("i&quot;Classic"),
        QStringLiteral("Rock &amp; Roll"), QStringLiteral("mała_czcionka-")};
    std::vector<CatalogueEntry> entries;
    for (int i = 0; i < count; ++i) {
        const QString number = QString::number(i);
        entries.push_back({4000 + i, words[i % 5] + u' ' + number + QStringLiteral(" / Dawn"),
            i % 10 == 9 ? QString() : screenshots(QStringLiteral("theme") + number),
            i % 7 == 6 ? QString() : QStringLiteral("Author ") + number});
    }
    return entries;
}

inline QString cataloguePage(const std::vector<CatalogueEntry> &entries)
{
    QString page = QStringLiteral("<!DOCTYPE html>\n<html><head><title>Themes</title></head><body>\n<table>\n");
    for (const CatalogueEntry &entry : entries) {
        const QString link = QStringLiteral("<a href=\"index.php?themeid=%1&amp;target=ipodvideo\">").arg(entry.id);
        page += QStringLiteral("<tr>\n<th align=\"center\" width=\"320\">") + link + entry.title
            + QStringLiteral("</a></th>\n</tr>\n<tr>\n<td align=\"center\">\n");
        if (!entry.image.isEmpty()) {
            page += link + QStringLiteral("<img ") + entry.image + QStringLiteral("></a><br />\n");
        }
        page += QStringLiteral("<small><strong>Submitter:</strong> &nbsp;") + entry.submitter
            + QStringLiteral("<br />\n<strong>Size:</strong> &nbsp;123.45kB</small>\n</td>\n</tr>\n");
    }
    return page + QStringLiteral("</table>\n</body></html>\n");
}
