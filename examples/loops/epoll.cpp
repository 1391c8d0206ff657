// A host with an epoll loop of its own, which ends by Ctrl-C.
#include <sys/epoll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <csignal>

#include "Swatches.h"

using namespace InkoraKit;

namespace {

void watch(int poll, int descriptor) {
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.fd = descriptor;
    ::epoll_ctl(poll, EPOLL_CTL_ADD, descriptor, &event);
}

int interruptions() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    return ::signalfd(-1, &signals, SFD_CLOEXEC);
}

}  // namespace

int main(int count, char** arguments) try {
    const auto swatches = std::make_shared<Swatches>();
    InkoraManager::registerInkoraManager(swatches);
    swatches->pair(count, arguments);

    RunLoop& kit = RunLoop::main();
    const int poll = ::epoll_create1(EPOLL_CLOEXEC);
    watch(poll, kit.descriptor());
    watch(poll, interruptions());
    for (;;) {
        epoll_event event{};
        if (::epoll_wait(poll, &event, 1, -1) < 1) continue;
        if (event.data.fd != kit.descriptor()) return 0;
        kit.runPending();
    }
} catch (const std::exception& error) {
    return Swatches::giveUp(error);
}
