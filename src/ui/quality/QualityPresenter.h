// What the quality page shows beyond the model's own fields: findings, their counts, and what can be done now.
//
// The inspection runs in the background, anew whenever what it looks at may have changed, and only while the page is
// shown: to ask for thousands of files takes time, and a device's disk can hang. Covers that a job changes one after
// the other are looked at once the job has ended. UI thread.
#pragma once

#include "model/Model.h"

#include "ui/quality/IssueListModel.h"

#include "platform/tasks/BurstTimer.h"

#include <QObject>

class QualityPresenter : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The program makes it for the model.")
    Q_PROPERTY(IssueListModel *issues READ issues CONSTANT)
    Q_PROPERTY(QStringList kinds READ kinds CONSTANT)
    /// For each of the kinds; "—" for what has not been looked for yet.
    Q_PROPERTY(QStringList counts READ counts NOTIFY changed)
    Q_PROPERTY(QStringList filters READ filters CONSTANT)
    Q_PROPERTY(QString filter READ filter WRITE setFilter NOTIFY changed)
    /// There is no music at all on the side that is shown.
    Q_PROPERTY(bool withoutMusic READ withoutMusic NOTIFY changed)
    /// Why no finding is listed, where there is none.
    Q_PROPERTY(QString emptyTitle READ emptyTitle NOTIFY changed)
    Q_PROPERTY(QString emptyDetail READ emptyDetail NOTIFY changed)
    /// What the filter lets through has been looked for, and there is none.
    Q_PROPERTY(bool clean READ clean NOTIFY changed)
    Q_PROPERTY(bool canUseDevice READ canUseDevice NOTIFY changed)
    Q_PROPERTY(bool canCheck READ canCheck NOTIFY changed)

public:
    explicit QualityPresenter(MarluneModel &model, QObject *parent = nullptr);
    ~QualityPresenter() override;

    [[nodiscard]] IssueListModel *issues() { return &m_issues; }
    [[nodiscard]] QStringList kinds() const;
    [[nodiscard]] QStringList counts() const;
    [[nodiscard]] QStringList filters() const;
    [[nodiscard]] QString filter() const { return m_filter; }
    void setFilter(const QString &filter);
    [[nodiscard]] bool withoutMusic() const { return m_model.activeTracks().empty(); }
    [[nodiscard]] QString emptyTitle() const;
    [[nodiscard]] QString emptyDetail() const;
    [[nodiscard]] bool clean() const;
    [[nodiscard]] bool canUseDevice() const { return m_model.device().has_value() && !m_model.busy(); }
    [[nodiscard]] bool canCheck() const { return !withoutMusic() && !m_model.busy(); }

    Q_INVOKABLE void openMusic() { m_model.setSection(Section::Music); }
    /// Opens the album that a finding concerns.
    Q_INVOKABLE void openAlbum(int row);
    /// Opens the search for its cover on the network.
    Q_INVOKABLE void lookUpCover(int row);
    /// Makes a cover for the album that a finding concerns: of its own picture, or of a file that the user is asked
    /// for.
    Q_INVOKABLE void chooseCover(int row, bool current);
    /// Shows a finding's files in the file manager.
    Q_INVOKABLE void reveal(int row) const;

Q_SIGNALS:
    void changed();

private:
    [[nodiscard]] bool lacksDuplicateCheck() const;
    [[nodiscard]] std::shared_ptr<const Album> albumOf(int row) const;
    void abandonInspection();
    void forget();
    [[nodiscard]] bool isShown() const { return m_model.section() == Section::Quality; }
    void inspectIfShown();
    void refreshIfShown();
    QCoro::Task<> runInspection();
    void takeDuplicates();
    void refresh();

    MarluneModel &m_model;
    IssueListModel m_issues;
    BurstTimer m_inspection {[this] { inspectIfShown(); }};
    BurstTimer m_change {[this] { refreshIfShown(); }};
    QString m_filter;
    IssueListModel::Issues m_found; ///< by the last inspection
    IssueListModel::Issues m_duplicates; ///< by the last check for them
    bool m_inspected = false; ///< m_found is of the side that is shown
    std::stop_source m_inspecting; ///< of the inspection that may land
};
