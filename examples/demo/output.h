// Files that appear whole or not at all.
#pragma once

#include <filesystem>
#include <string>

namespace examples::demo {

/// A directory for results. When it had to be made and stays empty, it goes again.
class OutputDirectory {
public:
    explicit OutputDirectory(std::filesystem::path path);
    ~OutputDirectory();
    OutputDirectory(const OutputDirectory&) = delete;
    OutputDirectory& operator=(const OutputDirectory&) = delete;

    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
    bool made_;
};

/// A file that is written beside its place and takes it in `commit`; without a commit it goes again.
class PendingFile {
public:
    PendingFile(const OutputDirectory& directory, const std::string& name);
    ~PendingFile();
    PendingFile(const PendingFile&) = delete;
    PendingFile& operator=(const PendingFile&) = delete;

    const std::filesystem::path& part() const { return part_; }        ///< where to write
    const std::filesystem::path& final_path() const { return final_; } ///< where it will stand
    void commit();

private:
    std::filesystem::path final_, part_;
};

} // namespace examples::demo
