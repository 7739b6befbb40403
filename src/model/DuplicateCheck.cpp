#include "model/DuplicateCheck.h"

#include <optional>
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

std::stop_token DuplicateCheck::begin()
{
    set(QStringLiteral("Sprawdzam zawartość plików…"));
    m_running = true;
    m_stop = std::stop_source();
    return m_stop.get_token();
}

void DuplicateCheck::finish(std::vector<QualityIssue> found)
{
    const QString groups = QString::number(found.size());
    set(QStringLiteral("Znaleziono grup identycznych plików: ") + groups
            + QStringLiteral(". Sprawdzone przez SHA-256."),
        std::move(found));
}

void DuplicateCheck::fail()
{
    set(interrupted());
}

void DuplicateCheck::forget()
{
    m_stop.request_stop();
    set(notChecked);
}

void DuplicateCheck::set(const QString &status, std::optional<std::vector<QualityIssue>> found)
{
    if (m_complete || found) {
        m_complete = found.has_value();
        m_issues = std::move(found).value_or(std::vector<QualityIssue> {});
        m_listener.issuesChanged();
    }
    if (m_status != status) {
        m_status = status;
        m_listener.statusChanged();
    }
}
