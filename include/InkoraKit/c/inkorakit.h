#pragma once

/// @file
/// The kit for hosts in C, and for languages that call C. C11; link with libInkoraKit alone.
///
///     inkora_callbacks callbacks = {.size = sizeof callbacks, .colour_captured = show};
///     inkora_register(&callbacks, NULL);
///     inkora_start();
///     inkora_loop_run();
///
/// Threads. The kit starts none. All of it runs on the thread that runs its loop, and so do all
/// callbacks; those that come before a call returns (see `inkora_start` and
/// `inkora_request_information`) on the thread that calls. Any thread may call `inkora_register`,
/// `inkora_unregister`, `inkora_loop_post`, `inkora_loop_stop` and what needs no loop:
/// `inkora_version`, `inkora_status_text`, `inkora_last_error`. Everything else belongs on the
/// loop's thread. While another thread is inside such a call (as in `inkora_loop_run`) it is
/// refused with INKORA_WRONG_THREAD, and nothing happens.
///
/// Errors. A call that fails says so by its status, has changed nothing unless it says otherwise,
/// and leaves a text in `inkora_last_error`. No exception leaves a call. What can still end the
/// process is a pen or system that breaks the kit's contracts, such as a pen whose battery level is
/// no number.
///
/// Callbacks return: a jump out of one (longjmp) leaves the kit in pieces.

#include <InkoraKit/Version.h>
#include <InkoraKit/c/Export.h>

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// --- errors and version -------------------------------------------------------------------------

/// What a call came to: 0 is success, and failures are negative, also those of later versions.
typedef enum inkora_status {
    INKORA_OK = 0,                 ///< done
    INKORA_INVALID_ARGUMENT = -1,  ///< a null pointer, a wrong size, or a number out of range
    INKORA_TOO_EARLY = -2,         ///< the battery cannot be asked yet
    INKORA_TOO_LATE = -3,          ///< the kit was started before
    INKORA_ALREADY_DONE = -4,      ///< started, or there, already
    INKORA_NOT_FOUND = -5,         ///< there is no such virtual pen, or no virtual radio
    INKORA_WRONG_THREAD = -6,      ///< another thread is inside the kit
    INKORA_OUT_OF_MEMORY = -7,     ///< there was no memory for it
    INKORA_EXCEPTION = -8,         ///< C++ code that the loop ran has thrown; the text is its own
} inkora_status;

/// The codes of failures that a receiver hears of.
enum {
    INKORA_FAILURE_BLUETOOTH = 17,   ///< Bluetooth is off, missing or not permitted
    INKORA_FAILURE_CONNECTION = 18,  ///< the pen that was found could not be connected
    INKORA_FAILURE_NOT_FOUND = 19,   ///< no pen was found within 6 seconds
};

/// An inkora_status in words: "the battery cannot be asked yet". Never null; lasts for ever. Any
/// thread.
INKORA_EXPORT const char* inkora_status_text(int status);

/// What was wrong with the last call that failed on this thread; "" if none did. Lasts until the
/// next call on this thread.
INKORA_EXPORT const char* inkora_last_error(void);

/// The version of the library that is running, as "1.0.0"; that of these headers is in Version.h.
/// Lasts for ever. Any thread.
INKORA_EXPORT const char* inkora_version(void);

// --- the receiver -------------------------------------------------------------------------------

/// A colour in sRGB: components from 0 to 1.
typedef struct inkora_colour {
    double red;    ///< 0 is none
    double green;  ///< 0 is none
    double blue;   ///< 0 is none
    double alpha;  ///< opacity; 1 for all that a pen captures
} inkora_colour;

/// What a host hears. Set `size` and what is of interest, and leave the rest null. Each is called
/// with the context that was registered; what a pointer leads to lasts for the call.
typedef struct inkora_callbacks {
    /// sizeof(inkora_callbacks), as the host was compiled: later versions are longer.
    size_t size;

    /// Bluetooth is off, missing or not permitted (INKORA_FAILURE_BLUETOOTH). Comes with every
    /// change of the adapter to such a state, and in answer to a start in it. The kit scans by
    /// itself once Bluetooth is on.
    void (*bluetooth_unavailable)(void* context, int64_t code, const char* text);

    /// A pen is connected. Its colours follow, the one that it captured last to begin with.
    void (*connected)(void* context);

    /// No pen was found in time (INKORA_FAILURE_NOT_FOUND), or the one found could not be connected
    /// (INKORA_FAILURE_CONNECTION). The kit is idle until it is started again.
    void (*failed)(void* context, int64_t code, const char* text);

    /// The link has ended. Unless the host has stopped the kit, a new scan follows at once.
    void (*disconnected)(void* context);

    /// A colour was captured. One equal to the last is not told again. One captured between the
    /// first reading of a connection and the subscription that follows it is lost.
    void (*colour_captured)(void* context, const inkora_colour* colour);

    /// The battery level in percent, once for each request.
    void (*battery)(void* context, int64_t percent);

    /// The signal strength, once for each request, as the magnitude of a value in dBm: 57 means
    /// -57 dBm, and smaller is nearer.
    void (*proximity)(void* context, int64_t magnitude);

    /// The pen's advertised name and its identifier, in UTF-8; both empty while there is no pen.
    void (*information)(void* context, const char* name, const char* identifier);

    /// The last call that this receiver hears: it was unregistered or replaced, and no call to it
    /// is under way. What `context` leads to can be freed. Does not come when the process ends
    /// before.
    void (*released)(void* context);
} inkora_callbacks;

