#include "storage/ComputerDisk.h"

#include "platform/MarluneError.h"

namespace Storage {

void onComputersDisk(const std::filesystem::path &path, const std::function<void()> &work)
{
    try {
        work();
    } catch (const std::system_error &failure) {
        if (failure.code() == std::errc::no_space_on_device || failure.code().value() == EDQUOT) {
            throw MarluneError(QStringLiteral("Na dysku komputera zabrakło miejsca."));
        }
        if (dynamic_cast<const std::filesystem::filesystem_error *>(&failure) != nullptr) {
            throw;
        }
        throw std::filesystem::filesystem_error("write", path, failure.code());
    }
}

} // namespace Storage
