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
    std::string extension = file.extension().native();
    if (extension.size() < 2) {
        return false;
    }
    std::transform(extension.begin(), extension.end(), extension.begin(),
        [](char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; });
    const std::string_view withoutDot = std::string_view(extension).substr(1);
    return std::find(audioExtensions.begin(), audioExtensions.end(), withoutDot) != audioExtensions.end();
}
