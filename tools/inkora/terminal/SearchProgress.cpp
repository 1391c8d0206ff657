#include "terminal/SearchProgress.h"

#include "terminal/Terminal.h"

#include <cstdio>
#include <utility>

using namespace InkoraKit;

namespace InkoraTool {

SearchProgress::SearchProgress(std::function<std::string(std::int64_t seconds)> text)
    : text_(std::move(text)) {}

void SearchProgress::start() {
    if (timer_ || !canTakeLinesBack()) return;
    start_ = std::chrono::steady_clock::now();
    tickLater();
}

void SearchProgress::stop() {
    hide();
    if (const auto timer = std::exchange(timer_, nullptr)) timer->invalidate();
}

// By blanks, since every terminal can show these. Behind the line there may be a "^C" that was
// typed.
void SearchProgress::hide() {
    if (width_ == 0) return;
    const std::string blanks(std::exchange(width_, 0) + 2, ' ');
    std::fputs(('\r' + blanks + '\r').c_str(), stderr);
}

// The run loop's clock may be a virtual one, of which nobody sees a second pass.
void SearchProgress::tickLater() {
    timer_ = Timer::scheduledTimer(1, [this] {
        using namespace std::chrono;
        const auto elapsed = round<seconds>(steady_clock::now() - start_).count();
        hide();
        if (elapsed > 0) show(text_(elapsed));
        tickLater();
    });
}

void SearchProgress::show(const std::string& text) {
    if (!canTakeLinesBack()) return;  // in the background by now
    width_ = text.size();
    std::fputs(text.c_str(), stderr);
}

}  // namespace InkoraTool
