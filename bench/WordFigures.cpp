// The text operation, and how long a change of the language takes until it is seen.
#include "Figures.h"

#include "ui/MarluneApp.h"
#include "ui/words/Language.h"
#include "ui/words/Localization.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QQuickItem>
#include <QRegularExpression>
#include <QTimer>

#include <cstdio>

namespace {

constexpr int textCount = 2000;
constexpr int unknownCount = 200;

struct ComposedText {
    QString text;
    std::optional<QRegularExpression> own; ///< what it was composed of
};

QRegularExpression expressionOf(const TemplateText &text)
{
    QStringList fixed;
    for (const QString &piece : text.fixed) {
        fixed.append(QRegularExpression::escape(piece));
    }
    QRegularExpression expression(u'^' + fixed.join(QStringLiteral("([\\s\\S]*?)")) + u'$');
    expression.optimize();
    return expression;
}

QString unknownText(int number)
{
    return QStringLiteral("Nie ma tego tekstu w tabeli, numer %1. ").arg(number).repeated(6).first(200);
}

/// Each template filled, each plain key, and unknown texts; the first of them again up to the number wanted.
std::vector<ComposedText> composedTexts(const TranslationTable &table)
{
    std::vector<ComposedText> texts;
    for (const QString &key : table.english().keys()) {
        const TemplateText text = TemplateText::of(key);
        texts.push_back({text.filled({{0, QStringLiteral("81")}, {1, QStringLiteral("12,3 MB")},
                             {2, QStringLiteral("7")}, {3, QStringLiteral("40")}, {4, QStringLiteral("5")}}),
            expressionOf(text)});
    }
    const std::size_t known = texts.size();
    while (texts.size() < std::size_t(textCount - unknownCount)) {
        texts.push_back(texts[texts.size() % known]);
    }
    for (int i = 0; i < unknownCount; ++i) {
        texts.push_back({unknownText(i), std::nullopt});
    }
    return texts;
}

double waitFor(QQuickWindow &window, const std::function<bool()> &isDrawn, const QElapsedTimer &since)
{
    QEventLoop loop;
    double seconds = 0;
    const auto onFrame = [&] {
        if (seconds == 0 && isDrawn()) {
            seconds = double(since.nsecsElapsed()) / 1e9;
            loop.quit();
        }
    };
    QObject::connect(&window, &QQuickWindow::frameSwapped, &loop, onFrame);
    QTimer::singleShot(30'000, &loop, &QEventLoop::quit);
    loop.exec();
    Bench::require(seconds > 0, "a frame");
    return seconds;
}

MarluneApp::Setup setupIn(const std::filesystem::path &folder)
{
    return {.settingsFile = folder / "settings.json",
        .supportFolder = folder,
        .deviceDiscovery = [] { return std::vector<Device> {}; },
        .ejectVolume = {},
        .panels = nullptr};
}

} // namespace

namespace Bench {

void translate(const std::filesystem::path &)
{
    const TranslationTable &table = AppLocalizer::table();
    const std::vector<ComposedText> texts = composedTexts(table);
    const auto ours = [&] {
        return seconds([&] {
            for (const ComposedText &composed : texts) {
                require(!table.translateEnglish(composed.text).isEmpty(), "a translation");
            }
        });
    };
    const auto own = [&] {
        return seconds([&] {
            for (const ComposedText &composed : texts) {
                require(!composed.own || composed.own->match(composed.text).hasMatch(), "a match");
            }
        });
    };
    print("translate", inTurn(ours, own));

    // What an unknown text costs, and what it would cost with an expression a template.
    std::vector<QRegularExpression> all;
    const double compiling = seconds([&] {
        for (const TranslationTable::Pattern &pattern : table.patterns()) {
            all.push_back(expressionOf(pattern.expression));
        }
    });
    const auto unknown = [&] {
        return seconds([&] {
            for (int i = 0; i < unknownCount; ++i) {
                require(table.translateEnglish(unknownText(i)) == unknownText(i), "an unknown text");
            }
        }) / unknownCount;
    };
    const auto byExpressions = [&] {
        return seconds([&] {
            for (int i = 0; i < unknownCount; ++i) {
                const QString text = unknownText(i);
                for (const QRegularExpression &expression : all) {
                    require(!expression.match(text).hasMatch(), "an unknown text");
                }
            }
        }) / unknownCount;
    };
    print("translate-unknown", inTurn(unknown, byExpressions));
    std::printf("translate: %zu keys, %zu templates, whose expressions take %.1f ms to compile\n",
        std::size_t(table.english().size()), table.patterns().size(), compiling * 1e3);
}

void language(const std::filesystem::path &library)
{
    static const bool prepared = (MarluneApp::prepareApplication(), true);
    (void)prepared;
    const WorkFolder folder;
    (void)secondsToFirstFrame(library); // the disk's cache is warm from here on
    std::vector<double> first;
    for (int i = 0; i < rounds; ++i) {
        first.push_back(secondsToFirstFrame(library));
    }

    MarluneApp::Program program(setupIn(folder.path()));
    QQuickWindow &window = *program.window();
    program.model().importURLs({library}, false, false);
    QEventLoop loop;
    QTimer idle;
    QObject::connect(&idle, &QTimer::timeout, &loop, [&] {
        if (!program.model().busy()) {
            loop.quit();
        }
    });
    idle.start(3000); // the covers come in
    loop.exec();
    idle.stop();
    const auto *content = window.findChild<QQuickItem *>(QStringLiteral("content"));
    require(content, "the window's content");
    std::vector<double> changes;
    for (int i = 0; i < rounds; ++i) {
        Language &language = *Language::create(nullptr, nullptr);
        const QPointer<QObject> before = content->property("item").value<QObject *>();
        QElapsedTimer since;
        since.start();
        language.setChoice(language.code() == QStringLiteral("pl") ? QStringLiteral("en") : QStringLiteral("pl"));
        changes.push_back(waitFor(window, [&] { return !before; }, since));
    }
    print("language", {median(changes), median(first)});
    std::printf("language: %zu tracks\n", program.model().tracks().size());
}

} // namespace Bench
