// The texts that the sources hold, as they can reach the screen: a sentence put together from pieces is one template
// with places for its values. A small reader of C++ and QML expressions, for this code's own ways of writing them.
#pragma once

#include <QRegularExpression>
#include <QSet>
#include <QString>
#include <QStringList>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <vector>

class SourceTexts {
public:
    explicit SourceTexts(const std::filesystem::path &file)
    {
        std::ifstream stream(file, std::ios::binary);
        const std::string bytes {std::istreambuf_iterator<char>(stream), {}};
        tokenize(QString::fromStdString(bytes), file.extension() == ".qml");
        for (std::size_t i = 0; i < m_tokens.size(); ++i) {
            if (m_tokens[i].isText && !m_tokens[i].isTaken) {
                const Range root = rootOf(i);
                for (const QString &text : composed(root)) {
                    all.append(numbered(text));
                    if (isShown(root) || isLikeProse(text, root)) {
                        shown.append(all.back());
                    }
                }
                for (std::size_t taken = root.begin; taken < root.end; ++taken) {
                    m_tokens[taken].isTaken = true;
                }
            }
        }
    }

    QStringList all;
    QStringList shown; ///< those that go through the text operation right there, or read like words for people

private:
    struct Token {
        QString text; ///< of a literal: what it stands for
        bool isText = false;
        bool isProse = false; ///< a text of Qt's, not plain bytes
        bool isTaken = false;
    };
    struct Range {
        std::size_t begin;
        std::size_t end;
    };

    static constexpr QChar value = u'\1';

    /// Only texts, names and signs; comments and what else a language has are left out.
    void tokenize(const QString &source, bool isQml)
    {
        static const QRegularExpression token(QStringLiteral(
            R"re((?<skip>//[^\n]*|/\*[\s\S]*?\*/|\#include[^\n]*|R"\((?:[\s\S]*?)\)"|\s+))re"
            R"re(|(?<text>u?8?"(?:[^"\\\n]|\\.)*"(?:_s|_qs)?|u?'(?:[^'\\]|\\.)+'))re"
            R"re(|(?<name>[A-Za-z_0-9][\w']*(?:::\w+)*)|(?<sign>&&|\|\||==|!=|<=|>=|=>|->|\+\+|--|\+=|\?\?|\?\.|.))re"));
        for (auto match = token.globalMatch(source); match.hasNext();) {
            const QRegularExpressionMatch found = match.next();
            if (const QString text = found.captured(QStringLiteral("text")); !text.isEmpty()) {
                const bool isPlain = text.startsWith(u'"') || text.startsWith(u'\'');
                const QChar quote = text.contains(u'"') ? u'"' : u'\'';
                const QString content = unescaped(text.section(quote, 1, -2));
                if (quote == u'"' && !m_tokens.empty() && m_tokens.back().isText) { // one after the other is one
                    m_tokens.back().text += content;
                } else {
                    m_tokens.push_back({content, true, !isPlain || isQml});
                }
            } else if (found.captured(QStringLiteral("skip")).isEmpty()) {
                m_tokens.push_back({found.captured()});
            } else if (isQml && found.captured().contains(u'\n') && endsLine(source.mid(found.capturedEnd(), 1))) {
                m_tokens.push_back({QStringLiteral(";")});
            }
        }
        m_tokens.push_back({QStringLiteral(";")});
        unwrap();
    }

    /// Whether a line of QML is no beginning of the next one.
    [[nodiscard]] bool endsLine(const QString &next) const
    {
        static const QString joining = QStringLiteral("+?:&|.,([{=");
        return !m_tokens.empty() && !(joining + u')').contains(next)
            && (m_tokens.back().isText || !joining.contains(m_tokens.back().text));
    }

