#include "ui/MarluneApp.h"

#include "ui/backups/BackupsPresenter.h"
#include "ui/controls/FocusGuide.h"
#include "ui/device/DevicePresenter.h"
#include "ui/device/IPodProvider.h"
#include "ui/flow/CoverFlowPresenter.h"
#include "ui/flow/StageProvider.h"
#include "ui/library/AlbumSheetPresenter.h"
#include "ui/library/LibraryPresenter.h"
#include "ui/pictures/CoverProvider.h"
#include "ui/pictures/ShadowProvider.h"
#include "ui/pictures/Symbols.h"
#include "ui/playback/MediaControls.h"
#include "ui/playback/PlaybackPresenter.h"
#include "ui/playlists/PlaylistsPresenter.h"
#include "ui/quality/QualityPresenter.h"
#include "ui/shell/DesktopPanels.h"
#include "ui/shell/ShellPresenter.h"
#include "ui/themes/ThemeSheetPresenter.h"
#include "ui/themes/ThemesPresenter.h"
#include "ui/words/Language.h"
#include "ui/words/Localization.h"

#include "platform/MarluneError.h"
#include "platform/Version.h"
#include "platform/desktop/TerminationRequests.h"
#include "platform/files/Files.h"
#include "platform/files/SettingsLock.h"
#include "platform/volumes/Volumes.h"

#include <QAccessible>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QIcon>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QStandardPaths>

#include <unistd.h>

#include <clocale>
#include <cstdio>

// Written by Qt's build for the QML module, which no header declares.
void qml_register_types_Marlune();

namespace MarluneApp {

namespace {

/// While the application object is made: Qt ends the process without a display, after several lines of its own.
void reportMissingDisplay(QtMsgType type, const QMessageLogContext &, const QString &)
{
    if (type == QtFatalMsg) {
        std::fputs("marlune: no usable display; start it from a graphical session.\n", stderr);
        ::_exit(1);
    }
}

void reportGraphicsFailure(QQuickWindow::SceneGraphError, const QString &message)
{
    std::fprintf(stderr, "marlune: the window cannot be drawn: %s\n", message.toUtf8().constData());
    QCoreApplication::exit(1);
}

QFont applicationFont()
{
    QFont font = QGuiApplication::font();
    const QString preferred = QStringLiteral("Inter");
    if (QFontDatabase::families().contains(preferred)) {
        font.setFamily(preferred);
    }
    return font;
}

QString defaultPlaylistName()
{
    return AppLocalizer::text(QStringLiteral("Moja playlista"));
}

/// A screen reader is not told of each control that goes: Qt would ask the menus for parents that have gone already.
void withoutReader(const std::function<void()> &deleteControls)
{
    const auto before = QAccessible::installUpdateHandler([](QAccessibleEvent *) { });
    deleteControls();
    QAccessible::installUpdateHandler(before);
}

/// A program that cannot start says why in a window too: from a desktop nobody sees its standard error.
int refuse(const QString &reason)
{
    std::fprintf(stderr, "marlune: %s\n", AppLocalizer::text(reason).toUtf8().constData());
    QQmlApplicationEngine engine;
    prepareEngine(engine, std::make_shared<CoverStore>());
    engine.setInitialProperties({{QStringLiteral("reason"), reason}});
    engine.load(QUrl(QStringLiteral("qrc:/qml/Marlune/shell/Refusal.qml")));
    if (!engine.rootObjects().isEmpty()) {
        (void)QGuiApplication::exec();
    }
    return 1;
}

/// Also a minimised one, which then is as large as it was.
void bringToFront(QWindow &window)
{
    window.setWindowStates(window.windowStates() & ~Qt::WindowMinimized);
    window.raise();
    window.requestActivate();
}

} // namespace

struct Program::Parts {
    explicit Parts(const Setup &setup);
    ~Parts();

    [[nodiscard]] QQuickWindow *window() const;
    [[nodiscard]] QQuickWindow *carousel() const;
    void rebuildContent(QQuickWindow &shown);

