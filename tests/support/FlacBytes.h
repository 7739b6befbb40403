// The head of a FLAC file, block by block (RFC 9639, section 8).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace FlacBytes {

inline std::string big(std::uint64_t value, int bytes)
{
    std::string result;
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8) {
        result.push_back(char(value >> shift & 0xFF));
    }
    return result;
}

inline std::string little(std::uint32_t value)
{
    const std::string bytes = big(value, 4);
    return {bytes.rbegin(), bytes.rend()};
}

inline std::string block(int type, std::string_view body, bool last = false)
{
    return big(std::uint64_t(type | (last ? 0x80 : 0)), 1) + big(body.size(), 3) + std::string(body);
}

inline std::string streamInfo(std::uint64_t rate, std::uint64_t bits, std::uint64_t samples)
{
    return std::string(10, '\0') + big(rate << 44 | 1ULL << 41 | (bits - 1) << 36 | samples, 8) + std::string(16, 'm');
}

inline std::string comments(const std::vector<std::string> &list, std::string_view vendor = "test")
{
    std::string body = little(std::uint32_t(vendor.size())) + std::string(vendor) + little(std::uint32_t(list.size()));
    for (const std::string &comment : list) {
        body += little(std::uint32_t(comment.size())) + comment;
    }
    return body;
}

inline std::string picture(std::uint32_t type, std::string_view data)
{
    const std::string mime = "image/jpeg";
    const std::string description = "okładka";
    return big(type, 4) + big(mime.size(), 4) + mime + big(description.size(), 4) + description + std::string(16, '\0')
        + big(data.size(), 4) + std::string(data);
}

} // namespace FlacBytes
