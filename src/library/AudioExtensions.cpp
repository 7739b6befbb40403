#include "library/AudioExtensions.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace {

constexpr std::array<std::string_view, 13> audioExtensions {
    "mp3", "flac", "m4a", "aac", "ogg", "opus", "wav", "aiff", "aif", "alac", "ape", "wv", "mpc"};

} // namespace

bool hasAudioExtension(const std::filesystem::path &file)
{
    std::string_view name = file.native();
    name.remove_prefix(name.rfind('/') + 1);
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0) {
        return false;
    }
    std::string extension(name.substr(dot + 1));
    std::transform(extension.begin(), extension.end(), extension.begin(),
        [](char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; });
    return std::find(audioExtensions.begin(), audioExtensions.end(), extension) != audioExtensions.end();
}
