#include "engine/job/ConversionJob.h"

#include "engine/files/DestinationFile.h"
#include "engine/job/Ending.h"
#include "engine/job/PartJoiner.h"
#include "engine/job/PartWatch.h"
#include "engine/support/Trace.h"
#include "engine/tracks/PictureSurvey.h"
#include "engine/verify/Verifier.h"

#include <algorithm>

namespace zelcore {

namespace {

/// More than these are opened anew when their turn comes; the system limits open files.
constexpr std::size_t kMostKeptOpen = 16;

Sources openSources(const std::vector<std::string>& paths, const StopFlag& stop, Cover& cover) {
    Sources sources;
    for (const std::string& path : paths) {
        sources.push_back(std::make_unique<Source>(path, stop));
        sources.back()->traceUnwanted(cover.isEmpty() ? sources.back()->giveCover(cover)
                                                      : std::nullopt);
        if (sources.size() > kMostKeptOpen) {
            sources.back()->close();
        }
    }
    return sources;
}

/// Whoever hears of the end may delete the sources: they have to be those that were read.
void throwIfAnyChanged(const Sources& sources) {
    for (const auto& source : sources) {
        throwIfChanged(source->path(), source->state());
    }
}

void traceJob(const Sources& sources, const std::vector<TrackPlan>& plans) {
    for (const auto& source : sources) {
        trace(TraceLevel::Info,
              text("Source \"", source->path(), "\": ", source->format().iformat->name, ", ",
                   toSeconds(source->duration()), " s, ", source->state().size, " bytes"));
    }
    for (std::size_t track = 0; track < plans.size(); ++track) {
        trace(TraceLevel::Info, text("Track ", track, ": ",
                                     avcodec_get_name(plans[track].reference->codecpar->codec_id),
                                     plans[track].isCopied ? " is copied" : " is transcoded"));
    }
}

} // namespace

ConversionJob::ConversionJob(std::vector<std::string> sources, std::string destination,
                             zel::IZelMediaConverterSink* sink)
    : mSources(std::move(sources)),
      mDestination(std::move(destination)),
      mAcceptsLosses(areLossesAccepted()),
      mSettings(currentSettings()),
      mSink(sink) {
}

void ConversionJob::run() noexcept {
    try {
        keepLossSentence({});
        keepEnding({});
        convert();
    } catch (const Stopped&) {
        trace(TraceLevel::Info, "Conversion stopped");
    } catch (const Failure& failure) {
        report(failure.code(), failure.what());
    } catch (const std::bad_alloc&) {
        report(ErrorCode::OutOfMemory, "Out of memory");
    } catch (const std::exception& error) {
        report(ErrorCode::InternalError, error.what());
    } catch (...) {
        report(ErrorCode::InternalError, "Unknown failure");
    }
}

void ConversionJob::convert() {
    auto destination = std::make_unique<DestinationFile>(mDestination, mSources, mStop);
    Cover cover;
    const Sources sources = openSources(mSources, mStop, cover);
    std::vector<TrackPlan> plans = planTracks(sources);
    for (TrackPlan& plan : plans) {
        plan.quality = mSettings.quality;
    }
    traceJob(sources, plans);
    Progress progress([this](float percent) {
        mSink.call([percent](zel::IZelMediaConverterSink& sink) { sink.OnProgress(percent); });
    });
    WrittenFile written;
    const auto beginAnew = [&] {
        mLosses = {};
        std::ranges::for_each(sources, &Source::close, [](const auto& each) -> Source& {
            return *each; // they begin at their beginning again
        });
        destination.reset();
        destination = std::make_unique<DestinationFile>(mDestination, mSources, mStop);
    };
    while (written.tracks.empty()) {
        try {
            written = write(sources, plans, cover, *destination, progress);
        } catch (const NotCopyable& found) {
            trace(TraceLevel::Info,
                  text("Track ", found.track, " is transcoded after all: ", found.reason));
            plans[found.track].isCopied = false;
            plans[found.track].reason = found.reason;
            beginAnew();
        } catch (const GroupNotKept&) {
            trace(TraceLevel::Debug, "Something looks damaged: looked at more closely");
            std::ranges::for_each(plans, [](TrackPlan& plan) { plan.keepsGroups = true; });
            beginAnew();
        } catch (const PictureGrew& found) {
            beginAnew();
            surveyPictures(sources, plans, found, mStop);
        }
    }
    settleLosses();
    destination->closeDurably();
    mStop.throwIfRaised();
    verify(*destination, written, mStop);
    trace(TraceLevel::Debug, "The finished file is what was written");
    throwIfAnyChanged(sources);
    mStop.throwIfRaised();
    destination->commit();
    throwIfAnyChanged(sources);
    trace(TraceLevel::Info,
          text("Destination \"", mDestination, "\" is complete: ", destination->size(), " bytes"));
    keepEnding({zel::kZelSuccess, {}});
    progress.complete();
}

WrittenFile ConversionJob::write(const Sources& sources, const std::vector<TrackPlan>& plans,
                                 const Cover& cover, DestinationFile& destination,
                                 Progress& progress) {
    Muxer muxer(destination, mSettings.isIndexInFront);
    muxer.copyMetadata(sources.front()->format());
    std::vector<std::unique_ptr<Track>> tracks;
    for (const TrackPlan& plan : plans) {
        tracks.push_back(makeTrack(plan, muxer, mLosses));
    }
    if (!cover.isEmpty()) {
        muxer.addCover(cover);
    }
    muxer.writeHeader();
    PartJoiner joiner(sources, plans, tracks, mLosses, mStop, progress);
    joiner.run();
    muxer.setChapters(joiner.takeChapters());
    muxer.finish();
    WrittenFile written = muxer.takeWritten();
    if (std::ranges::all_of(written.tracks, [](const auto& track) {
            return track.packets == 0 || track.isText();
        })) {
        throw mLosses.isEmpty()
            ? Failure(ErrorCode::NothingToConvert, "The sources hold neither sound nor picture")
            : Failure(ErrorCode::SourceDamaged, mLosses.sentence());
    }
    return written;
}

void ConversionJob::settleLosses() {
    if (mLosses.isEmpty()) {
        return;
    }
    if (!mAcceptsLosses) {
        throw Failure(ErrorCode::ContentMissing, mLosses.sentence());
    }
    trace(TraceLevel::Warning, text("Missing from the destination: ", mLosses.sentence()));
    keepLossSentence(mLosses.sentence());
}

void ConversionJob::report(ErrorCode code, const char* why) noexcept {
    try {
        keepEnding({static_cast<std::int32_t>(code), why});
        trace(TraceLevel::Error, text("Error ", static_cast<std::int32_t>(code), ": ", why));
        mSink.call([code](zel::IZelMediaConverterSink& sink) {
            sink.OnError(static_cast<std::int32_t>(code));
        });
    } catch (...) { // NOLINT(bugprone-empty-catch): out of memory while telling so
    }
}

} // namespace zelcore
