#include "platform/Files.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace tarn::platform {
namespace {

TEST(Files, TryWhetherAFolderTakesFiles) {
    const testing::TemporaryFolder folder;
    EXPECT_TRUE(isFolderWritable(folder.path()));
    EXPECT_TRUE(listFolder(folder.path())->empty());
    EXPECT_FALSE(isFolderWritable(folder / "absent"));
    EXPECT_FALSE(isFolderWritable(folder.write("file", "")));
    EXPECT_FALSE(isFolderWritable(""));
}

} // namespace
} // namespace tarn::platform
