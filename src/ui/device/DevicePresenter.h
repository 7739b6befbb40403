// What the device's page shows beyond the model's own fields: facts, the choices of its looks, and how its disk is
// used.
//
// Texts are made when they are asked for, in the language then shown. UI thread.
#pragma once

#include "model/Model.h"

#include "model/StorageUse.h"

#include "platform/tasks/BurstTimer.h"

#include <QObject>
#include <QStringList>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

class DevicePresenter : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The program makes it for the model.")
    Q_PROPERTY(bool connected READ connected NOTIFY changed)
    Q_PROPERTY(bool testFolder READ testFolder NOTIFY changed)
    Q_PROPERTY(QString connection READ connection NOTIFY changed)
    Q_PROPERTY(QString modelName READ modelName NOTIFY changed)
    /// "IPOD · Rockbox 3.15"
    Q_PROPERTY(QString nameAndVersion READ nameAndVersion NOTIFY changed)
    Q_PROPERTY(QStringList factLabels READ factLabels CONSTANT)
    /// For each of the labels.
    Q_PROPERTY(QStringList facts READ facts NOTIFY changed)
    Q_PROPERTY(QString description READ description WRITE setDescription NOTIFY changed)
    Q_PROPERTY(QString support READ support NOTIFY changed)

    // Choices: Polish texts to pick from, as they pass the text operation where they are shown.
    Q_PROPERTY(QStringList models READ models CONSTANT)
    Q_PROPERTY(QString chosenModel READ chosenModel NOTIFY changed)
    Q_PROPERTY(QStringList finishes READ finishes CONSTANT)
    Q_PROPERTY(QString chosenFinish READ chosenFinish NOTIFY changed)

    Q_PROPERTY(bool hasMusicFolder READ hasMusicFolder NOTIFY changed)
    Q_PROPERTY(QString freeSpace READ freeSpace NOTIFY changed)
    Q_PROPERTY(QString musicCount READ musicCount NOTIFY changed)
    Q_PROPERTY(QString themeCount READ themeCount NOTIFY changed)
    Q_PROPERTY(QString totalSpace READ totalSpace NOTIFY changed)
    /// All of the music that is on the device is known.
    Q_PROPERTY(bool musicRead READ musicRead NOTIFY changed)
    /// The parts of the disk that are in use, in the order of the bar: which, and how much of the disk, 0 to 1.
    Q_PROPERTY(QList<int> parts READ parts NOTIFY changed)
    Q_PROPERTY(QList<double> shares READ shares NOTIFY changed)
    /// Name and size of each, and of what is free.
    Q_PROPERTY(QStringList legends READ legends NOTIFY changed)
    /// All of them in one line.
    Q_PROPERTY(QString storageWords READ storageWords NOTIFY changed)

    /// A theme is set on the device.
    Q_PROPERTY(bool themed READ themed NOTIFY changed)
    Q_PROPERTY(QString themeName READ themeName NOTIFY changed)
    Q_PROPERTY(QUrl themePicture READ themePicture NOTIFY changed)
    Q_PROPERTY(QString backupCount READ backupCount NOTIFY changed)
    /// A device is there and no job runs.
    Q_PROPERTY(bool canWork READ canWork NOTIFY changed)

public:
    enum Part { Flac, Mp3, OtherMusic, OtherData, Free };
    Q_ENUM(Part)

    explicit DevicePresenter(MarluneModel &model, QObject *parent = nullptr);

    [[nodiscard]] bool connected() const { return m_model.device().has_value(); }
    [[nodiscard]] bool testFolder() const { return connected() && !m_model.device()->isVolume; }
    [[nodiscard]] QString connection() const;
    [[nodiscard]] QString modelName() const;
    [[nodiscard]] QString nameAndVersion() const;
    [[nodiscard]] QStringList factLabels() const;
    [[nodiscard]] QStringList facts() const;
    [[nodiscard]] QString description() const { return m_model.deviceDescription(); }
    void setDescription(const QString &text) { m_model.setDeviceDescription(text); }
    [[nodiscard]] QString support() const;

    [[nodiscard]] QStringList models() const;
    [[nodiscard]] QString chosenModel() const;
    Q_INVOKABLE void chooseModel(const QString &name);
    [[nodiscard]] QStringList finishes() const;
    [[nodiscard]] QString chosenFinish() const;
    Q_INVOKABLE void chooseFinish(const QString &name);

    [[nodiscard]] bool hasMusicFolder() const { return m_model.deviceHasMusicFolder(); }
    Q_INVOKABLE void openDisk() const;
    Q_INVOKABLE void openMusic() const;
    Q_INVOKABLE void openThemes() { m_model.setSection(Section::Themes); }

    [[nodiscard]] QString freeSpace() const;
    [[nodiscard]] QString musicCount() const;
    [[nodiscard]] QString themeCount() const;
    [[nodiscard]] QString totalSpace() const;
    [[nodiscard]] bool musicRead() const;
    [[nodiscard]] QList<int> parts() const;
    [[nodiscard]] QList<double> shares() const;
    [[nodiscard]] QStringList legends() const;
    [[nodiscard]] QString storageWords() const { return legends().join(QStringLiteral(", ")); }

    [[nodiscard]] bool themed() const { return m_model.configuredTheme().has_value(); }
    [[nodiscard]] QString themeName() const;
    [[nodiscard]] QUrl themePicture() const;
    [[nodiscard]] QString backupCount() const;
    [[nodiscard]] bool canWork() const { return connected() && !m_model.busy(); }

Q_SIGNALS:
    void changed();

private:
    [[nodiscard]] std::int64_t bytesOf(Part part) const;
    [[nodiscard]] QString nameOf(Part part) const;
    [[nodiscard]] std::int64_t total() const { return connected() ? m_model.device()->total : 0; }
    void refresh();

    MarluneModel &m_model;
    BurstTimer m_change {[this] { refresh(); }};
    StorageUse m_use;
};
