#include "platform/Characters.h"

#include <QTextBoundaryFinder>

#include <algorithm>

QString firstCharacters(const QString &text, qsizetype count)
{
    if (text.size() <= count) {
        return text;
    }
    const auto plain = [](QChar c) { return c.unicode() >= 0x20 && c.unicode() < 0x7F; };
    // One unit more than is taken: a combining mark behind the cut would belong to the last character.
    if (std::all_of(text.begin(), text.begin() + count + 1, plain)) {
        return text.first(count);
    }
    QTextBoundaryFinder boundaries(QTextBoundaryFinder::Grapheme, text);
    for (qsizetype taken = 0; taken < count; ++taken) {
        if (boundaries.toNextBoundary() < 0) {
            return text;
        }
    }
    return text.first(boundaries.position());
}
