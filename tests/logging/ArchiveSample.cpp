#include "logging/ZipFolder.h"

/// Zips the folder "sample" of the working folder into "sample.zip".
int main() {
    return tarn::zipFolder("sample", "sample.zip", true).succeeded() ? 0 : 1;
}
