#include "json/JsonFile.h"

#include "Utf8.h"
#include "json/JsonFailure.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace InkoraTool {
namespace {

void require(bool isDone) {
    if (!isDone) throw std::system_error(errno, std::generic_category());
}

/// A file beside another one, gone unless it takes that one's place.
class FileBeside {
public:
    explicit FileBeside(const std::string& file)
        : file_(file),
          name_(std::filesystem::path(file).replace_filename(".inkora-XXXXXX").string()),
          descriptor_(::mkstemp(name_.data())) {
        require(descriptor_ >= 0);
    }
    FileBeside(const FileBeside&) = delete;
    FileBeside& operator=(const FileBeside&) = delete;
    ~FileBeside() {
        ::close(descriptor_);
        if (!isInPlace_) ::unlink(name_.c_str());
    }

    void write(std::string_view contents) const {
        while (!contents.empty()) {
            const ssize_t size = ::write(descriptor_, contents.data(), contents.size());
            if (size < 0 && errno == EINTR) continue;
            require(size >= 0);
            contents.remove_prefix(static_cast<std::size_t>(size));
        }
    }

    void takeOwnerAndPermissions(const struct stat& original) const {
        // Only root can give a file away; of what others replace they become the owner.
        [[maybe_unused]] const int ignored =
            ::fchown(descriptor_, original.st_uid, original.st_gid);
        require(::fchmod(descriptor_, original.st_mode & 0777) == 0);
    }

    void takePlace() {
        // Or else a loss of power might leave the new name with no contents.
        require(::fsync(descriptor_) == 0);
        require(std::rename(name_.c_str(), file_.c_str()) == 0);
        isInPlace_ = true;
    }

private:
    std::string file_;
    std::string name_;
    int descriptor_;
    bool isInPlace_ = false;
};

void replace(const std::string& file, std::string_view contents) {
    struct stat original {};
    require(::stat(file.c_str(), &original) == 0);
    if (!S_ISREG(original.st_mode)) throw std::system_error(EINVAL, std::generic_category());
    require(::access(file.c_str(), W_OK) == 0);  // the folder's permissions say nothing about it
    FileBeside replacement(std::filesystem::canonical(file).string());
    replacement.write(contents);
    replacement.takeOwnerAndPermissions(original);
    replacement.takePlace();
}

}  // namespace

void replaceFile(const std::string& file, std::string_view contents) {
    try {
        replace(file, contents);
    } catch (const std::system_error& error) {
        throw JsonFailure(ExitStatus::failure,
                          printableText(file) + " is unchanged: " + error.code().message());
    }
}

}  // namespace InkoraTool
