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

}  // namespace

std::string shownName(const std::string& file) {
    return file == standardInput ? "standard input" : printableText(file);
}

InputFile::InputFile(const std::string& file)
    : file_(file), stream_(file == standardInput ? stdin : std::fopen(file.c_str(), "rb")) {
    if (!stream_) fail();
}

std::optional<std::string> InputFile::line() {
    char* start = nullptr;
    std::size_t capacity = 0;
    const ssize_t size = ::getline(&start, &capacity, stream_.get());
    const std::unique_ptr<char, decltype(&std::free)> owner(start, std::free);
    if (size >= 0) return std::string(start, static_cast<std::size_t>(size));
    if (std::ferror(stream_.get()) != 0) fail();
    return std::nullopt;
}

void InputFile::appendRest(std::string& text) {
    struct stat state {};
    if (::fstat(::fileno(stream_.get()), &state) == 0 && S_ISREG(state.st_mode))
        text.reserve(text.size() + static_cast<std::size_t>(state.st_size));
    std::array<char, 65536> part;
    while (const std::size_t size = std::fread(part.data(), 1, part.size(), stream_.get()))
        text.append(part.data(), size);
    if (std::ferror(stream_.get()) != 0) fail();
}

void InputFile::Close::operator()(std::FILE* stream) const {
    if (stream != stdin) std::fclose(stream);
}

void InputFile::fail() const {
    throw Failure(ExitStatus::unreadable,
                  shownName(file_) + ": " + std::generic_category().message(errno));
}

std::string readFile(const std::string& file) {
    std::string text;
    InputFile(file).appendRest(text);
    return text;
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
