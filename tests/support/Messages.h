// What an operation throws, as the text that the user would read.
#pragma once

#include "platform/MarluneError.h"

#include <ostream>
#include <string>

/// "" if `operation` throws nothing.
template <typename Operation> std::string failureOf(const Operation &operation)
{
    try {
        operation();
        return {};
    } catch (const std::exception &) {
        return describeFailure(std::current_exception()).toStdString();
    }
}

/// The message of a MarluneError; another exception passes through and fails the test.
template <typename Operation> std::string messageOf(const Operation &operation)
{
    try {
        operation();
        return {};
    } catch (const MarluneError &error) {
        return error.message().toStdString();
    }
}

inline std::ostream &operator<<(std::ostream &stream, const QString &text)
{
    return stream << text.toStdString();
}
