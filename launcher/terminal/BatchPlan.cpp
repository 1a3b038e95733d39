#include "launcher/terminal/BatchPlan.h"

#include "launcher/Paths.h"
#include "launcher/RecordingNames.h"
#include "launcher/Texts.h"
#include "platform/FileIdentity.h"
#include "platform/Files.h"
#include "platform/Text.h"
#include "utils/FileUtils.h"

#include <algorithm>
#include <set>

namespace launcher {
namespace {

class Planner {
public:
    explicit Planner(const std::string& folder) : mFolder(folder) {}

    void add(const std::string& source) {
        const auto identity = tarn::platform::identifyFile(source);
        if (identity && identity->kind == tarn::platform::FileKind::Folder) {
            addFolder(source);
        } else {
            addFile(source);
        }
    }

    BatchPlan take() { return std::move(mPlan); }

private:
    void addFolder(const std::string& folder) {
        auto entries = tarn::platform::listFolder(folder);
        if (!entries) {
            mPlan.items.push_back(
                {folder, "",
                 "The folder " + inQuotes(folder) + " cannot be read: check its permissions."});
            return;
        }
        std::ranges::sort(*entries, {}, &tarn::platform::FolderEntry::name);
        for (const auto& entry : *entries) {
            const std::string path = tarn::FileUtils().joinPath(folder, entry.name);
            // Hidden ones are what other programs are still at.
            if (entry.isFolder || entry.name.starts_with('.') || !isRecording(path)) {
                continue;
            }
            if (isMp4(path)) {
                mPlan.leftOut.push_back(path);
            } else {
                addFile(path);
            }
        }
    }

    void addFile(const std::string& source) {
        if (!mSources.insert(source).second) {
            return;
        }
        BatchItem item{source, "", ""};
        if (tarn::platform::isValidUtf8(source)) {
            item.destination = freeName(destinationFor(source, mFolder));
        } else {
            item.objection = "The name is not valid UTF-8: rename the file.";
        }
        mPlan.items.push_back(std::move(item));
    }

    /// Not the name of another of these, in capitals or not: that is one name on many systems.
    std::string freeName(const std::string& wanted) {
        const std::filesystem::path path = fromText(wanted);
        std::string name = wanted;
        for (int number = 2; !mNames.insert(lowered(name)).second; ++number) {
            name = toText(path.parent_path() /
                          fromText(toText(path.stem()) + " (" + std::to_string(number) + ").mp4"));
        }
        return name;
    }

    const std::string& mFolder;
    BatchPlan mPlan;
    std::set<std::string> mSources;
    std::set<std::string> mNames;
};

} // namespace

BatchPlan planBatch(const std::vector<std::string>& sources, const std::string& folder) {
    Planner planner(folder);
    std::ranges::for_each(sources, [&](const std::string& source) { planner.add(source); });
    return planner.take();
}

} // namespace launcher
