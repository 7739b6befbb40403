// Files made and replaced so that no half of one is ever there under its name.
//
// All functions are blocking, keep no state and may run on any thread; failures are std::system_error unless a comment
// says otherwise. Every call that changes a disk goes through DiskCalls.h.
#pragma once

#include "platform/files/Files.h"

#include <QByteArray>

#include <fcntl.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <span>
#include <string>

namespace Files {

/// Makes a file that must not exist, mode 0644, following no link at its name. A relative path is counted from the open
/// folder `from`.
[[nodiscard]] Descriptor createExclusively(const std::filesystem::path &path, int from = AT_FDCWD);
/// Writes all bytes, through short writes and interruptions.
void writeFully(int descriptor, std::span<const char> bytes);
/// Returns when the file's data is on the medium.
void sync(int descriptor);

/// Makes `folder` and those above it that are missing.
void makeFolders(const std::filesystem::path &folder);
/// Returns when the names in `folder` are on the medium, where the file system can do that.
void syncFolder(const std::filesystem::path &folder);
/// Brings a new name in the folder to the medium, where the file system can do that. By itself it gets there in some
/// seconds, and the file is whole without it, so a failure is none of the caller's.
void syncName(const Folder &folder);
void syncName(const std::filesystem::path &file);

/// A new UUID's text, in capitals.
[[nodiscard]] std::string newIdentifier();
/// A hidden name, new at each call, for a file or a folder on its way to its final name in the same folder.
[[nodiscard]] std::filesystem::path temporaryName(const QByteArray &purpose = {});
/// Whether a writer returns when the medium has the bytes, or leaves that to syncVolume().
enum class Durability : std::uint8_t { Now, Later };
/// Makes a file of these bytes, as createExclusively() does. On failure what was written of it stays.
void writeNew(const std::filesystem::path &file, std::span<const char> bytes, Durability durability, int from);
enum class Placing : std::uint8_t {
    Replace, ///< what is at the name goes
    Create ///< fails with EEXIST if the name is taken, be it by a dangling link
};
/// Writes the file `name` in the open folder `folder`.
using FileMaker = std::function<void(const std::filesystem::path &name, int folder)>;
/// Has `make` write a file of a hidden name in the folder, and gives it the name `name` in one step: whatever fails, no
/// half of a file has that name and none stays hidden. A failure of the system names the file by its final path.
void place(const Folder &folder, const std::filesystem::path &name, Placing placing, const FileMaker &make);
/// The same for a maker whose last look, after its bytes are written, tells how to place them.
using PlacingMaker = std::function<Placing(const std::filesystem::path &name, int folder)>;
void place(const Folder &folder, const std::filesystem::path &name, const PlacingMaker &make);
/// Replaces a file of the computer by one of these bytes in one step: whatever fails, what is there is the old file or
/// the complete new one, and no temporary file stays. Links on the way to it are followed.
void writeAtomically(const std::filesystem::path &path, std::span<const char> bytes);
/// Returns when all that was written to the volume of the folder is on the medium; for thousands of small files this
/// takes a fraction of the time of one call for each. `name` should be one of them, because drivers in user space
/// (FUSE) write out what they hold only when they are asked for a file; where it is none, the folder itself is asked.
void syncVolume(const Folder &folder, const std::filesystem::path &name);

} // namespace Files
