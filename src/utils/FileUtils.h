#pragma once

#include "utils/IFileUtils.h"

namespace tarn {

/// The file operations on the real file system, see IFileUtils.
class FileUtils : public IFileUtils {
public:
    bool accessible(const std::string& path) const override;
    bool exists(const std::string& path) const override;
    bool exists(const std::string& path, int& error) const override;
    bool remove(const std::string& path) const override;
    bool remove(const std::string& path, int& error) const override;
    bool mkdirIfNotExistsRecursive(const std::string& folder) const override;
    bool dirExists(const std::string& folder) const override;
    bool mkdir(const std::string& folder) const override;
    bool mkdirIfNotExists(const std::string& folder) const override;
    bool rename(const std::string& from, const std::string& to) const override;
    bool renameWithMessage(const std::string& from, const std::string& to,
                           std::string* reason = nullptr) const override;
    bool removeEmptyDir(const std::string& folder) const override;
    bool removeNonEmptyDir(const std::string& folder) const override;
    void reserved14() const override {}
    bool moveDirectory(const std::string& from, const std::string& to) const override;
    std::vector<std::string> getDirs(const std::string& folder) const override;
    std::vector<std::string> getDirsRecursive(const std::string& folder) const override;
    std::vector<std::string> getFiles(const std::string& folder) const override;
    std::vector<std::string> getFilesRecursive(const std::string& folder) const override;
    std::vector<std::string> getFilesSortedByDate(const std::string& folder,
                                                  bool oldestFirst) const override;
    std::wstring toWidePath(const std::string& path) const override;
    std::string fromWidePath(const std::wstring& path) const override;
    bool deleteAllFiles(const std::string& folder, const std::string& pattern) const override;
    std::string pathSeparator() const override;
    std::string joinPath(const std::string& folder, const std::string& name) const override;
    std::string directoryOfPath(const std::string& path) const override;
    std::string fileNameOfPath(const std::string& path) const override;
    std::string extensionOfPath(const std::string& path) const override;
    std::int64_t getFileSize(const std::string& path) const override;
    std::optional<FileInfo> getFileDetails(const std::string& path) const override;
    std::string getUniqueDownloadPath(const std::string& folder, const std::string& fileName,
                                      bool stripIdentifiers) const override;
    std::string getUniqueDownloadPath(const std::string& folder,
                                      const std::string& fileName) const override;
    std::string sanitizeFileName(const std::string& fileName) const override;
    std::pair<std::string, std::string> splitExtension(const std::string& fileName) const override;
    bool copyFile(const std::string& from, const std::string& to) const override;
    bool copyFileIfDifferent(const std::string& from, const std::string& to) const override;
    bool copyDirectory(const std::string& from, const std::string& to) const override;
    std::string readFirstLine(const std::string& path) const override;
    bool writeOneLine(const std::string& path, const std::string& line) const override;
    std::string readSpecifiedLine(const std::string& path, std::size_t number) const override;
    std::string readLastLine(const std::string& path) const override;
    std::vector<std::string> readAllLines(const std::string& path) const override;
    bool writeAllLines(const std::string& path,
                       const std::vector<std::string>& lines) const override;
    bool canReadFirstBytes(const std::string& path, std::size_t count) const override;
    std::optional<std::vector<std::uint8_t>> readAllBytes(const std::string& path) const override;
    bool writeAllBytes(const std::string& path,
                       const std::vector<std::uint8_t>& bytes) const override;
    bool hardLink(const std::string& existing, const std::string& link) const override;
    bool isSameFile(const std::string& left, const std::string& right) const override;
};

} // namespace tarn
