#pragma once

#include <InkoraKit/Export.h>
#include <InkoraKit/platform/Printing.h>

#include <concepts>
#include <memory>
#include <string_view>

namespace InkoraKit {

/// The root of the kit's objects that are reached by reference: it can be asked to run an operation
/// by name, which is how a timer calls its target, and it can write to the console.
class INKORA_EXPORT NSObject : public std::enable_shared_from_this<NSObject> {
public:
    virtual ~NSObject() = default;

    /// Whether the object has an operation of that name.
    bool respondsToSelector(std::string_view selector) const {
        return methodForSelector(selector) != nullptr;
    }

    /// Runs the operation of that name, in its most derived form.
    /// @return false, with nothing run, when the object has no such operation.
    bool performSelector(std::string_view selector);

    /// Writes the value's text and a line feed to standard output, with nothing before it; does
    /// nothing at all unless the kit was built with its console log on. A callable is asked for its
    /// value only then. Serves as the operation of an object and of a class alike.
    template <class Value>
    static void printThisLineToConsole(const Value& value) {
        if (!isConsoleLogOn()) return;
        if constexpr (std::invocable<const Value&>) {
            writeLineToConsole(printed(value()));
        } else {
            writeLineToConsole(printed(value));
        }
    }

protected:
    /// Copies are objects of their own, also for `shared_from_this`.
    NSObject() = default;
    NSObject(const NSObject&) = default;
    NSObject& operator=(const NSObject&) = default;

    /// An operation without arguments or result.
    using Method = void (NSObject::*)();

    /// The operation of that name, null when there is none. A class that can be called by name
    /// replaces this with a look-up in its table.
    virtual Method methodForSelector([[maybe_unused]] std::string_view selector) const {
        return nullptr;
    }

private:
    static bool isConsoleLogOn() noexcept;
    static void writeLineToConsole(std::string_view line);
};

}  // namespace InkoraKit
