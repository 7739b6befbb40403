#include "storage/PathSafety.h"

#include "storage/FolderTree.h"

#include "platform/MarluneError.h"
#include "platform/files/Files.h"
#include "platform/text/Characters.h"

#include <algorithm>

namespace {

constexpr qsizetype maxName = 160; // characters
constexpr qsizetype maxFatName = 255; // UTF-16 units

const QString nameless = QStringLiteral("Bez nazwy");

bool endsPath(QChar c)
{
    switch (c.unicode()) {
    case u'/':
    case u'\\':
    case u':':
    case u'\n':
    case u'\r':
    case u'\0':
        return true;
    default:
        return false;
    }
}

QChar fatCharacter(QChar c)
{
    static const QString refused = QStringLiteral("*:<>?\\|");
    if (c == u'"') {
        return u'\'';
    }
    // A lone surrogate stands for a byte that is no UTF-8; these volumes store UTF-16 and have no such name.
    const bool control = c.unicode() < 0x20 || c.unicode() == 0x7F;
    return control || refused.contains(c) ? QChar(u'_') : c;
}

QString withoutLoneSurrogates(QString name)
{
    for (qsizetype i = 0; i < name.size(); ++i) {
        if (name[i].isHighSurrogate() && i + 1 < name.size() && name[i + 1].isLowSurrogate()) {
            ++i;
        } else if (name[i].isSurrogate()) {
            name[i] = u'_';
        }
    }
    return name;
}

/// The longest start of `name` that is at most `units` UTF-16 units and ends between two characters.
QString cut(const QString &name, qsizetype units)
{
    QString result = name;
    for (qsizetype characters = std::max<qsizetype>(units, 0); result.size() > units && characters >= 0; --characters) {
        result = firstCharacters(name, characters);
    }
    return result;
}

} // namespace

bool isSymbolicLink(const std::filesystem::path &path)
{
    return Files::kindOrNone(path) == Files::Kind::Link;
}

QString safeName(const QString &name)
{
    QString result = name;
    std::replace_if(result.begin(), result.end(), endsPath, QChar(u'-'));
    result = result.trimmed();
    if (result.isEmpty() || result == QLatin1String(".") || result == QLatin1String("..")) {
        return nameless;
    }
    return firstCharacters(result, maxName);
}

QString volumeName(const QString &name, Volumes::NameRules rules, const QString &ending)
{
    if (rules == Volumes::NameRules::Posix) {
        return name + ending;
    }
    QString result = withoutLoneSurrogates(cut(name, maxFatName - ending.size()) + ending);
    std::transform(result.begin(), result.end(), result.begin(), fatCharacter);
    result = cut(result, maxFatName);
    const auto dropped = [](QChar c) { return c == u'.' || c == u' '; };
    while (!result.isEmpty() && dropped(result.back())) {
        result.chop(1);
    }
    return result.isEmpty() ? nameless : result;
}

QString volumeKey(const std::filesystem::path &path, Volumes::NameRules rules)
{
    const QString text = Files::text(path);
    return rules == Volumes::NameRules::Fat ? text.toCaseFolded() : text;
}

namespace Storage {

std::optional<std::filesystem::path> pathBelow(const std::filesystem::path &path, const std::filesystem::path &root)
{
    std::error_code failure;
    const std::string prefix = std::filesystem::canonical(root, failure).native() + '/';
    const std::string resolved = failure ? std::string() : std::filesystem::weakly_canonical(path, failure).native();
    return !failure && resolved.starts_with(prefix) ? std::optional(resolved.substr(prefix.size())) : std::nullopt;
}

bool liesBelow(const std::filesystem::path &path, const std::filesystem::path &root)
{
    return pathBelow(path, root).has_value();
}

void rejectLinks(const std::filesystem::path &path)
{
    const auto refuse = [] { throw MarluneError(QStringLiteral("Paczka zawiera dowiązanie symboliczne.")); };
    if (isSymbolicLink(path)) {
        refuse();
    }
    forEachBelow(path, Unreadable::PassOver, [&](const TreeItem &item) {
        if (item.kind == Files::Kind::Link) {
            refuse();
        }
    });
}

} // namespace Storage
