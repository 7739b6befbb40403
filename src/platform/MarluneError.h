// The program's one error type: a finished text for the user.
//
// Failures of the operating system are not wrapped in it; they travel as std::system_error.
#pragma once

#include <QString>

#include <stdexcept>

/// Thrown with a complete Polish sentence, shown to the user as it is.
class MarluneError : public std::runtime_error {
public:
    explicit MarluneError(const QString &message)
        : std::runtime_error(message.toStdString())
        , m_message(message)
    {
    }

    [[nodiscard]] QString message() const { return m_message; }

private:
    QString m_message;
};

/// The text to show for any failure that a job lets through: a MarluneError's own message, a system failure's
/// description (with the names it concerns, where it has them), otherwise what the exception says of itself.
[[nodiscard]] QString describeFailure(const std::exception_ptr &failure);
