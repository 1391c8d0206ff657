// A host in C, from the mistakes that it can make to the end of a link.
#include <InkoraKit/c/inkorakit.h>
#include <math.h>
#include <pthread.h>
#include <stdio.h>
#include <string.h>

static int failures = 0;
static char heard[512];
static bool asks_early = true;  // until that was refused

#define EXPECT(condition)                             \
    do {                                              \
        if (!(condition)) fail(__LINE__, #condition); \
    } while (0)

static void fail(int line, const char* what) {
    fprintf(stderr, "line %d: %s; heard \"%s\"; last error \"%s\"\n", line, what, heard,
            inkora_last_error());
    ++failures;
}

// Whether this has been heard since it was asked last.
static bool heard_is(const char* events) {
    const bool is = strcmp(heard, events) == 0;
    if (is) heard[0] = '\0';
    return is;
}

#define HEAR(...) snprintf(heard + strlen(heard), sizeof heard - strlen(heard), __VA_ARGS__)

static void unavailable(void* context, int64_t code, const char* text) {
    HEAR("%s unavailable %d %s;", (char*)context, (int)code, text);
}
static void connected(void* context) {
    HEAR("%s connected;", (char*)context);
    if (asks_early && inkora_link() == INKORA_LINK_CONNECTED)
        asks_early = inkora_request_battery() != INKORA_TOO_EARLY;
}
static void failed(void* context, int64_t code, const char* text) {
    HEAR("%s failed %d %s;", (char*)context, (int)code, text);
}
static void disconnected(void* context) {
    HEAR("%s disconnected;", (char*)context);
}
static void captured(void* context, const inkora_colour* colour) {
    HEAR("%s %g %g %g %g;", (char*)context, colour->red, colour->green, colour->blue,
         colour->alpha);
}
static void battery(void* context, int64_t percent) {
    HEAR("%s battery %d;", (char*)context, (int)percent);
}
static void proximity(void* context, int64_t magnitude) {
    HEAR("%s proximity %d;", (char*)context, (int)magnitude);
}
static void information(void* context, const char* name, const char* identifier) {
    HEAR("%s \"%s\" %zu;", (char*)context, name, strlen(identifier));
}
static void released(void* context) {
    HEAR("%s released;", (char*)context);
}

static const inkora_callbacks everything = {sizeof everything, unavailable, connected, failed,
                                            disconnected,      captured,    battery,   proximity,
                                            information,       released};

static void register_tables(void) {
    struct {
        inkora_callbacks known;
        void (*added_later)(void);
    } longer = {everything, NULL};

    EXPECT(inkora_register(NULL, NULL) == INKORA_INVALID_ARGUMENT);
    const size_t wrong_sizes[] = {0, sizeof everything - 1, (size_t)-1};
    for (int i = 0; i < 3; ++i) {
        longer.known.size = wrong_sizes[i];
        EXPECT(inkora_register(&longer.known, NULL) == INKORA_INVALID_ARGUMENT);
    }
    longer.known.size = sizeof longer;
    longer.added_later = register_tables;
    EXPECT(inkora_register(&longer.known, NULL) == INKORA_INVALID_ARGUMENT);
    EXPECT(strstr(inkora_last_error(), "does not know"));
    longer.added_later = NULL;
    EXPECT(inkora_register(&longer.known, "old") == INKORA_OK);

    const inkora_callbacks nothing = {.size = sizeof nothing};
    EXPECT(inkora_register(&nothing, NULL) == INKORA_OK);
    EXPECT(inkora_register(&everything, "new") == INKORA_OK);
    EXPECT(heard_is(""));
    bool was_busy = false;
    EXPECT(inkora_loop_run_pending(0.005, &was_busy) == INKORA_OK && was_busy);
    EXPECT(heard_is("old released;"));
}

static void make_mistakes(void) {
    EXPECT(inkora_loop_run_for(NAN) == INKORA_INVALID_ARGUMENT);
    EXPECT(inkora_loop_run_once(INFINITY, NULL) == INKORA_INVALID_ARGUMENT);
    EXPECT(inkora_loop_run_pending(-1, NULL) == INKORA_INVALID_ARGUMENT);
    EXPECT(inkora_loop_post(NULL, NULL) == INKORA_INVALID_ARGUMENT);
    EXPECT(inkora_virtual_radio_set_powered(true) == INKORA_NOT_FOUND);
    EXPECT(inkora_virtual_pen_capture(1, 0, 0, 0) == INKORA_NOT_FOUND);
    EXPECT(inkora_stop() == INKORA_OK && inkora_link() == INKORA_LINK_NONE);
    EXPECT(strcmp(inkora_status_text(-99), "a status of another version") == 0);
}

static void find_nothing(void) {
    EXPECT(inkora_virtual_clock_install() == INKORA_OK);
    EXPECT(inkora_virtual_radio_install() == INKORA_OK);
    EXPECT(inkora_loop_time_until_due() == INFINITY && inkora_loop_now() == 0);
    EXPECT(inkora_start() == INKORA_OK);
    EXPECT(inkora_loop_run_for(1) == INKORA_OK && inkora_loop_now() == 1);
    EXPECT(inkora_link() == INKORA_LINK_SCANNING);
    EXPECT(inkora_start() == INKORA_ALREADY_DONE);
    inkora_loop_run_for(6);
    EXPECT(heard_is("new failed 19 Device is timed out to connect.;"));
    EXPECT(inkora_virtual_clock_install() == INKORA_OK);  // is there already

    inkora_start();
    EXPECT(inkora_stop() == INKORA_OK && inkora_link() == INKORA_LINK_NONE);
    inkora_virtual_pen_add(1);
    inkora_loop_run_for(10);
    EXPECT(heard_is(""));
}

static void use_pen(void) {
    EXPECT(inkora_virtual_pen_add(1) == INKORA_ALREADY_DONE);
    EXPECT(inkora_virtual_pen_set_battery(1, 101) == INKORA_INVALID_ARGUMENT);
    EXPECT(inkora_virtual_pen_set_distance(1, 4) == INKORA_INVALID_ARGUMENT);
    EXPECT(inkora_virtual_pen_start_capturing(1, 0, 0) == INKORA_INVALID_ARGUMENT);

    inkora_virtual_pen_set_refusing(1, true);
    inkora_start();
    inkora_loop_run_for(1);
    EXPECT(heard_is("new failed 18 Device is failed to connect.;"));
    EXPECT(inkora_request_battery() == INKORA_TOO_EARLY);
    inkora_virtual_pen_set_refusing(1, false);

    EXPECT(inkora_start() == INKORA_OK);
    inkora_loop_run_for(1);
    EXPECT(heard_is("new connected;new 0 0 0 1;") && !asks_early);
    EXPECT(inkora_link() == INKORA_LINK_READY && inkora_start() == INKORA_ALREADY_DONE);
    inkora_virtual_pen_set_battery(1, 42);
    inkora_virtual_pen_set_distance(1, INKORA_DISTANCE_NEAR);
    inkora_virtual_pen_capture(1, 255, 0, 51);
    EXPECT(inkora_request_battery() == INKORA_OK && inkora_request_proximity() == INKORA_OK);
    inkora_loop_run_for(1);
    EXPECT(heard_is("new battery 42;new 1 0 0.2 1;new proximity 70;"));
    EXPECT(inkora_request_information() == INKORA_OK && heard_is("new \"InkoraPen\" 36;"));

    inkora_virtual_pen_drop_link(1);
    inkora_loop_run_for(1);
    EXPECT(heard_is("new disconnected;new connected;new 1 0 0.2 1;"));
    inkora_virtual_pen_lose_link(1);
    inkora_loop_run_for(3);
    EXPECT(heard_is(""));
    inkora_loop_run_for(3);
    EXPECT(heard_is("new disconnected;new connected;new 1 0 0.2 1;"));

    inkora_virtual_radio_set_powered(false);
    inkora_loop_run_for(1);
    EXPECT(heard_is("new unavailable 17 Bluetooth setting is disabled.;"));
    EXPECT(inkora_start() == INKORA_OK);
    EXPECT(heard_is("new unavailable 17 Bluetooth setting is disabled.;"));
    EXPECT(inkora_bluetooth_reason()[0] != '\0');
    inkora_virtual_radio_set_powered(true);
    inkora_loop_run_for(1);
    EXPECT(heard_is("new connected;"));  // the colour was told before
}

static void stop_loop(void* context) {
    HEAR("%s posted;", (char*)context);
    inkora_loop_stop();
}

static void* meddle(void* context) {
    while (inkora_link() != INKORA_WRONG_THREAD) continue;  // until the loop runs
    EXPECT(inkora_start() == INKORA_WRONG_THREAD);
    EXPECT(strstr(inkora_last_error(), "inkora_loop_post"));
    EXPECT(!(inkora_loop_now() >= 0));
    EXPECT(inkora_loop_post(stop_loop, context) == INKORA_OK);
    return NULL;
}

static void use_two_threads(void) {
    pthread_t other;
    pthread_create(&other, NULL, meddle, "other");
    inkora_status status = INKORA_WRONG_THREAD;
    while (status == INKORA_WRONG_THREAD) status = inkora_loop_run();
    EXPECT(status == INKORA_OK);
    pthread_join(other, NULL);
    EXPECT(heard_is("other posted;"));
}

static void leave(void) {
    EXPECT(inkora_stop() == INKORA_OK && inkora_stop() == INKORA_OK);
    EXPECT(inkora_link() == INKORA_LINK_DISCONNECTING);
    while (inkora_link() == INKORA_LINK_DISCONNECTING) inkora_loop_run_once(1, NULL);
    EXPECT(heard_is("new disconnected;"));
    EXPECT(inkora_unregister() == INKORA_OK && inkora_unregister() == INKORA_OK);
    EXPECT(heard_is(""));
    inkora_loop_run_for(1);
    EXPECT(heard_is("new released;"));
    EXPECT(inkora_virtual_pen_remove(1) == INKORA_OK);
    EXPECT(inkora_virtual_pen_remove(1) == INKORA_NOT_FOUND);
}

int main(void) {
    register_tables();
    make_mistakes();
    find_nothing();
    use_pen();
    use_two_threads();
    leave();
    printf("%d failed\n", failures);
    return failures == 0 ? 0 : 1;
}
