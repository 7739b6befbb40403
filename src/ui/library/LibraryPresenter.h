// What the library page shows beyond the model's own fields. UI thread.
//
// Counts follow the list of albums, so that they change in the same moment as the rows do.
#pragma once

#include "ui/library/AlbumListModel.h"

#include <QObject>
#include <QUrl>

class LibraryPresenter : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The program makes it for the model.")
    Q_PROPERTY(AlbumListModel *albums READ albums CONSTANT)
    Q_PROPERTY(QStringList formats READ formats CONSTANT)
    Q_PROPERTY(QStringList sortModes READ sortModes CONSTANT)
    /// "Albumy: 12 · Utwory: 140"
    Q_PROPERTY(QString counts READ counts NOTIFY contentChanged)
    /// There is no music at all on the side that is shown.
    Q_PROPERTY(bool withoutMusic READ withoutMusic NOTIFY contentChanged)
    /// Nothing is listed: there is no music, or the filters hide all of it.
    Q_PROPERTY(bool nothingListed READ nothingListed NOTIFY contentChanged)
    Q_PROPERTY(bool highResolutionListed READ highResolutionListed NOTIFY contentChanged)
    Q_PROPERTY(bool canReadDevice READ canReadDevice NOTIFY canReadDeviceChanged)

public:
    LibraryPresenter(MarluneModel &model, std::shared_ptr<CoverStore> covers, QObject *parent = nullptr);

    [[nodiscard]] AlbumListModel *albums() { return &m_albums; }
    [[nodiscard]] QStringList formats() const;
    [[nodiscard]] QStringList sortModes() const;
    [[nodiscard]] QString counts() const;
    [[nodiscard]] bool withoutMusic() const { return m_content.withoutMusic; }
    [[nodiscard]] bool nothingListed() const { return m_content.withoutMusic || m_content.tracks == 0; }
    [[nodiscard]] bool highResolutionListed() const { return m_content.highResolution; }
    [[nodiscard]] bool canReadDevice() const;

    /// Adds dropped files and folders to the library and the queue; other addresses are left out.
    Q_INVOKABLE void importDropped(const QList<QUrl> &urls);

Q_SIGNALS:
    void contentChanged();
    void canReadDeviceChanged();

private:
    struct Content {
        std::size_t albums = 0;
        std::size_t tracks = 0;
        bool withoutMusic = true;
        bool highResolution = false;

        bool operator==(const Content &) const = default;
    };
    void refreshContent();

    MarluneModel &m_model;
    AlbumListModel m_albums;
    Content m_content;
};
