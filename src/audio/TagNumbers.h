// Numbers and years as tags write them. Pure.
#pragma once

#include <QString>

#include <cstdint>
#include <optional>

/// The number before the first "/", as in "3/12"; a sign is allowed, blanks are not. Absent where there is none or it
/// does not fit.
[[nodiscard]] std::optional<std::int64_t> tagNumber(const QString &text);

/// The first four characters of a date such as "2004-03-01".
[[nodiscard]] QString tagYear(const QString &date);