    /// QStringLiteral("…") and its like are the literal.
    void unwrap()
    {
        static const QSet<QString> wrappers {QStringLiteral("QStringLiteral"), QStringLiteral("QString::fromUtf8")};
        std::vector<Token> plain;
        for (std::size_t i = 0; i < m_tokens.size(); ++i) {
            const bool isWrapped = i + 3 < m_tokens.size() && !m_tokens[i].isText && wrappers.contains(m_tokens[i].text)
                && is(i + 1, "(") && m_tokens[i + 2].isText && is(i + 3, ")");
            plain.push_back(m_tokens[isWrapped ? i + 2 : i]);
            plain.back().isProse = plain.back().isProse || isWrapped;
            i += isWrapped ? 3 : 0;
        }
        m_tokens = std::move(plain);
    }

    static QString unescaped(QString text)
    {
        return text.replace(QStringLiteral("\\n"), QStringLiteral("\n"))
            .replace(QStringLiteral("\\\""), QStringLiteral("\""))
            .replace(QStringLiteral("\\'"), QStringLiteral("'"));
    }

    [[nodiscard]] bool is(std::size_t at, const char *sign) const
    {
        return !m_tokens[at].isText && m_tokens[at].text == QLatin1StringView(sign);
    }
    [[nodiscard]] bool isAny(std::size_t at, std::initializer_list<const char *> signs) const
    {
        return std::any_of(signs.begin(), signs.end(), [&](const char *sign) { return is(at, sign); });
    }
    [[nodiscard]] bool opens(std::size_t at) const { return isAny(at, {"(", "{", "["}); }
    [[nodiscard]] bool closes(std::size_t at) const { return isAny(at, {")", "}", "]"}); }
    [[nodiscard]] bool ends(std::size_t at) const
    {
        return isAny(at, {",", ";", "=", "return", "throw", "+=", "=>", "&&", "||", "==", "!="});
    }

    /// The whole expression that the text is a piece of: up to the call that takes it, or the statement's end.
    [[nodiscard]] Range rootOf(std::size_t at) const
    {
        std::size_t begin = at;
        std::size_t end = at + 1;
        while (true) {
            for (int depth = 0; begin > 0 && (depth > 0 || !(opens(begin - 1) || ends(begin - 1))); --begin) {
                depth += closes(begin - 1) ? 1 : opens(begin - 1) ? -1 : 0;
                if (depth == 0 && isBinding(begin - 1)) {
                    break;
                }
            }
            for (int depth = 0; end < m_tokens.size() && (depth > 0 || !(closes(end) || ends(end))); ++end) {
                depth += opens(end) ? 1 : closes(end) ? -1 : 0;
            }
            // Parentheses that are no call's only group.
            const bool isGroup = begin > 1 && is(begin - 1, "(") && end < m_tokens.size() && is(end, ")")
                && isAny(begin - 2, {"+", "?", ":", "(", "=", "return", ","});
            if (!isGroup) {
                return {begin, end};
            }
            --begin;
            ++end;
        }
    }

    [[nodiscard]] bool isShown(Range root) const
    {
        return root.begin > 1 && is(root.begin - 1, "(")
            && (isAny(root.begin - 2, {"shown", "AppLocalizer::text"})
                || (root.begin > 3 && is(root.begin - 4, "L10n")));
    }

    /// Whether it has letters beyond ASCII, two words, or is one word in the case of a title. What begins in the middle
    /// of a sentence is read where the sentence is.
    [[nodiscard]] bool isLikeProse(const QString &text, Range root) const
    {
        static const QRegularExpression beyondAscii(QStringLiteral("[^\\x00-\\x7F]"));
        static const QRegularExpression words(QStringLiteral("\\pL.* .*\\pL|\\pL.* \1|\1 .*\\pL\\pL|^[A-Z][a-z]+$"));
        static const QRegularExpression letters(QStringLiteral("\\pL"));
        const bool isProse = std::any_of(m_tokens.begin() + std::ptrdiff_t(root.begin),
            m_tokens.begin() + std::ptrdiff_t(root.end), [](const Token &token) { return token.isProse; });
        const bool isRest = text.startsWith(u' ') || text.startsWith(u". ");
        return text.contains(letters) && !isRest && (text.contains(beyondAscii) || (isProse && text.contains(words)));
    }

