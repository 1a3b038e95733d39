#include "launcher/JobFiles.h"

#include "launcher/Texts.h"

#include <set>

namespace launcher {

using tarn::platform::FileKind;
using tarn::platform::identifyFile;
using tarn::platform::Removal;

JobFiles::JobFiles(const Job& job)
    : mDestination(job.destination), mOlderDestination(identifyFile(job.destination)) {
    for (const std::string& source : job.sources) {
        mSources.push_back({source, identifyFile(source)});
    }
}

std::uint64_t JobFiles::totalSize() const {
    std::uint64_t total = 0;
    for (const Source& source : mSources) {
        total += source.before ? source.before->size : 0;
    }
    return total;
}

bool JobFiles::hasDestinationChanged() const {
    const auto now = identifyFile(mDestination);
    return now && now != mOlderDestination;
}

bool JobFiles::isDestinationWritten() const {
    const auto now = identifyFile(mDestination);
    return now && now != mOlderDestination && now->kind == FileKind::Ordinary && now->size > 0;
}

std::vector<std::string> JobFiles::removeSources() const {
    std::vector<std::string> left;
    std::set<std::string> removed; // a recording may be given twice
    for (const Source& source : mSources) {
        if (removed.contains(source.path)) {
            continue;
        }
        const Removal removal = source.before && isDestinationWritten()
                                    ? removeUnchangedFile(source.path, *source.before)
                                    : Removal::Failed;
        if (removal == Removal::Done) {
            removed.insert(source.path);
        } else {
            left.push_back(inQuotes(source.path) +
                           (removal == Removal::Changed ? " (it has changed)" : ""));
        }
    }
    return left;
}

} // namespace launcher
