// Puts the model's questions for files and folders to the user with the desktop's own dialogs.
//
// The C++ side holds the open question; the page's dialogs show it and report the answer. A new question takes the
// place of one that is still open. UI thread.
#pragma once

#include "platform/desktop/Panels.h"

#include <QObject>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

class DesktopPanels : public QObject, public Panels {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The program makes it.")
    Q_PROPERTY(QString prompt READ prompt NOTIFY asked)
    Q_PROPERTY(QString message READ message NOTIFY asked)
    Q_PROPERTY(bool multiple READ multiple NOTIFY asked)
    Q_PROPERTY(QUrl startFolder READ startFolder CONSTANT)
    Q_PROPERTY(QUrl picturesFolder READ picturesFolder CONSTANT)
    Q_PROPERTY(QString picturePatterns READ picturePatterns CONSTANT)
    Q_PROPERTY(QUrl downloadsFolder READ downloadsFolder CONSTANT)
    Q_PROPERTY(QString archivePatterns READ archivePatterns CONSTANT)

public:
    // An int, as each enumeration for QML: compiled handlers take one from a signal's argument.
    enum Kind { ChooseFiles, ChooseFolder, ChooseFilesOrFolder, ChoosePictures, ChooseArchives };
    Q_ENUM(Kind)

    explicit DesktopPanels(QObject *parent = nullptr);

    void open(const Request &request, Answer answered) override;

    [[nodiscard]] QString prompt() const { return m_request.prompt; }
    [[nodiscard]] QString message() const { return m_request.message; }
    [[nodiscard]] bool multiple() const { return m_request.multiple; }
    /// Where the first question begins: the user's music folder, otherwise the home folder.
    [[nodiscard]] static QUrl startFolder();
    /// The same for pictures.
    [[nodiscard]] static QUrl picturesFolder();
    /// File name patterns of pictures, as a dialog takes them.
    [[nodiscard]] static QString picturePatterns();
    /// Both for ZIP archives.
    [[nodiscard]] static QUrl downloadsFolder();
    [[nodiscard]] static QString archivePatterns();

    /// Answers the open question, once; an answer without a local file counts as cancelled.
    Q_INVOKABLE void answer(const QList<QUrl> &chosen);
    Q_INVOKABLE void cancel();

Q_SIGNALS:
    void asked(DesktopPanels::Kind kind);

private:
    Request m_request;
    Answer m_answered;
};
