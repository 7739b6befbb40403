#include "platform/MarluneError.h"

#include "platform/files/Files.h"

#include <filesystem>
#include <system_error>

QString describeFailure(const std::exception_ptr &failure)
{
    try {
        std::rethrow_exception(failure);
    } catch (const MarluneError &error) {
        return error.message();
    } catch (const std::filesystem::filesystem_error &error) {
        const QString reason = QString::fromStdString(error.code().message());
        return error.path1().empty() ? reason : reason + QStringLiteral(": ") + Files::text(error.path1().filename());
    } catch (const std::system_error &error) {
        return QString::fromStdString(error.code().message());
    } catch (const std::exception &error) {
        return QString::fromUtf8(error.what());
    }
}
