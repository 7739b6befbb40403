// Runs a fuzz target without libFuzzer, for the tests: every seed as it is, then seeds changed at random until the
// seconds are over.
//
//     NAME SECONDS SEED...     each a file, or a folder of files
//
// The changes are the same in every run, so that a finding comes back under a debugger: the n-th input of a target
// depends on n and the seeds alone.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace {

using Bytes = std::string;

Bytes contentOf(const std::filesystem::path &file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::vector<Bytes> seedsAt(const std::filesystem::path &place)
{
    if (!is_directory(place)) {
        return {contentOf(place)};
    }
    std::vector<std::filesystem::path> files(
        std::filesystem::directory_iterator(place), std::filesystem::directory_iterator {});
    std::sort(files.begin(), files.end());
    std::vector<Bytes> seeds;
    std::transform(files.begin(), files.end(), std::back_inserter(seeds), contentOf);
    return seeds;
}

class Changes {
public:
    explicit Changes(const std::vector<Bytes> &seeds)
        : m_seeds(seeds)
    {
    }

    Bytes next()
    {
        Bytes bytes = m_seeds[below(m_seeds.size())];
        for (std::size_t count = 1 + below(6); count > 0; --count) {
            change(bytes);
        }
        return bytes;
    }

private:
    std::size_t below(std::size_t limit) { return limit == 0 ? 0 : m_random() % limit; }

    void change(Bytes &bytes)
    {
        // Values that lengths and offsets go wrong at.
        static constexpr std::array<std::uint64_t, 9> edges {
            0, 1, 0x7f, 0xff, 0x7fff, 0xffff, 0x7fffffff, 0xffffffff, ~0ULL};
        const std::size_t at = below(bytes.size() + 1);
        const std::size_t rest = bytes.size() - at;
        const std::size_t length = below(std::min<std::size_t>(rest, 64) + 1);
        switch (below(7)) {
        case 0:
        case 1:
            if (rest > 0) {
                bytes[at] = below(2) == 0 ? char(bytes[at] ^ char(1U << below(8))) : char(below(256));
            }
            break;
        case 2: { // a number of 1, 2, 4 or 8 bytes, in either order
            const std::size_t width = std::min<std::size_t>(rest, std::size_t(1) << below(4));
            const std::uint64_t value = edges[below(edges.size())] + below(2);
            const bool isBigEndian = below(2) == 0;
            for (std::size_t i = 0; i < width; ++i) {
                bytes[at + i] = char(value >> (8 * (isBigEndian ? width - 1 - i : i)));
            }
            break;
        }
        case 3:
            bytes.erase(at, length);
            break;
        case 4:
            bytes.insert(below(bytes.size() + 1), bytes.substr(at, length));
            break;
        case 5:
            bytes.resize(at);
            break;
        default: { // goes on as another seed does
            const Bytes &other = m_seeds[below(m_seeds.size())];
            bytes.replace(at, Bytes::npos, other, below(other.size() + 1), Bytes::npos);
        }
        }
    }

    const std::vector<Bytes> &m_seeds;
    std::mt19937_64 m_random {20'250'101};
};

void run(const Bytes &bytes)
{
    const std::vector<std::uint8_t> exact(bytes.begin(), bytes.end()); // no byte behind them belongs to it
    LLVMFuzzerTestOneInput(exact.data(), exact.size());
}

} // namespace

int main(int argc, char **argv)
{
    std::vector<Bytes> seeds;
    for (int i = 2; i < argc; ++i) {
        std::ranges::move(seedsAt(argv[i]), std::back_inserter(seeds));
    }
    if (seeds.empty()) {
        std::fputs("usage: NAME SECONDS SEED...\n", stderr);
        return 2;
    }
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(std::stoi(argv[1]));
    std::for_each(seeds.begin(), seeds.end(), run);
    Changes changes(seeds);
    long rounds = 0;
    for (; std::chrono::steady_clock::now() < end; ++rounds) {
        run(changes.next());
    }
    std::printf("%zu seeds, %ld changed ones\n", seeds.size(), rounds);
    return rounds > 0 ? 0 : 1;
}
