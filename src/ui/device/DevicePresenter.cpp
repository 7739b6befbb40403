#include "ui/device/DevicePresenter.h"

#include "ui/device/IPodFinish.h"
#include "ui/themes/ThemePictures.h"
#include "ui/words/Localization.h"

#include "platform/desktop/Desktop.h"
#include "platform/text/ByteCount.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

QString automaticModel()
{
    return QStringLiteral("Automatycznie z Rockbox");
}

/// The name of a finish; empty for one that is none of those that the drawing knows.
QString finishName(const QString &finish)
{
    static const QMap<QString, QString> names {{QStringLiteral("white"), QStringLiteral("Biały")},
        {QStringLiteral("black"), QStringLiteral("Czarny")},
        {QStringLiteral("u2"), QStringLiteral("Czarny z czerwonym kołem")},
        {QStringLiteral("silver"), QStringLiteral("Srebrny")}, {QStringLiteral("blue"), QStringLiteral("Niebieski")},
        {QStringLiteral("green"), QStringLiteral("Zielony")},
        {QStringLiteral("orange"), QStringLiteral("Pomarańczowy")},
        {QStringLiteral("purple"), QStringLiteral("Fioletowy")}, {QStringLiteral("pink"), QStringLiteral("Różowy")},
        {QStringLiteral("gold"), QStringLiteral("Złoty")}};
    return names.value(finish);
}

/// As people know it; the kernel's own name for others.
QString fileSystemName(const std::string &type)
{
    struct Name {
        const char *type;
        const char *shown;
    };
    static constexpr std::array names {Name {"vfat", "FAT32"}, Name {"msdos", "FAT"}, Name {"exfat", "exFAT"},
        Name {"hfsplus", "HFS+"}, Name {"hfs", "HFS"}, Name {"fuse.exfat", "exFAT"}, Name {"fuse.vfat", "FAT32"}};
    const auto *const known
        = std::find_if(names.begin(), names.end(), [&](const Name &name) { return type == name.type; });
    return known != names.end() ? QString::fromLatin1(known->shown) : QString::fromStdString(type);
}

/// The file's name alone: the firmware keeps its whole path, which says nothing more here.
QString fontName(const QString &font)
{
    return font.section(u'/', -1);
}

QString either(const QString &value, const QString &otherwise)
{
    return value.trimmed().isEmpty() ? AppLocalizer::text(otherwise) : value;
}

} // namespace

DevicePresenter::DevicePresenter(MarluneModel &model, QObject *parent)
    : QObject(parent)
    , m_model(model)
{
    m_change.follow(m_model, &MarluneModel::deviceChanged, &MarluneModel::devicesChanged,
        &MarluneModel::appearanceChanged, &MarluneModel::deviceSettingsChanged, &MarluneModel::themesChanged,
        &MarluneModel::themePreviewsChanged, &MarluneModel::tracksChanged, &MarluneModel::backupsChanged,
        &MarluneModel::busyChanged, &MarluneModel::sectionChanged);
    refresh();
}

void DevicePresenter::refresh()
{
    if (m_model.section() == Section::Device) {
        m_use = connected() ? StorageUse::of(*m_model.device(), m_model.deviceTracks()) : StorageUse {};
        Q_EMIT changed();
    }
}

QString DevicePresenter::connection() const
{
    return AppLocalizer::text(testFolder() ? QStringLiteral("FOLDER TESTOWY") : QStringLiteral("POŁĄCZONY"));
}

QString DevicePresenter::modelName() const
{
    return AppLocalizer::text(m_model.deviceProfile().name);
}

QString DevicePresenter::nameAndVersion() const
{
    const std::optional<Device> &device = m_model.device();
    return device ? device->name + QStringLiteral(" · Rockbox ") + AppLocalizer::text(device->version) : QString();
}

QStringList DevicePresenter::factLabels() const
{
    return {QStringLiteral("Nazwa dysku"), QStringLiteral("Target"), QStringLiteral("Platforma"),
        QStringLiteral("CPU wg kompilacji"), QStringLiteral("RAM wg kompilacji"), QStringLiteral("System plików"),
        QStringLiteral("Dostęp"), QStringLiteral("Font"), QStringLiteral("Motyw zapisany")};
}

QStringList DevicePresenter::facts() const
{
    if (!connected()) {
        return {};
    }
    const Configuration &info = m_model.deviceInfo();
    const std::optional<Volumes::Traits> &volume = m_model.deviceVolume();
    const QString memory = info.value(QStringLiteral("Memory"));
    const QString access = !volume ? QString()
        : volume->isWritable       ? QStringLiteral("Odczyt i zapis")
                                   : QStringLiteral("Tylko odczyt");
    const std::optional<Theme> theme = m_model.configuredTheme();
    return {m_model.device()->name, either(info.value(QStringLiteral("Target")), QStringLiteral("Nieznany")),
        either(info.value(QStringLiteral("Manufacturer")), QStringLiteral("Nieznana")),
        either(info.value(QStringLiteral("CPU")), QStringLiteral("Nieznane")),
        either(memory.isEmpty() ? memory : memory + QStringLiteral(" MB"), QStringLiteral("Nieznany")),
        either(volume ? fileSystemName(volume->fileSystem) : QString(), QStringLiteral("Nieznany")),
        either(AppLocalizer::text(access), QStringLiteral("Nieznany")),
        either(fontName(m_model.deviceConfig().value(QStringLiteral("font"))), QStringLiteral("Domyślny")),
        theme ? theme->name() : AppLocalizer::text(QStringLiteral("Domyślny"))};
}

