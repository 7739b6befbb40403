// The themes of the selected device: which one is active, the pictures that the user gives them, and new ones.
#include "model/Model.h"

#include "artwork/Artwork.h"

#include "themes/ThemeInstall.h"

#include "media/pictures/Images.h"
#include "platform/MarluneError.h"
#include "platform/files/FileWriting.h"
#include "platform/files/Files.h"

#include <QPointer>

namespace {

/// Absent if the file is no picture or cannot be read.
std::optional<QByteArray> readPicture(const std::filesystem::path &file)
{
    constexpr int side = 64; // it need not be looked at, only be there
    std::optional<QByteArray> bytes = Files::readBelow(file, Artwork::maxFileBytes);
    if (bytes && decodeImage(*bytes, side).isNull()) {
        bytes.reset();
    }
    return bytes;
}

} // namespace

std::optional<Theme> MarluneModel::configuredTheme() const
{
    const QString wps = QStringLiteral("wps");
    const QString sbs = QStringLiteral("sbs");
    const Configuration &device = m_content.deviceConfig;
    if (!device.contains(wps)) {
        return std::nullopt;
    }
    std::optional<Theme> sameWps;
    for (const Theme &theme : m_content.themes) {
        const Configuration settings = m_content.themeSettings.value(theme.id());
        const auto equals = [&](const QString &key) { return settings.contains(key) && settings[key] == device[key]; };
        if (!equals(wps)) {
            continue;
        }
        if (!device.contains(sbs) || equals(sbs)) {
            return theme;
        }
        if (!sameWps) {
            sameWps = theme;
        }
    }
    return sameWps;
}

void MarluneModel::setOpenTheme(const std::optional<Theme> &theme)
{
    if (m_openTheme != theme) {
        m_openTheme = theme;
        Q_EMIT openThemeChanged();
    }
}

void MarluneModel::chooseThemePreview(const Theme &theme)
{
    m_environment.panels.open(Panels::Request::onePicture(QStringLiteral("Dodaj zrzut motywu")),
        [self = QPointer(this), theme](const std::vector<std::filesystem::path> &chosen) {
            if (!self || chosen.empty()) {
                return;
            }
            self->m_previewChoices.emplace_back(theme, chosen.front());
            if (self->m_previewChoices.size() == 1) {
                self->runThemePreviewChoices();
            }
        });
}

/// One after the other: of two pictures for one theme the later choice stays.
QCoro::Task<> MarluneModel::runThemePreviewChoices()
{
    const QPointer<MarluneModel> self(this);
    for (; self && !m_previewChoices.empty(); m_previewChoices.pop_front()) {
        const auto [theme, file] = m_previewChoices.front();
        const QString key = ThemePreview::key(theme);
        auto store = [file, name = QStringLiteral("theme-") + key,
                         folder = m_environment.supportFolder]() -> std::optional<std::filesystem::path> {
            const std::optional<QByteArray> picture = readPicture(file);
            return picture ? std::optional(Artwork::cache(*picture, name, folder)) : std::nullopt;
        };
        const auto stored = co_await attempt(store);
        if (!self) {
            co_return;
        }
        if (stored.failure) {
            m_work.setAlert(describeFailure(stored.failure));
        } else if (const std::optional<std::filesystem::path> &picture = *stored.value) {
            m_environment.settings.setText(ThemePreview::settingsPrefix() + key, Files::text(*picture));
            m_content.themePreviews.insert(theme.id(), ThemePreview::chosen(*picture));
            Q_EMIT themePreviewsChanged(); // also where the record stays: the file of that name is another one
        }
    }
}

void MarluneModel::installTheme()
{
    if (!m_device || m_work.busy()) {
        return;
    }
    const Panels::Request request {.files = true,
        .folders = false,
        .multiple = false,
        .archives = true,
        .prompt = QStringLiteral("Zainstaluj motyw"),
        .message = {}};
    m_environment.panels.open(
        request, [self = QPointer(this), visit = m_visit](const std::vector<std::filesystem::path> &chosen) {
            if (self && self->m_visit == visit && !chosen.empty()) {
                self->installTheme(chosen.front());
            }
        });
}

void MarluneModel::installTheme(const std::filesystem::path &zip)
{
    if (!m_device || m_work.busy()) {
        return;
    }
    m_work.begin(QStringLiteral("Sprawdzam i instaluję motyw…"), RunningWork::Ends::AtItsEnd);
    runThemeInstall(zip, m_device->root, newBackupURL());
}

QCoro::Task<> MarluneModel::runThemeInstall(
    std::filesystem::path zip, std::filesystem::path root, std::filesystem::path backupFolder)
{
    const QPointer<MarluneModel> self(this);
    auto work = [zip, root, backupFolder] {
        Files::makeFolders(backupFolder.parent_path());
        return Storage::installTheme(zip, root, backupFolder);
    };
    const auto installed = co_await attempt(work);
    if (!self) {
        co_return;
    }
    if (installed.failure) {
        m_work.setAlert(describeFailure(installed.failure));
        m_work.setStatus(QStringLiteral("Instalacja motywu przerwana"));
    } else {
        m_work.setStatus(QStringLiteral("Zainstalowano motywy: ") + QString::number(*installed.value));
        m_work.setAlert(QStringLiteral("Motyw został wgrany, a poprzednie ustawienia mają kopię na Macu.\n\n"
                                       "Aktywuj go na iPodzie: Settings → Theme Settings → Browse Themes."));
    }
    m_work.end();
    rediscover();
}
