#include "library/FileOrder.h"

#include "platform/files/Files.h"
#include "platform/tasks/Parallel.h"
#include "platform/text/TextOrder.h"

#include <QThread>

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>

namespace {

/// The number of ASCII digits with which a text begins, if that is all of one; and it is told which texts are behind
/// which, however they go on.
std::optional<std::uint64_t> numberAtBeginning(std::string_view text)
{
    constexpr std::size_t mostDigits = 9;
    const std::size_t end = std::min(text.find_first_not_of("0123456789"), text.size());
    const bool mayGoOn = end < text.size() && (text[end] & 0x80) != 0; // there are digits of other scripts
    std::uint64_t number = 0;
    (void)std::from_chars(text.data(), text.data() + end, number);
    return end > 0 && end <= mostDigits && !mayGoOn ? std::optional(number) : std::nullopt;
}

/// How a comes to stand to b. What both begin with, up to a separator, has no say: only that is left out.
int compared(const AudioFile &a, const AudioFile &b)
{
    const std::string_view first = a.path.native();
    const std::string_view second = b.path.native();
    const auto differing = std::ranges::mismatch(first, second).in1;
    const std::size_t common = first.substr(0, std::size_t(differing - first.begin())).rfind('/') + 1;
    const std::optional<std::uint64_t> number = numberAtBeginning(first.substr(common));
    const std::optional<std::uint64_t> other = numberAtBeginning(second.substr(common));
    if (number && other && *number != *other) { // most tracks: without asking the language
        return *number < *other ? -1 : 1;
    }
    return TextOrder::compare(Files::textOfBytes(first.substr(common)), Files::textOfBytes(second.substr(common)));
}

/// Where the runs of files that are in order end.
std::vector<std::size_t> endsOfRuns(const std::vector<AudioFile> &files)
{
    constexpr std::size_t most = 1000; // of one piece of work
    std::vector<std::vector<std::size_t>> portions(files.size() / most + 1);
    Parallel::forEach(portions.size(), QThread::idealThreadCount(), [&](std::size_t number, int) {
        for (std::size_t next = number * most + 1; next <= std::min((number + 1) * most, files.size()); ++next) {
            if (next == files.size() || compared(files[next - 1], files[next]) >= 0) {
                portions[number].push_back(next);
            }
        }
    });
    std::vector<std::size_t> ends;
    for (const std::vector<std::size_t> &portion : portions) {
        ends.insert(ends.end(), portion.begin(), portion.end());
    }
    return ends;
}

} // namespace

namespace FileOrder {

bool sort(std::vector<AudioFile> &files)
{
    constexpr std::size_t manyRuns = 50; // from which on one key a file is the cheaper way
    const std::vector<std::size_t> ends = endsOfRuns(files);
    if (ends.size() > manyRuns) {
        TextOrder::stableSort(files, [](const AudioFile &file) { return Files::text(file.path); });
        return false;
    }
    const auto isBefore = [](const AudioFile &a, const AudioFile &b) { return compared(a, b) < 0; };
    for (std::size_t run = 1; run < ends.size(); ++run) {
        const auto begin = files.begin() + std::ptrdiff_t(ends[run - 1]);
        const auto end = files.begin() + std::ptrdiff_t(ends[run]);
        const auto first = std::upper_bound(files.begin(), begin, *begin, isBefore); // mostly the two are near
        std::inplace_merge(first, begin, std::lower_bound(begin, end, *(begin - 1), isBefore), isBefore);
    }
    return ends.size() <= 1;
}

} // namespace FileOrder
