// Texts that others wrote: their encoding and their lines. No state; any thread.
#pragma once

#include <QByteArray>
#include <QString>

/// The text in these bytes. A byte order mark of UTF-8, UTF-16 or UTF-32 tells the encoding and is left out; without
/// one the bytes are UTF-8 if they can be, otherwise Latin-1.
[[nodiscard]] QString decodeText(const QByteArray &bytes);

/// Takes the first line off `rest` and returns it without the character that ends it: line feed, vertical tab, form
/// feed, carriage return, next line, line separator or paragraph separator. So CR LF ends a line and an empty one.
[[nodiscard]] QStringView takeLine(QStringView &rest);
