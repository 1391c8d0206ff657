// The kit as inkorakit.js has it: the C interface, whose callbacks are calls of `Module.hear`
// there, the chooser, and the end of the radios for when the program must not be called any more.
#include <InkoraKit/c/inkorakit.h>
#include <InkoraKit/web/ChoosePen.h>

#include <emscripten.h>

// clang-format off
EM_JS(void, hear, (const char* event), { Module.hear(UTF8ToString(event)); })
EM_JS(void, hear_chosen, (int choice, const char* text), { Module.hear('chosen', choice, UTF8ToString(text)); })
EM_JS(void, hear_failure, (const char* event, double code, const char* text), { Module.hear(UTF8ToString(event), code, UTF8ToString(text)); })
EM_JS(void, hear_level, (const char* event, double level), { Module.hear(UTF8ToString(event), level); })
EM_JS(void, hear_colour, (double red, double green, double blue, double alpha), { Module.hear('colour', red, green, blue, alpha); })
EM_JS(void, hear_info, (const char* name, const char* identifier), { Module.hear('info', UTF8ToString(name), UTF8ToString(identifier)); })
EM_JS(void, lend_end_of_radios, (), { Module.endRadios = () => inkoraWeb.end(); })  // of WebRadio.js
// clang-format on

namespace {

constexpr inkora_callbacks callbacks = {
    .size = sizeof callbacks,
    .bluetooth_unavailable =
        [](void*, std::int64_t code, const char* text) {
            hear_failure("unavailable", static_cast<double>(code), text);
        },
    .connected = [](void*) { hear("connected"); },
    .failed = [](void*, std::int64_t code,
                 const char* text) { hear_failure("failed", static_cast<double>(code), text); },
    .disconnected = [](void*) { hear("disconnected"); },
    .colour_captured =
        [](void*, const inkora_colour* colour) {
            hear_colour(colour->red, colour->green, colour->blue, colour->alpha);
        },
    .battery = [](void*,
                  std::int64_t percent) { hear_level("battery", static_cast<double>(percent)); },
    .proximity =
        [](void*, std::int64_t magnitude) {
            hear_level("proximity", static_cast<double>(magnitude));
        },
    .information = [](void*, const char* name,
                      const char* identifier) { hear_info(name, identifier); },
    .released = nullptr,
};

}  // namespace

extern "C" {

EMSCRIPTEN_KEEPALIVE inkora_status inkora_page_listen() {
    lend_end_of_radios();
    return inkora_register(&callbacks, nullptr);
}

/// Heard as "turn", behind all that has been posted so far.
EMSCRIPTEN_KEEPALIVE inkora_status inkora_page_turn() {
    return inkora_loop_post([](void*) { hear("turn"); }, nullptr);
}

/// Heard as "chosen", with this number and what was wrong, or no text.
EMSCRIPTEN_KEEPALIVE void inkora_page_choose(int choice) {
    InkoraKit::choosePen([choice](const auto& error) {
        hear_chosen(choice, error ? error->localizedDescription().c_str() : "");
    });
}
}
