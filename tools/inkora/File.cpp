#include "File.h"

#include "Failure.h"
#include "Utf8.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <system_error>

namespace InkoraTool {
namespace {

void require(bool isDone) {
    if (!isDone) throw std::system_error(errno, std::generic_category());
}

/// A file beside another one, gone unless it takes that one's place.
class FileBeside {
public:
    FileBeside(const std::string& file, const struct stat& original)
        : file_(file),
          name_(std::filesystem::path(file).replace_filename(".inkora-XXXXXX").string()),
          original_(original),
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

    void takePlace() {
        // Only root can give a file away; of what others replace they become the owner.
        [[maybe_unused]] const int ignored =
            ::fchown(descriptor_, original_.st_uid, original_.st_gid);
        require(::fchmod(descriptor_, original_.st_mode & 0777) == 0);
        // Or else a loss of power might leave the new name with no contents.
        require(::fsync(descriptor_) == 0);
        require(std::rename(name_.c_str(), file_.c_str()) == 0);
        isInPlace_ = true;
    }

private:
    std::string file_;
    std::string name_;
    struct stat original_;
    int descriptor_;
    bool isInPlace_ = false;
};

/// How a file came to be, or how one that is made is to be.
struct stat originalOf(const std::string& file) {
    struct stat original {};
    if (::stat(file.c_str(), &original) == 0) {
        if (!S_ISREG(original.st_mode))
            throw std::system_error(S_ISDIR(original.st_mode) ? EISDIR : EINVAL,
                                    std::generic_category());
        // The folder's permissions say nothing about the file.
        require(::access(file.c_str(), W_OK) == 0);
        return original;
    }
    require(errno == ENOENT);
    const mode_t mask = ::umask(0);
    ::umask(mask);
    original.st_uid = ::geteuid();
    original.st_gid = ::getegid();
    original.st_mode = 0666 & ~mask;
    return original;
}

FileBeside replacementFor(const std::string& file) {
    const struct stat original = originalOf(file);
    return FileBeside(std::filesystem::weakly_canonical(file).string(), original);
}

template <class Step>
void orElseUnchanged(const std::string& file, Step step) {
    try {
        step();
    } catch (const std::system_error& error) {
        std::error_code unknown;
        const bool isThere = std::filesystem::exists(file, unknown);
        throw Failure(ExitStatus::failure, printableText(file) +
                                               (isThere ? " is unchanged: " : " is not made: ") +
                                               error.code().message());
    }
}

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

std::string restOf(std::FILE* stream, std::size_t expectedSize) {
    std::string text;
    text.reserve(expectedSize);
    std::array<char, 65536> part;
    while (const std::size_t size = std::fread(part.data(), 1, part.size(), stream))
        text.append(part.data(), size);
    require(std::ferror(stream) == 0);
    return text;
}

std::string contentsOf(const std::string& file) {
    if (file == standardInput) return restOf(stdin, 0);
    const std::unique_ptr<std::FILE, CloseFile> stream(std::fopen(file.c_str(), "rb"));
    require(stream != nullptr);
    std::error_code unknown;
    const std::uintmax_t size = std::filesystem::file_size(file, unknown);
    return restOf(stream.get(), unknown ? 0 : static_cast<std::size_t>(size));
}

}  // namespace

std::string shownName(const std::string& file) {
    return file == standardInput ? "standard input" : printableText(file);
}

std::string readFile(const std::string& file) {
    try {
        return contentsOf(file);
    } catch (const std::system_error& error) {
        throw Failure(ExitStatus::unreadable, shownName(file) + ": " + error.code().message());
    }
}

void replaceFile(const std::string& file, std::string_view contents) {
    orElseUnchanged(file, [&] {
        FileBeside replacement = replacementFor(file);
        replacement.write(contents);
        replacement.takePlace();
    });
}

void requireReplaceable(const std::string& file) {
    orElseUnchanged(file, [&] { replacementFor(file); });
}

}  // namespace InkoraTool
