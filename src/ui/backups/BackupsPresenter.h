// The copies on the computer as the backups page shows them: what each is of, when it was made and how large it is.
//
// Sizes are read while the page is shown. UI thread.
#pragma once

#include "model/Model.h"

#include "ui/lists/FigureReader.h"
#include "ui/lists/FileListModel.h"

#include "platform/tasks/BurstTimer.h"

class BackupsPresenter : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The program makes it for the model.")
    Q_PROPERTY(FileListModel *backups READ backups CONSTANT)
    Q_PROPERTY(bool canBackUp READ canBackUp NOTIFY canBackUpChanged)

public:
    explicit BackupsPresenter(MarluneModel &model, QObject *parent = nullptr);

    [[nodiscard]] FileListModel *backups() { return &m_backups; }
    [[nodiscard]] bool canBackUp() const { return m_model.device().has_value() && !m_model.busy(); }

    /// Opens the folder of a row in the file manager.
    Q_INVOKABLE void open(int row) const;

Q_SIGNALS:
    void canBackUpChanged();

private:
    [[nodiscard]] QString detail(const std::filesystem::path &backup) const;
    void refresh();

    MarluneModel &m_model;
    FigureReader m_sizes;
    FileListModel m_backups;
    BurstTimer m_change {[this] { refresh(); }};
};
