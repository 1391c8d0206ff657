#include "json/JsonDocuments.h"

#include "Failure.h"
#include "File.h"
#include "json/JsonInput.h"
#include "json/JsonOutput.h"
#include "terminal/Output.h"

#include <cstdio>
#include <optional>
#include <utility>

using namespace InkoraKit;

namespace InkoraTool {
namespace {

class Documents {
public:
    Documents(const std::string& file, const TextOfDocument& textOf)
        : file_(file), input_(file), textOf_(textOf) {}

    ExitStatus printAll() {
        std::string text = takeLine().value_or("");
        const auto first = wholeDocument(text);
        if (first) return printFromFirst(*first);
        input_.appendRest(text);
        print(textOf_(jsonIn(text, file_), false));
        return ExitStatus::success;
    }

    ExitStatus printLines() {
        while (!isNobodyReading_) {
            const auto line = takeLine();
            if (!line) break;
            printLine(*line);
        }
        if (status_ == ExitStatus::success && !isAnythingPrinted_ && nothing_)
            throw Failure(nothing_->status, nothing_->what());
        return status_;
    }

private:
    /// Whether more follows is known only once it is there. What looks the same in either case is
    /// printed before.
    ExitStatus printFromFirst(const JSON& document) {
        const auto asLine = lineFor(document);
        const bool isSame = asLine && *asLine == textOf_(document, false);
        if (isSame) print(*asLine);
        if (isNobodyReading_) return ExitStatus::success;
        auto next = takeLine();
        while (next && isBlank(*next)) next = takeLine();
        if (next) {
            if (asLine && !isSame) print(*asLine);
            printLine(*next);
            return printLines();
        }
        if (!isSame) print(textOf_(document, false));
        return ExitStatus::success;
    }

    std::optional<std::string> takeLine() {
        start_ = next_;
        auto line = input_.line();
        if (line) next_ = {next_.line + 1, next_.byte + line->size()};
        return line;
    }

    void printLine(const std::string& line) {
        if (isBlank(line)) return;
        try {
            if (const auto text = lineFor(jsonIn(line, file_, start_))) print(*text);
        } catch (const Failure& failure) {
            if (failure.status != ExitStatus::malformed) throw;
            std::fprintf(stderr, "inkora: %s\n", failure.what());
            status_ = failure.status;
        }
    }

    /// Nothing where there is nothing to print.
    std::optional<std::string> lineFor(const JSON& document) {
        try {
            return textOf_(document, true);
        } catch (const Failure& failure) {
            if (failure.status != ExitStatus::noSuchPlace) throw;
            nothing_ = failure;
            return std::nullopt;
        }
    }

    void print(const std::string& text) {
        isNobodyReading_ = !printText(text);
        isAnythingPrinted_ = true;
    }

    static bool isBlank(const std::string& line) {
        return line.find_first_not_of(" \t\r\n") == std::string::npos;
    }

    /// The first line, if it is a document and there may be others. In UTF-16 and UTF-32, which
    /// have zeros, what looks like a line is none.
    static std::optional<JSON> wholeDocument(const std::string& line) {
        if (!line.ends_with('\n') || line.find('\0') != std::string::npos) return std::nullopt;
        try {
            return jsonIn(line, "");
        } catch (const Failure&) {
            return std::nullopt;
        }
    }

    std::string file_;
    InputFile input_;
    const TextOfDocument& textOf_;
    TextStart start_;  // of the line that was taken last
    TextStart next_;
    ExitStatus status_ = ExitStatus::success;
    std::optional<Failure> nothing_;  // why there was nothing to print, at last
    bool isAnythingPrinted_ = false;
    bool isNobodyReading_ = false;
};

}  // namespace

ExitStatus printDocuments(const std::string& file, bool areLines, const TextOfDocument& textOf) {
    Documents documents(file, textOf);
    return areLines ? documents.printLines() : documents.printAll();
}

}  // namespace InkoraTool
