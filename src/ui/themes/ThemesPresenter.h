// What the themes page shows beyond the model's own fields, and what can be done there. UI thread.
#pragma once

#include "model/Model.h"

#include "ui/lists/TypeAhead.h"
#include "ui/themes/ThemeListModel.h"

#include <QUrl>

class ThemesPresenter : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The program makes it for the model.")
    Q_PROPERTY(ThemeListModel *themes READ themes CONSTANT)
    Q_PROPERTY(bool hasDevice READ hasDevice NOTIFY changed)
    Q_PROPERTY(bool canImport READ canImport NOTIFY changed)
    /// How the catalogue's pictures came, or what the page is for.
    Q_PROPERTY(QString note READ note NOTIFY changed)

public:
    explicit ThemesPresenter(MarluneModel &model, QObject *parent = nullptr);

    [[nodiscard]] ThemeListModel *themes() { return &m_themes; }
    [[nodiscard]] bool hasDevice() const { return m_model.device().has_value(); }
    [[nodiscard]] bool canImport() const { return hasDevice() && !m_model.busy(); }
    [[nodiscard]] QString note() const;

    Q_INVOKABLE void open(int row);
    /// Asks for a picture of the theme of a row.
    Q_INVOKABLE void choosePicture(int row);
    /// Shows the theme's file in the file manager.
    Q_INVOKABLE void reveal(int row) const;
    /// Opens the catalogue's page for the device's kind.
    Q_INVOKABLE void openCatalogue() const;
    /// The row to which a typed letter leads, from `current` on; -1 for none. `modifiers` are Qt::KeyboardModifiers.
    Q_INVOKABLE int rowFor(const QString &typed, int modifiers, int current);

    /// What letting go of these addresses would do, or why it does nothing: for a heading and a line below it.
    [[nodiscard]] Q_INVOKABLE QString dropTitle(const QList<QUrl> &urls) const;
    [[nodiscard]] Q_INVOKABLE bool isPackage(const QList<QUrl> &urls) const;
    /// Installs the package that they are; nothing where they are several files or something else.
    Q_INVOKABLE void importDropped(const QList<QUrl> &urls);

Q_SIGNALS:
    void changed();

private:
    void fetchPreviewsOnce();

    MarluneModel &m_model;
    ThemeListModel m_themes;
    TypeAhead m_typeAhead;
};
