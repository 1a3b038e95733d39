#include "engine/media/Chapters.h"

#include "engine/support/Failure.h"

#include <algorithm>
#include <memory>
#include <span>

namespace zelcore {

namespace {

constexpr AVRational kChapterClock{1, 1000};
/// Longer titles have no place in an MP4's list of chapters.
constexpr std::size_t kLongestTitle = 255;

/// Cut between two characters.
std::string shortened(std::string title) {
    if (title.size() > kLongestTitle) {
        std::size_t size = kLongestTitle;
        while (size > 0 && (static_cast<unsigned char>(title[size]) & 0xC0U) == 0x80U) {
            --size;
        }
        title.resize(size);
    }
    return title;
}

} // namespace

std::vector<Chapter> chaptersOf(const AVFormatContext& format) {
    std::vector<Chapter> chapters;
    for (const AVChapter* each : std::span(format.chapters, format.nb_chapters)) {
        if (each->start != kNoTime) {
            const Ticks begin = toTicks(each->start, each->time_base);
            const Ticks end = each->end == kNoTime ? begin : toTicks(each->end, each->time_base);
            const AVDictionaryEntry* title = av_dict_get(each->metadata, "title", nullptr, 0);
            chapters.push_back({begin, end, title == nullptr ? "" : shortened(title->value)});
        }
    }
    std::ranges::stable_sort(chapters, {}, &Chapter::begin);
    return chapters;
}

void addChapters(const std::vector<Chapter>& chapters, AVFormatContext& to) {
    if (chapters.empty()) {
        return;
    }
    to.chapters = static_cast<AVChapter**>(av_calloc(chapters.size(), sizeof(AVChapter*)));
    if (to.chapters == nullptr) {
        throw std::bad_alloc();
    }
    for (std::size_t i = 0; i < chapters.size(); ++i) {
        const Chapter& from = chapters[i];
        using ChapterPtr = std::unique_ptr<AVChapter, AvFreeObject<av_free>>;
        auto chapter = owned<ChapterPtr>(static_cast<AVChapter*>(av_mallocz(sizeof(AVChapter))));
        const Ticks next = i + 1 < chapters.size() ? chapters[i + 1].begin : INT64_MAX;
        chapter->id = static_cast<std::int64_t>(i);
        chapter->time_base = kChapterClock;
        chapter->start = av_rescale_q(from.begin, kTicks, kChapterClock);
        chapter->end = av_rescale_q(std::clamp(from.end, from.begin, next), kTicks, kChapterClock);
        require(av_dict_set(&chapter->metadata, "title", from.title.c_str(), 0), "chapter");
        to.chapters[to.nb_chapters++] = chapter.release();
    }
}

} // namespace zelcore
