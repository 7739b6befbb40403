#include "model/DuplicateCheck.h"

#include <utility>

namespace {

const QString notChecked = QStringLiteral("Duplikaty nie zostały jeszcze sprawdzone.");

} // namespace

DuplicateCheck::DuplicateCheck(Listener listener)
    : m_listener(std::move(listener))
    , m_status(notChecked)
{
}

QString DuplicateCheck::interrupted()
{
    return QStringLiteral("Sprawdzanie przerwane — wynik nie jest kompletny.");
}

void DuplicateCheck::begin()
{
    set(QStringLiteral("Sprawdzam zawartość plików…"));
    m_running = true;
    m_overtaken = false;
}

void DuplicateCheck::finish(std::vector<QualityIssue> found)
{
    const QString groups = QString::number(found.size());
    set(QStringLiteral("Znaleziono grup identycznych plików: ") + groups
            + QStringLiteral(". Sprawdzone przez SHA-256."),
        std::move(found), true);
}

void DuplicateCheck::interrupt(std::vector<QualityIssue> found)
{
    set(interrupted(), std::move(found));
}

void DuplicateCheck::forget()
{
    m_overtaken = true;
    set(notChecked);
}

void DuplicateCheck::set(const QString &status, std::vector<QualityIssue> found, bool isComplete)
{
    if (m_complete || isComplete || m_issues != found) {
        m_complete = isComplete;
        m_issues = std::move(found);
        m_listener.issuesChanged();
    }
    if (m_status != status) {
        m_status = status;
        m_listener.statusChanged();
    }
}
