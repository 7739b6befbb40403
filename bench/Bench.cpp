// marlune_bench NAME LIBRARY: measures one figure, or all of them.
#include "Figures.h"

#include <QGuiApplication>

#include <cstdio>
#include <cstring>

namespace {

struct Figure {
    const char *name;
    void (*measure)(const std::filesystem::path &library);
};

constexpr Figure figures[] = {{"import", Bench::import}, {"import-cold", Bench::importCold},
    {"restart", Bench::restart}, {"rescan", Bench::rescan}, {"flac", Bench::flac}, {"digest", Bench::digest},
    {"transfer", Bench::transfer}, {"cleanup", Bench::cleanup}, {"zip", Bench::zip}, {"install", Bench::install},
    {"group", Bench::group}, {"browse", Bench::browse}, {"jpeg", Bench::jpeg},
    {"jpeg-progressive", Bench::jpegProgressive}, {"check", Bench::check}, {"catalogue", Bench::catalogue},
    {"covers", Bench::covers}, {"inspect", Bench::inspect}, {"duplicates", Bench::duplicates}, {"play", Bench::play},
    {"heartbeat", Bench::heartbeatAndMemory}, {"memory", Bench::heartbeatAndMemory}, {"lists", Bench::lists},
    {"table", Bench::table}, {"typing", Bench::typing}, {"tree", Bench::tree}, {"tiles", Bench::tiles},
    {"scroll", Bench::scroll}, {"scroll-many", Bench::scrollMany}, {"covers-memory", Bench::coversMemory},
    {"drawings", Bench::drawings}, {"flow", Bench::flow}, {"translate", Bench::translate},
    {"language", Bench::language}, {"start", Bench::start}};

} // namespace

int main(int argc, char **argv)
{
    if (argc == 3 && std::strcmp(argv[1], "first-frame") == 0) {
        return Bench::firstFrame(argc, argv, argv[2]);
    }
    if (argc == 3 && std::strcmp(argv[1], "whole-library") == 0) {
        return Bench::wholeLibrary(argc, argv, argv[2]);
    }
    const QGuiApplication application(argc, argv);
    if (argc < 3) {
        std::fprintf(stderr, "usage: %s NAME|all LIBRARY\n", argv[0]);
        return 2;
    }
    const bool all = std::strcmp(argv[1], "all") == 0;
    bool known = false;
    void (*last)(const std::filesystem::path &) = nullptr;
    for (const Figure &figure : figures) {
        if ((all || std::strcmp(argv[1], figure.name) == 0) && figure.measure != last) {
            figure.measure(argv[2]);
            last = figure.measure;
            known = true;
        }
    }
    if (!known) {
        std::fprintf(stderr, "no figure of the name %s\n", argv[1]);
    }
    return known ? 0 : 2;
}