    /// A QML property's colon, not that of a choice.
    [[nodiscard]] bool isBinding(std::size_t at) const
    {
        if (!is(at, ":")) {
            return false;
        }
        int open = 0;
        for (std::size_t i = at; i > 0 && !isAny(i - 1, {";", "{", "}"}); --i) {
            open += is(i - 1, "?") ? 1 : is(i - 1, ":") ? -1 : 0;
            if (open > 0) {
                return false;
            }
        }
        return true;
    }

    /// Places of a sign outside all parentheses.
    [[nodiscard]] std::vector<std::size_t> topLevel(Range range, const char *sign) const
    {
        std::vector<std::size_t> places;
        int depth = 0;
        for (std::size_t i = range.begin; i < range.end; ++i) {
            depth += opens(i) ? 1 : closes(i) ? -1 : 0;
            if (depth == 0 && is(i, sign)) {
                places.push_back(i);
            }
        }
        return places;
    }

    /// All that the expression can come to, as far as it is text.
    [[nodiscard]] QStringList composed(Range range) const
    {
        if (range.begin >= range.end) {
            return {QString(value)};
        }
        if (const auto asks = topLevel(range, "?"); !asks.empty()) {
            int open = 0;
            int depth = 0;
            for (std::size_t i = asks.front(); i < range.end; ++i) {
                depth += opens(i) ? 1 : closes(i) ? -1 : 0;
                open += depth == 0 && is(i, "?") ? 1 : depth == 0 && is(i, ":") ? -1 : 0;
                if (depth == 0 && open == 0) {
                    return composed({asks.front() + 1, i}) + composed({i + 1, range.end});
                }
            }
        }
        QStringList results {QString()};
        std::size_t begin = range.begin;
        std::vector<std::size_t> ends = topLevel(range, "+");
        ends.push_back(range.end);
        for (const std::size_t end : ends) {
            QStringList longer;
            for (const QString &head : results) {
                for (const QString &tail : operand({begin, end})) {
                    longer.append(head + tail);
                }
            }
            results = longer;
            begin = end + 1;
        }
        return results;
    }

    [[nodiscard]] QStringList operand(Range range) const
    {
        if (range.begin < range.end && m_tokens[range.begin].isText) {
            static const QRegularExpression argument(QStringLiteral("%[0-9]"));
            const bool isAlone = range.end - range.begin == 1 || is(range.begin + 1, ".");
            return {isAlone ? QString(m_tokens[range.begin].text).replace(argument, QString(value)) : QString(value)};
        }
        if (range.begin < range.end && is(range.begin, "(")) {
            std::size_t end = range.begin;
            int depth = 0;
            do {
                depth += opens(end) ? 1 : closes(end) ? -1 : 0;
            } while (depth > 0 && ++end < range.end);
            return composed({range.begin + 1, end});
        }
        if (range.end - range.begin == 3 && is(range.begin, "QString")) { // QString()
            return {QString()};
        }
        if (range.end - range.begin == 1) {
            if (const std::optional<Range> earlier = valueOf(m_tokens[range.begin].text, range.begin)) {
                return composed(*earlier);
            }
        }
        return {QString(value)};
    }

    /// What the constant of this name was set to last: "const QString name = …;"
    [[nodiscard]] std::optional<Range> valueOf(const QString &name, std::size_t before) const
    {
        for (std::size_t i = before; i-- > 3;) {
            if (is(i, "=") && m_tokens[i - 1].text == name && is(i - 2, "QString") && is(i - 3, "const")) {
                std::size_t end = i + 1;
                while (end < before && !is(end, ";")) {
                    ++end;
                }
                return end < before ? std::optional(Range {i + 1, end}) : std::nullopt;
            }
        }
        return std::nullopt;
    }

    static QString numbered(const QString &text)
    {
        QString result;
        int number = 0;
        for (const QChar c : text) {
            result += c == value ? u'{' + QString::number(number++) + u'}' : QString(c);
        }
        return result;
    }

    std::vector<Token> m_tokens;
};
