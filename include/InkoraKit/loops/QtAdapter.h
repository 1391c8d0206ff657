#pragma once

#include <InkoraKit/loops/LoopAdapter.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QSocketNotifier>
#include <cstdlib>
#include <utility>

namespace InkoraKit {

/// Lets Qt's event loop, of Qt 5 or 6, run the kit. From its construction to its end the kit's
/// callbacks come inside that loop, on the thread of the windows.
///
///     QApplication application(count, arguments);
///     QtAdapter kit;
///     const int status = application.exec();
///     kit.rethrow();
///     return status;
///
/// Is made after the application object and ends before it. An exception does not enter Qt's
/// frames; see LoopAdapter. A loop that a callback runs inside itself, such as QDialog::exec,
/// serves the kit too, as far as RunLoop says.
class QtAdapter final : public LoopAdapter {
public:
    /// @param stop ends the loop after an exception.
    explicit QtAdapter(Block stop = [] { QCoreApplication::exit(EXIT_FAILURE); })
        : LoopAdapter(std::move(stop)),
          notifier_(RunLoop::main().descriptor(), QSocketNotifier::Read) {
        QObject::connect(&notifier_, &QSocketNotifier::activated, [this] { serve(); });
    }

private:
    void watch() override { notifier_.setEnabled(true); }
    void unwatch() override { notifier_.setEnabled(false); }

    QSocketNotifier notifier_;
};

}  // namespace InkoraKit
