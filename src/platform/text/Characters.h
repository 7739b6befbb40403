// User-perceived characters: extended grapheme clusters (Unicode Standard Annex #29), not bytes or code units.
#pragma once

#include <QString>

/// The first `count` characters of `text`; the whole text if it has no more.
[[nodiscard]] QString firstCharacters(const QString &text, qsizetype count);

/// The characters of `text` that are letters or numbers: those whose first code point is alphabetic or numeric by
/// Unicode's properties. Their combining marks stay with them.
[[nodiscard]] QString lettersAndNumbers(const QString &text);
