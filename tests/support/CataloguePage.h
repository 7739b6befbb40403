// A page of the form that the themes' site gives: a heading, a picture and a description for each theme.
#pragma once

#include "Names.h"

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
    return u"src=\"themes/320x240/%1/wps (main)-1.png\" alt=\"Theme details\" width=\"320\" height=\"240\" "
           "path=\"themes/320x240/%1/\" oversrc=\"menu-1.png\" /"_s.arg(folder);
}

/// As many as asked for, each with a title of its own, "Amber 0 / Dawn" and so on.
inline std::vector<CatalogueEntry> catalogueEntries(int count)
{
    const QString words[] = {u"Amber"_s, u"Żółw"_s, u"i&quot;Classic"_s, u"Rock &amp; Roll"_s, u"mała_czcionka-"_s};
    std::vector<CatalogueEntry> entries;
    for (int i = 0; i < count; ++i) {
        const QString number = QString::number(i);
        entries.push_back({4000 + i, words[i % 5] + u' ' + number + u" / Dawn"_s,
            i % 10 == 9 ? QString() : screenshots(u"theme"_s + number),
            i % 7 == 6 ? QString() : u"Author "_s + number});
    }
    return entries;
}

inline QString cataloguePage(const std::vector<CatalogueEntry> &entries)
{
    QString page = u"<!DOCTYPE html>\n<html><head><title>Themes</title></head><body>\n<table>\n"_s;
    for (const CatalogueEntry &entry : entries) {
        const QString link = u"<a href=\"index.php?themeid=%1&amp;target=ipodvideo\">"_s.arg(entry.id);
        page += u"<tr>\n<th align=\"center\" width=\"320\">"_s + link + entry.title
            + u"</a></th>\n</tr>\n<tr>\n<td align=\"center\">\n"_s;
        if (!entry.image.isEmpty()) {
            page += link + u"<img "_s + entry.image + u"></a><br />\n"_s;
        }
        page += u"<small><strong>Submitter:</strong> &nbsp;"_s + entry.submitter
            + u"<br />\n<strong>Size:</strong> &nbsp;123.45kB</small>\n</td>\n</tr>\n"_s;
    }
    return page + u"</table>\n</body></html>\n"_s;
}