    // In the order of their making; they go the other way round.
    SettingsLock settingsLock;
    Settings settings;
    Language language; // before all that reads a text or sorts a list
    DesktopPanels desktopPanels;
    Volumes::Watcher watcher; // before the model: a change while that looks for devices is then an event, not missed
    MarluneModel model;
    std::shared_ptr<CoverStore> covers = std::make_shared<CoverStore>();
    ShellPresenter shell;
    DevicePresenter device;
    LibraryPresenter library;
    PlaylistsPresenter playlists;
    BackupsPresenter backups;
    QualityPresenter quality;
    ThemesPresenter themes;
    AlbumSheetPresenter albumSheet;
    CoverSearchPresenter coverSearch;
    ThemeSheetPresenter themeSheet;
    CoverFlowPresenter coverFlow;
    PlaybackPresenter playback;
    MediaControls mediaControls;
    QQmlApplicationEngine engine;
};

Program::Parts::Parts(const Setup &setup)
    : settingsLock(setup.settingsFile)
    , settings(setup.settingsFile)
    , language(settings, setup.preferredLanguages)
    , model({.settings = settings,
          .panels = setup.panels ? *setup.panels : desktopPanels,
          .deviceDiscovery = setup.deviceDiscovery,
          .ejectVolume = setup.ejectVolume,
          .supportFolder = setup.supportFolder,
          .themeSite = setup.themeSite,
          .cache = setup.cacheFile.empty() ? nullptr : std::make_shared<ReadingCache>(setup.cacheFile),
          .readTracks = setup.readTracks,
          .covers = setup.covers ? *setup.covers : CoverSearch::shared(),
          .audioOutput = setup.audioOutput,
          .playlistName = defaultPlaylistName()})
    , shell(model)
    , device(model)
    , library(model, covers)
    , playlists(model)
    , backups(model)
    , quality(model)
    , themes(model)
    , albumSheet(model, covers)
    , coverSearch(model, covers)
    , themeSheet(model)
    , coverFlow(model, covers)
    , playback(model.playback())
    , mediaControls(model.playback())
{
    QObject::connect(&watcher, &Volumes::Watcher::mounted, &model, &MarluneModel::volumeMounted);
    QObject::connect(&watcher, &Volumes::Watcher::unmounted, &model, &MarluneModel::volumeUnmounted);

    albumSheet.followOpenAlbum();
    coverSearch.followCoverLookup();

    QObject::connect(&language, &Language::codeChanged, &model, &MarluneModel::reorder);
    QObject::connect(
        &language, &Language::codeChanged, &model, [this] { model.renewDefaultPlaylistName(defaultPlaylistName()); });
    QObject::connect(&language, &Language::codeChanged, &coverFlow, &CoverFlowPresenter::reorder);
    // Queued: the menu or picker that the choice was made with goes with the rest.
    QObject::connect(
        &language, &Language::codeChanged, &engine,
        [this] {
            for (const QPointer<QQuickWindow> &shown : {QPointer(window()), QPointer(carousel())}) {
                if (shown) { // what is rebuilt first may close the other
                    rebuildContent(*shown);
                }
            }
        },
        Qt::QueuedConnection);

    prepareEngine(engine, covers);
    engine.setInitialProperties(
        {{QStringLiteral("model"), QVariant::fromValue(&model)}, {QStringLiteral("shell"), QVariant::fromValue(&shell)},
            {QStringLiteral("device"), QVariant::fromValue(&device)},
            {QStringLiteral("library"), QVariant::fromValue(&library)},
            {QStringLiteral("playlists"), QVariant::fromValue(&playlists)},
            {QStringLiteral("backups"), QVariant::fromValue(&backups)},
            {QStringLiteral("quality"), QVariant::fromValue(&quality)},
            {QStringLiteral("themes"), QVariant::fromValue(&themes)},
            {QStringLiteral("albumSheet"), QVariant::fromValue(&albumSheet)},
            {QStringLiteral("coverSearch"), QVariant::fromValue(&coverSearch)},
            {QStringLiteral("themeSheet"), QVariant::fromValue(&themeSheet)},
            {QStringLiteral("coverFlow"), QVariant::fromValue(&coverFlow)},
            {QStringLiteral("playback"), QVariant::fromValue(&playback)},
            {QStringLiteral("panels"), QVariant::fromValue(&desktopPanels)}});
    engine.load(QUrl(QStringLiteral("qrc:/qml/Marlune/shell/Main.qml")));
    if (QQuickWindow *shown = window()) {
        QObject::connect(&mediaControls, &MediaControls::quitWanted, shown, &QWindow::close);
        QObject::connect(&mediaControls, &MediaControls::raiseWanted, shown, [shown] { bringToFront(*shown); });
        QObject::connect(&coverFlow, &CoverFlowPresenter::frontWanted, shown, [this] {
            if (QQuickWindow *wanted = carousel()) {
                bringToFront(*wanted);
            }
        });
    }
}

/// A window keeps its place, its size and what is asked in it; all else is made in the language that is shown now.
void Program::Parts::rebuildContent(QQuickWindow &shown)
{
    auto *content = shown.findChild<QQuickItem *>(QStringLiteral("content"), Qt::FindDirectChildrenOnly);
    const auto isWithin = [](const QQuickItem *item, const auto &isIt) {
        while (item && !isIt(*item)) {
            item = item->parentItem();
        }
        return item != nullptr;
    };
    const bool byPicker = isWithin(shown.activeFocusItem(),
        [](const QQuickItem &item) { return item.objectName() == QStringLiteral("languagePicker"); });
    withoutReader([content] {
        content->setProperty("source", QUrl());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    });
    QMetaObject::invokeMethod(content, "build");
    if (!isWithin(shown.activeFocusItem(), [](const QQuickItem &item) { return item.inherits("QQuickPopupItem"); })) {
        QMetaObject::invokeMethod(content->property("item").value<QQuickItem *>(), "takeFocus", Q_ARG(bool, byPicker));
    }
}

Program::Parts::~Parts()
{
    // The window's bindings read what is about to go.
    withoutReader([this] { qDeleteAll(engine.rootObjects()); });
    // The rows of lists are deleted later, and an animation in one of them would go on without the engine.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

Program::Program(const Setup &setup)
    : m_parts(std::make_unique<Parts>(setup))
{
}

Program::~Program()
{
    m_parts.reset();
    // Workflows that waited for a job learn of the model's end from what the job posted.
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

MarluneModel &Program::model()
{
    return m_parts->model;
}

QQuickWindow *Program::Parts::window() const
{
    const QList<QObject *> roots = engine.rootObjects();
    return roots.isEmpty() ? nullptr : qobject_cast<QQuickWindow *>(roots.front());
}

QQuickWindow *Program::Parts::carousel() const
{
    return window() ? window()->findChild<QQuickWindow *>(QStringLiteral("coverFlowWindow")) : nullptr;
}

void Program::endSoon()
{
    m_parts->shell.endSoon();
    if (QQuickWindow *shown = window()) {
        shown->close();
    }
}

QQuickWindow *Program::window() const
{
    return m_parts->window();
}

void prepareEngine(QQmlEngine &engine, std::shared_ptr<const CoverStore> covers)
{
    qml_register_types_Marlune();
    engine.addImportPath(QStringLiteral(":/qml"));
    engine.addImageProvider(QStringLiteral("cover"), new CoverProvider(std::move(covers)));
    engine.addImageProvider(QStringLiteral("ipod"), new IPodProvider);
    engine.addImageProvider(QStringLiteral("shadow"), new ShadowProvider);
    engine.addImageProvider(QStringLiteral("stage"), new StageProvider);
    engine.addImageProvider(QStringLiteral("symbol"), new Symbols::Provider);
    engine.singletonInstance<FocusGuide *>(qmlTypeId("Marlune", 1, 0, "FocusGuide")); // at work from the start
}

Setup Setup::forUser()
{
    return {.settingsFile = Settings::defaultFile(),
        .supportFolder = Files::fromText(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)),
        .cacheFile = Files::fromText(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation))
            / "Marlune/library.sqlite",
        .ejectVolume = [](const std::filesystem::path &volume) { Volumes::eject(volume); },
        .themeSite = Catalogue::Site::ofThePublic(),
        .preferredLanguages = QLocale::system().uiLanguages()};
}

void prepareApplication()
{
    std::setlocale(LC_NUMERIC, "C"); // the application object has set the user's, under which libmpv does not start
    QCoreApplication::setApplicationName(QStringLiteral("Marlune"));
    QCoreApplication::setApplicationVersion(productVersion());
    QCoreApplication::setOrganizationName(QStringLiteral("Marlune"));
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Marlune"));
    QGuiApplication::setDesktopFileName(QStringLiteral("marlune"));
    QGuiApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/marlune.svg")));
    QGuiApplication::setFont(applicationFont());
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    AppLocalizer::setLanguage(AppLocalizer::language());
}

int run(int argc, char **argv)
{
    const QtMessageHandler handler = qInstallMessageHandler(reportMissingDisplay);
    const QGuiApplication application(argc, argv);
    qInstallMessageHandler(handler);
    prepareApplication();

    try {
        Program program(Setup::forUser());
        QQuickWindow *window = program.window();
        if (!window) {
            std::fputs("marlune: the window could not be made.\n", stderr);
            return 1;
        }
        QObject::connect(window, &QQuickWindow::sceneGraphError, window, reportGraphicsFailure);
        const TerminationRequests requests;
        QObject::connect(&requests, &TerminationRequests::requested, window, [&program] { program.endSoon(); });
        return QGuiApplication::exec();
    } catch (const MarluneError &refusal) {
        Settings settings(Settings::defaultFile());
        const Language language(settings, QLocale::system().uiLanguages());
        return refuse(refusal.message());
    }
}

} // namespace MarluneApp
