#include "output.h"

#include "failure.h"

#include <unistd.h>

namespace examples::demo {

namespace fs = std::filesystem;

OutputDirectory::OutputDirectory(fs::path path) : path_(std::move(path)) {
    std::error_code error;
    made_ = fs::create_directories(path_, error);
    if (!fs::is_directory(path_)) throw Failure(path_.string() + " cannot be used as the directory for the results.");
}

OutputDirectory::~OutputDirectory() {
    std::error_code ignored; // a directory that holds something stays
    if (made_) fs::remove(path_, ignored);
}

PendingFile::PendingFile(const OutputDirectory& directory, const std::string& name)
    : final_(directory.path() / name),
      part_(directory.path() / ("." + name + "." + std::to_string(getpid()) + ".part")) {}

PendingFile::~PendingFile() {
    std::error_code ignored; // after a commit there is nothing left to remove
    fs::remove(part_, ignored);
}

void PendingFile::commit() {
    std::error_code error;
    fs::rename(part_, final_, error);
    if (error) throw Failure(final_.string() + " cannot be written: " + error.message() + ".");
}

} // namespace examples::demo
