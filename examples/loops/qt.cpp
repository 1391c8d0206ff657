// A window of swatches, in Qt 5 or 6. With a file's name besides `virtual` it leaves a picture of
// itself there.
#include <InkoraKit/loops/QtAdapter.h>

#include <QtGui/QPainter>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>
#include <vector>

#include "Swatches.h"

using namespace InkoraKit;

namespace {

/// The colours captured last, in rows of four.
class Window : public QWidget {
public:
    Window() {
        setWindowTitle("Swatches");
        setFixedSize(4 * cell + margin, 3 * cell + margin);
    }

    void add(const UIColor& colour) {
        if (colours_.size() == 12) colours_.erase(colours_.begin());
        colours_.push_back(colour);
        update();
    }

private:
    static constexpr int cell = 104;
    static constexpr int margin = 12;

    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.fillRect(rect(), QColor("#F6F4F0"));
        for (int i = 0; const UIColor& colour : colours_) {
            const QRect swatch(margin + i % 4 * cell, margin + i / 4 * cell, cell - margin,
                               cell - margin);
            const QString text = QString::fromStdString(Swatches::hex(colour));
            painter.setPen(Qt::NoPen);
            painter.setBrush(QColor(text));
            painter.drawRoundedRect(swatch, 8, 8);
            const double lightness =
                0.299 * colour.red() + 0.587 * colour.green() + 0.114 * colour.blue();
            painter.setPen(lightness > 0.55 ? Qt::black : Qt::white);
            painter.drawText(swatch.adjusted(0, 0, 0, -8), Qt::AlignHCenter | Qt::AlignBottom,
                             text);
            ++i;
        }
    }

    std::vector<UIColor> colours_;
};

struct WindowSwatches : Swatches {
    void didPeripheralCaptured(const UIColor& colour) override {
        Swatches::didPeripheralCaptured(colour);
        window.add(colour);
    }
    Window window;
};

}  // namespace

int main(int count, char** arguments) try {
    const QApplication application(count, arguments);
    const auto swatches = std::make_shared<WindowSwatches>();
    InkoraManager::registerInkoraManager(swatches);

    QtAdapter kit;
    swatches->pair(count, arguments);
    swatches->window.show();
    const int status = QApplication::exec();
    if (count > 2) swatches->window.grab().save(arguments[2]);
    kit.rethrow();
    return status;
} catch (const std::exception& error) {
    return Swatches::giveUp(error);
}
