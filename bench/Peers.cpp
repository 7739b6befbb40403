#include "Peers.h"

#include <attachedpictureframe.h>
#include <fileref.h>
#include <flacfile.h>
#include <id3v2tag.h>
#include <mp4coverart.h>
#include <mp4file.h>
#include <mpegfile.h>
#include <oggfile.h>
#include <opusfile.h>
#include <tpropertymap.h>
#include <vorbisfile.h>
#include <xiphcomment.h>

namespace {

std::size_t pictures(const TagLib::List<TagLib::FLAC::Picture *> &list)
{
    std::size_t sum = 0;
    for (const TagLib::FLAC::Picture *picture : list) {
        sum += picture->data().size();
    }
    return sum;
}

std::size_t pictures(TagLib::File *file)
{
    if (auto *flac = dynamic_cast<TagLib::FLAC::File *>(file)) {
        return pictures(flac->pictureList());
    }
    if (auto *mpeg = dynamic_cast<TagLib::MPEG::File *>(file)) {
        std::size_t sum = 0;
        if (const TagLib::ID3v2::Tag *tag = mpeg->ID3v2Tag()) {
            for (const TagLib::ID3v2::Frame *frame : tag->frameList("APIC")) {
                if (const auto *picture = dynamic_cast<const TagLib::ID3v2::AttachedPictureFrame *>(frame)) {
                    sum += picture->picture().size();
                }
            }
        }
        return sum;
    }
    if (auto *mp4 = dynamic_cast<TagLib::MP4::File *>(file)) {
        std::size_t sum = 0;
        for (const TagLib::MP4::CoverArt &cover : mp4->tag()->item("covr").toCoverArtList()) {
            sum += cover.data().size();
        }
        return sum;
    }
    if (auto *comment = dynamic_cast<TagLib::Ogg::XiphComment *>(file->tag())) {
        return pictures(comment->pictureList());
    }
    return 0;
}

std::size_t read(TagLib::File *file)
{
    std::size_t sum = 0;
    if (const TagLib::AudioProperties *properties = file->audioProperties()) {
        sum += std::size_t(properties->lengthInMilliseconds() + properties->sampleRate());
    }
    const TagLib::PropertyMap tags = file->properties();
    for (const auto &tag : tags) {
        sum += tag.second.size();
    }
    return sum + pictures(file);
}

} // namespace

namespace Peers {

std::size_t scan(const std::vector<std::filesystem::path> &files)
{
    std::size_t sum = 0;
    for (const std::filesystem::path &path : files) {
        const TagLib::FileRef file(path.c_str());
        sum += file.isNull() ? 0 : read(file.file());
    }
    return sum;
}

std::size_t scanFlac(const std::vector<std::filesystem::path> &files)
{
    std::size_t sum = 0;
    for (const std::filesystem::path &path : files) {
        TagLib::FLAC::File file(path.c_str());
        sum += read(&file);
    }
    return sum;
}

} // namespace Peers
