// The theme that the sheet is about, with what is known of it now. UI thread.
#pragma once

#include "model/Model.h"

#include <QtQml/qqmlregistration.h>

class ThemeSheetPresenter : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The program makes it for the model.")
    Q_PROPERTY(bool wanted READ wanted NOTIFY changed)
    Q_PROPERTY(QString name READ name NOTIFY changed)
    /// Of the playing screen, and of the menu; invalid where there is none.
    Q_PROPERTY(QUrl playingPicture READ playingPicture NOTIFY changed)
    Q_PROPERTY(QUrl menuPicture READ menuPicture NOTIFY changed)
    Q_PROPERTY(QString author READ author NOTIFY changed)
    /// Where the theme's pictures come from.
    Q_PROPERTY(QString source READ source NOTIFY changed)
    /// They are the catalogue's, and so perhaps of another version.
    Q_PROPERTY(bool fromCatalogue READ fromCatalogue NOTIFY changed)
    /// The catalogue has a page of the theme.
    Q_PROPERTY(bool hasPage READ hasPage NOTIFY changed)
    // What the theme is set up with.
    Q_PROPERTY(QString font READ font NOTIFY changed)
    Q_PROPERTY(QString wps READ wps NOTIFY changed)
    Q_PROPERTY(QString sbs READ sbs NOTIFY changed)

public:
    explicit ThemeSheetPresenter(MarluneModel &model, QObject *parent = nullptr);

    [[nodiscard]] bool wanted() const { return m_model.openTheme().has_value(); }
    [[nodiscard]] QString name() const;
    [[nodiscard]] QUrl playingPicture() const;
    [[nodiscard]] QUrl menuPicture() const;
    [[nodiscard]] QString author() const;
    [[nodiscard]] QString source() const;
    [[nodiscard]] bool fromCatalogue() const { return preview().source.contains(QStringLiteral("katalogu")); }
    [[nodiscard]] bool hasPage() const { return preview().detail.has_value(); }
    [[nodiscard]] QString font() const { return setting(QStringLiteral("font")); }
    [[nodiscard]] QString wps() const { return setting(QStringLiteral("wps")); }
    [[nodiscard]] QString sbs() const { return setting(QStringLiteral("sbs")); }

    /// Asks for a picture of the theme.
    Q_INVOKABLE void choosePicture() { m_model.chooseThemePreview(m_theme); }
    /// Shows the theme's file in the file manager.
    Q_INVOKABLE void reveal() const;
    /// Opens the catalogue's page of it.
    Q_INVOKABLE void openPage() const;

    /// The sheet has been closed, however that was done.
    Q_INVOKABLE void dismiss() { m_model.setOpenTheme(std::nullopt); }

Q_SIGNALS:
    void changed();

private:
    [[nodiscard]] ThemePreview preview() const;
    [[nodiscard]] QString setting(const QString &key) const;
    void refresh();

    MarluneModel &m_model;
    Theme m_theme; ///< stays while a closed sheet fades
};
