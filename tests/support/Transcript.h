#pragma once

#include <algorithm>
#include <cstdio>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace InkoraKit {

/// What happened, a line each, in order. What a step does is indented below it.
class Transcript {
public:
    /// Indents what is noted while it lives.
    class Step {
    public:
        explicit Step(Transcript& transcript) : transcript_(transcript) { ++transcript_.depth_; }
        ~Step() { --transcript_.depth_; }
        Step(const Step&) = delete;
        Step& operator=(const Step&) = delete;

    private:
        Transcript& transcript_;
    };

    /// What can only be looked at: each of these facts is noted as soon as it is a new one.
    std::function<std::vector<std::string>()> facts;

    /// For a transcript among other lines.
    bool goesToStandardOutput = false;

    void note(const std::string& line) {
        noteNewFacts();
        write(line);
    }
    [[nodiscard]] Step step(const std::string& line) {
        note(line);
        return Step(*this);
    }

    /// The text since the last call of this.
    std::string take() {
        noteNewFacts();
        return std::exchange(text_, {});
    }

private:
    void noteNewFacts() {
        if (!facts) return;
        auto present = facts();
        for (const std::string& fact : present)
            if (std::find(known_.begin(), known_.end(), fact) == known_.end())
                write("(" + fact + ")");
        known_ = std::move(present);
    }
    void write(const std::string& line) {
        const std::string indented = std::string(depth_ * 2, ' ') + line + '\n';
        if (goesToStandardOutput) {
            std::fputs(indented.c_str(), stdout);
        } else {
            text_ += indented;
        }
    }

    std::size_t depth_ = 1;
    std::string text_;
    std::vector<std::string> known_;
};

}  // namespace InkoraKit
