// What the window's frame shows beyond the model's own fields: sections, the queue, the device, and the window's end.
//
// Texts are made anew once for a burst of changes. UI thread.
#pragma once

#include "ui/shell/SectionListModel.h"

#include "platform/tasks/BurstTimer.h"

#include <QObject>
#include <QStringList>
#include <QTimer>
#include <QUrl>

class ShellPresenter : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The program makes it for the model.")
    Q_PROPERTY(SectionListModel *sections READ sections CONSTANT)
    Q_PROPERTY(bool deviceShown READ deviceShown NOTIFY sectionChanged)
    Q_PROPERTY(bool musicShown READ musicShown NOTIFY sectionChanged)
    Q_PROPERTY(bool playlistsShown READ playlistsShown NOTIFY sectionChanged)
    Q_PROPERTY(bool backupsShown READ backupsShown NOTIFY sectionChanged)
    Q_PROPERTY(bool qualityShown READ qualityShown NOTIFY sectionChanged)
    Q_PROPERTY(bool guideShown READ guideShown NOTIFY sectionChanged)
    Q_PROPERTY(bool themesShown READ themesShown NOTIFY sectionChanged)
    Q_PROPERTY(bool inspectorShown READ inspectorShown NOTIFY sectionChanged)

    Q_PROPERTY(QString headline READ headline NOTIFY changed)
    Q_PROPERTY(QString queueLine READ queueLine NOTIFY changed)
    Q_PROPERTY(QString remaining READ remaining NOTIFY remainingChanged)
    Q_PROPERTY(bool canClearQueue READ canClearQueue NOTIFY changed)
    Q_PROPERTY(bool canTransfer READ canTransfer NOTIFY changed)
    Q_PROPERTY(bool canEject READ canEject NOTIFY changed)

    Q_PROPERTY(bool connected READ connected NOTIFY changed)
    Q_PROPERTY(QString deviceName READ deviceName NOTIFY changed)
    Q_PROPERTY(QString deviceVersion READ deviceVersion NOTIFY changed)
    Q_PROPERTY(QString deviceSpace READ deviceSpace NOTIFY changed)
    Q_PROPERTY(double usedShare READ usedShare NOTIFY changed)
    Q_PROPERTY(bool testFolder READ testFolder NOTIFY changed)
    Q_PROPERTY(QString themeCount READ themeCount NOTIFY changed)
    Q_PROPERTY(QUrl themePicture READ themePicture NOTIFY changed)
    /// The format under which a drag names tracks of the computer.
    Q_PROPERTY(QString trackFormat READ trackFormat CONSTANT)
    /// Devices to choose from: those found while none is selected.
    Q_PROPERTY(QStringList offeredDevices READ offeredDevices NOTIFY changed)

    /// The window is to close as soon as the work has ended.
    Q_PROPERTY(bool closing READ closing NOTIFY closingChanged)

public:
    explicit ShellPresenter(MarluneModel &model, QObject *parent = nullptr);

    [[nodiscard]] SectionListModel *sections() { return &m_sections; }
    [[nodiscard]] bool deviceShown() const { return m_model.section() == Section::Device; }
    [[nodiscard]] bool musicShown() const { return m_model.section() == Section::Music; }
    [[nodiscard]] bool playlistsShown() const { return m_model.section() == Section::Playlists; }
    [[nodiscard]] bool backupsShown() const { return m_model.section() == Section::Backups; }
    [[nodiscard]] bool qualityShown() const { return m_model.section() == Section::Quality; }
    [[nodiscard]] bool guideShown() const { return m_model.section() == Section::Guide; }
    [[nodiscard]] bool themesShown() const { return m_model.section() == Section::Themes; }
    /// The device page shows all of the inspector itself.
    [[nodiscard]] bool inspectorShown() const { return !deviceShown(); }

    [[nodiscard]] QString headline() const;
    [[nodiscard]] QString queueLine() const;
    /// How long the work may still take; empty where nothing can be said.
    [[nodiscard]] QString remaining() const;
    [[nodiscard]] bool canClearQueue() const { return !m_model.busy() && m_queuedTracks > 0; }
    [[nodiscard]] bool canTransfer() const { return canClearQueue() && connected(); }
    [[nodiscard]] bool canEject() const { return m_model.canEject(); }

    [[nodiscard]] bool connected() const { return m_model.device().has_value(); }
    [[nodiscard]] QString deviceName() const;
    [[nodiscard]] QString deviceVersion() const;
    [[nodiscard]] QString deviceSpace() const;
    /// 0 to 1; 0 for a device that does not say its size.
    [[nodiscard]] double usedShare() const;
    [[nodiscard]] bool testFolder() const;
    [[nodiscard]] QString themeCount() const;
    /// Of the theme that the device has active; empty where there is none.
    [[nodiscard]] QUrl themePicture() const;
    [[nodiscard]] QStringList offeredDevices() const;
    /// Selects the device at that place of offeredDevices().
    Q_INVOKABLE void selectOffered(int place);
    Q_INVOKABLE void openDeviceFolder() const;
    /// Whether what is dragged with these formats can be queued now: files, or tracks of the computer.
    [[nodiscard]] Q_INVOKABLE bool takesDrop(const QStringList &formats) const;
    /// Queues the tracks that the bytes name, or else adds the files to the library and the queue.
    Q_INVOKABLE void queueDropped(const QByteArray &tracks, const QList<QUrl> &files);
    [[nodiscard]] QString trackFormat() const;
    Q_INVOKABLE void openThemes() { m_model.setSection(Section::Themes); }

    [[nodiscard]] bool closing() const { return m_closing; }
    /// Whether the window may close now. If not, because work goes on, mayCloseNow() comes when it may.
    Q_INVOKABLE bool requestClose();
    /// The system wants the program to end: the window goes with the work, whether or not its last word is read.
    void endSoon() { m_ending = true; }
    /// Lets the window stay after all.
    Q_INVOKABLE void stayOpen();

Q_SIGNALS:
    void changed();
    void remainingChanged();
    void sectionChanged();
    void closingChanged();
    void mayCloseNow();

private:
    void onBusyChanged();
    void showTimeLeft();
    void refresh();
    void setClosing(bool closing);
    void closeWhenDone();

    MarluneModel &m_model;
    SectionListModel m_sections;
    BurstTimer m_change {[this] { refresh(); }};
    std::size_t m_queuedTracks = 0;
    std::int64_t m_queuedBytes = 0;
    QTimer m_clock; ///< runs while there is work
    std::optional<std::chrono::seconds> m_timeLeft;
    bool m_closing = false;
    bool m_ending = false;
};