/// Makes this the one receiver, from the loop's next pass on; one registered before is released
/// then. Any thread.
/// @param callbacks copied
/// @param context the host's, kept alive by it until `released`; may be null
/// @return INKORA_INVALID_ARGUMENT without a table, with one shorter than this header's first
/// version, or with callbacks beyond those that this library knows
INKORA_EXPORT inkora_status inkora_register(const inkora_callbacks* callbacks, void* context);

/// Drops the receiver in the loop's next pass, where it is released. A link stays up: stop first to
/// end it. Harmless without a receiver. Any thread.
INKORA_EXPORT inkora_status inkora_unregister(void);

// --- the pen ------------------------------------------------------------------------------------

/// How far the kit is with a pen.
typedef enum inkora_link_state {
    INKORA_LINK_NONE = 0,           ///< no pen, and no scan for one
    INKORA_LINK_SCANNING = 1,       ///< looking for a pen
    INKORA_LINK_CONNECTING = 2,     ///< a pen was found
    INKORA_LINK_CONNECTED = 3,      ///< the pen is connected, and its battery not known yet
    INKORA_LINK_READY = 4,          ///< all requests can be made
    INKORA_LINK_DISCONNECTING = 5,  ///< stopped, and the link not down yet
} inkora_link_state;

/// Looks for a pen and connects to the first one found. After a loss the kit looks again by itself;
/// after `failed` it is idle until the next start. Where Bluetooth is off the answer is
/// `bluetooth_unavailable`: to the first start when the loop runs, to later ones before this call
/// returns.
/// @return INKORA_ALREADY_DONE while it scans or has a pen
INKORA_EXPORT inkora_status inkora_start(void);

/// Ends the scan, or disconnects the pen without looking for it again. A link takes its time to end
/// (two to three seconds with BlueZ), on the loop:
///
///     inkora_stop();
///     while (inkora_link() == INKORA_LINK_DISCONNECTING) inkora_loop_run_once(1, NULL);
///
/// Harmless without pen or scan. Inside `connected`, post it: the kit has steps to do there.
/// Bluetooth that comes back begins a scan all the same.
INKORA_EXPORT inkora_status inkora_stop(void);

/// Where the link stands: an inkora_link_state, or a negative inkora_status.
INKORA_EXPORT int inkora_link(void);

/// Why Bluetooth cannot be used, for people: "The adapter is switched off."; "" when nothing is
/// known. Lasts for ever.
INKORA_EXPORT const char* inkora_bluetooth_reason(void);

/// Asks for the battery level, answered once by `battery`. Without a pen the request waits for the
/// first reading of the next one: ask before the start, or in `disconnected`. On a link that
/// follows one which ended with the adapter it waits for a level that the pen tells of its own
/// accord.
/// @return INKORA_TOO_EARLY from when a pen is found until its first battery reading, which makes
/// the link INKORA_LINK_READY, and after a pen that could not be connected; the request is not kept
INKORA_EXPORT inkora_status inkora_request_battery(void);

/// Asks for the signal strength, answered once by `proximity`. Without a pen, or where the system
/// does not tell it of a link, the request waits for the next advertisement.
INKORA_EXPORT inkora_status inkora_request_proximity(void);

/// Asks for name and identifier, answered by `information` before this call returns.
INKORA_EXPORT inkora_status inkora_request_information(void);

// --- the loop -----------------------------------------------------------------------------------

/// A descriptor that poll, select or epoll finds readable for as long as the loop has something to
/// do, deadlines included; then call `inkora_loop_run_pending`. It is the kit's: never read, never
/// closed by the host. By a virtual clock it shows only what is due already. -1 on systems other
/// than Linux.
INKORA_EXPORT int inkora_loop_descriptor(void);

/// Runs until `inkora_loop_stop`. All runs end with INKORA_EXCEPTION where C++ code has thrown that
/// they ran, a callback of a host in C++ for example; nothing else is lost by it: run again.
INKORA_EXPORT inkora_status inkora_loop_run(void);

/// Runs for so many seconds of the loop's clock, from 0 to 1e9, or until `inkora_loop_stop`.
INKORA_EXPORT inkora_status inkora_loop_run_for(double seconds);