QString DevicePresenter::support() const
{
    return AppLocalizer::text(QStringLiteral("Wybór grafiki nie zmienia sprzętu ani firmware. "))
        + AppLocalizer::text(m_model.deviceProfile().support);
}

QStringList DevicePresenter::models() const
{
    QStringList names {automaticModel()};
    for (const IPodProfile &profile : IPodProfile::all()) {
        names.append(profile.name);
    }
    return names;
}

QString DevicePresenter::chosenModel() const
{
    const IPodProfile *chosen = IPodProfile::withId(m_model.chosenAppearance().value_or(QString()));
    return chosen ? chosen->name : automaticModel();
}

void DevicePresenter::chooseModel(const QString &name)
{
    const std::vector<IPodProfile> &all = IPodProfile::all();
    const auto chosen
        = std::find_if(all.begin(), all.end(), [&](const IPodProfile &profile) { return profile.name == name; });
    m_model.setAppearance(chosen != all.end() ? chosen->id : QStringLiteral("auto"));
}

QStringList DevicePresenter::finishes() const
{
    QStringList names;
    for (const QString &finish : IPodFinish::names()) {
        names.append(finishName(finish));
    }
    return names;
}

QString DevicePresenter::chosenFinish() const
{
    const QString name = finishName(m_model.deviceFinish());
    return name.isEmpty() ? finishName(QStringLiteral("white")) : name; // as it is drawn
}

void DevicePresenter::chooseFinish(const QString &name)
{
    for (const QString &finish : IPodFinish::names()) {
        if (finishName(finish) == name) {
            m_model.setFinish(finish);
        }
    }
}

void DevicePresenter::openDisk() const
{
    if (const std::optional<Device> &device = m_model.device()) {
        Desktop::open(device->root);
    }
}

void DevicePresenter::openMusic() const
{
    if (const std::optional<Device> &device = m_model.device()) {
        Desktop::open(device->root / "Music");
    }
}

QString DevicePresenter::freeSpace() const
{
    return connected() ? AppLocalizer::text(byteCount(m_model.device()->available) + QStringLiteral(" wolne"))
                       : QString();
}

bool DevicePresenter::musicRead() const
{
    return m_model.deviceReading() == DeviceReading::Complete;
}

QString DevicePresenter::musicCount() const
{
    const std::size_t count = m_model.deviceTracks().size();
    return AppLocalizer::text(musicRead() || count > 0 ? QString::number(count) + QStringLiteral(" utworów")
                                                       : QStringLiteral("Do odczytania"));
}

QString DevicePresenter::themeCount() const
{
    return AppLocalizer::text(QString::number(m_model.themes().size()) + QStringLiteral(" do wyboru"));
}

QString DevicePresenter::totalSpace() const
{
    return AppLocalizer::text(byteCount(total()) + QStringLiteral(" łącznie"));
}

std::int64_t DevicePresenter::bytesOf(Part part) const
{
    switch (part) {
    case Flac:
        return m_use.flac;
    case Mp3:
        return m_use.mp3;
    case OtherMusic:
        return m_use.otherMusic;
    case OtherData:
        return m_use.otherData;
    case Free:
        return m_use.free;
    }
    Q_UNREACHABLE();
}

QString DevicePresenter::nameOf(Part part) const
{
    switch (part) {
    case Flac:
        return QStringLiteral("FLAC");
    case Mp3:
        return QStringLiteral("MP3");
    case OtherMusic:
        return AppLocalizer::text(QStringLiteral("Pozostała muzyka"));
    case OtherData:
        return AppLocalizer::text(
            musicRead() ? QStringLiteral("Inne dane") : QStringLiteral("Zajęte — odczytaj bibliotekę"));
    case Free:
        return AppLocalizer::text(QStringLiteral("Wolne"));
    }
    Q_UNREACHABLE();
}

QList<int> DevicePresenter::parts() const
{
    QList<int> parts;
    for (const Part part : {Flac, Mp3, OtherMusic, OtherData}) {
        if (bytesOf(part) > 0) {
            parts.append(part);
        }
    }
    return parts;
}

QList<double> DevicePresenter::shares() const
{
    QList<double> shares;
    for (const int part : parts()) {
        shares.append(double(bytesOf(Part(part))) / double(std::max<std::int64_t>(total(), 1)));
    }
    return shares;
}

QStringList DevicePresenter::legends() const
{
    QList<int> all = parts();
    all.append(Free);
    QStringList legends;
    for (const int part : std::as_const(all)) {
        legends.append(nameOf(Part(part)) + QStringLiteral(" · ") + byteCount(bytesOf(Part(part))));
    }
    return legends;
}

QString DevicePresenter::themeName() const
{
    const std::optional<Theme> theme = m_model.configuredTheme();
    return theme ? theme->name() : AppLocalizer::text(QStringLiteral("Motyw domyślny"));
}

QUrl DevicePresenter::themePicture() const
{
    return ThemePictures::ofConfiguredTheme(m_model);
}

QString DevicePresenter::backupCount() const
{
    const std::size_t count = m_model.backups().size();
    return AppLocalizer::text(count > 0 ? QString::number(count) + QStringLiteral(" kopii na Macu")
                                        : QStringLiteral("Zapisz pierwszą kopię"));
}