/// One pass: waits at most `longest_wait` seconds, from 0 to 1e9, for something to do, and does
/// what is due.
/// @param[out] was_busy whether anything was due; may be null
INKORA_EXPORT inkora_status inkora_loop_run_once(double longest_wait, bool* was_busy);

/// Does what is due without waiting, what becomes due meanwhile included, for about `budget`
/// seconds from 0 to 1e9 (0.005 suits most hosts). What is left then is for the next call.
/// @param[out] was_busy whether anything was due; may be null
INKORA_EXPORT inkora_status inkora_loop_run_pending(double budget, bool* was_busy);

/// Ends the run in progress, or the next one if there is none. Any thread.
INKORA_EXPORT inkora_status inkora_loop_stop(void);

/// Has the loop call `work` once, in the order of posting, never inside this call. Any thread.
/// @param context passed on; the host's
INKORA_EXPORT inkora_status inkora_loop_post(void (*work)(void* context), void* context);

/// The time by the loop's clock, in seconds since any fixed moment; NaN from the wrong thread.
INKORA_EXPORT double inkora_loop_now(void);

/// Seconds until the loop has something to do: 0 when it has already, INFINITY when nothing is
/// scheduled, NaN from the wrong thread. For hosts that cannot watch the descriptor; what another
/// thread posts shortens it.
INKORA_EXPORT double inkora_loop_time_until_due(void);

// --- a pen without a pen ------------------------------------------------------------------------

/// For demos and hosts' own tests: what follows takes the place of Bluetooth and time, for the rest
/// of the process. A pen goes by its serial number; those that are not there are INKORA_NOT_FOUND.

/// How far from the adapter a virtual pen is.
typedef enum inkora_distance {
    INKORA_DISTANCE_IMMEDIATE = 0,     ///< -40 dBm
    INKORA_DISTANCE_NEAR = 1,          ///< -70 dBm
    INKORA_DISTANCE_FAR = 2,           ///< -100 dBm
    INKORA_DISTANCE_OUT_OF_RANGE = 3,  ///< not heard; a link is lost after 4 s, and found again
} inkora_distance;

/// Has the loop go by a clock that jumps to the next deadline instead of waiting, and begins at 0.
/// Harmless when called again.
/// @return INKORA_TOO_LATE after the first start
INKORA_EXPORT inkora_status inkora_virtual_clock_install(void);

/// Has the kit use a virtual radio, whose adapter is on and which no pen is near. Harmless when
/// called again.
/// @return INKORA_TOO_LATE after the first start on another radio
INKORA_EXPORT inkora_status inkora_virtual_radio_install(void);

/// Switches the virtual radio's adapter on or off.
INKORA_EXPORT inkora_status inkora_virtual_radio_set_powered(bool is_on);

/// Brings a pen near the virtual radio, which is installed where it was not. It is black, with a
/// full battery.
/// @return INKORA_ALREADY_DONE where a pen of this serial number is; INKORA_TOO_LATE as above
INKORA_EXPORT inkora_status inkora_virtual_pen_add(uint64_t serial_number);

/// Takes a pen away for good. A link to it is lost.
INKORA_EXPORT inkora_status inkora_virtual_pen_remove(uint64_t serial_number);

/// Captures a colour: components from 0 to 255.
INKORA_EXPORT inkora_status inkora_virtual_pen_capture(uint64_t serial_number, uint8_t red,
                                                       uint8_t green, uint8_t blue);

/// Captures a colour every `interval` seconds, from 0.001 to 1e9, while the kit listens; the seed
/// decides on all of them. Starts anew where it was under way.
INKORA_EXPORT inkora_status inkora_virtual_pen_start_capturing(uint64_t serial_number,
                                                               double interval, uint32_t seed);

/// Ends what `inkora_virtual_pen_start_capturing` began. Harmless otherwise.
INKORA_EXPORT inkora_status inkora_virtual_pen_stop_capturing(uint64_t serial_number);

/// Sets the battery's level in percent, from 0 to 100.
INKORA_EXPORT inkora_status inkora_virtual_pen_set_battery(uint64_t serial_number, uint8_t percent);

/// Moves the pen, an inkora_distance away.
INKORA_EXPORT inkora_status inkora_virtual_pen_set_distance(uint64_t serial_number, int distance);

/// Whether attempts to connect fail, as with INKORA_FAILURE_CONNECTION; they do not at first.
INKORA_EXPORT inkora_status inkora_virtual_pen_set_refusing(uint64_t serial_number, bool refuses);

/// Closes the link from the pen's side, which the kit hears at once. The pen advertises again, so
/// that the kit finds it. Harmless without a link.
INKORA_EXPORT inkora_status inkora_virtual_pen_drop_link(uint64_t serial_number);

/// Has the pen fall silent on its link, as when the battery is taken out: the link is lost after
/// 4 s, and the pen advertises again. Harmless without a link.
INKORA_EXPORT inkora_status inkora_virtual_pen_lose_link(uint64_t serial_number);

#ifdef __cplusplus
}
#endif
