/* A whole host in C: pairs with the first pen it finds and prints the colours. With the argument
   `virtual` the pen is one that needs no Bluetooth. */
#include <InkoraKit/c/inkorakit.h>
#include <stdio.h>
#include <string.h>

static void tell_connected(void* context) {
    (void)context;
    puts("connected");
}

static void show(void* context, const inkora_colour* colour) {
    (void)context;
    printf("#%02X%02X%02X\n", (unsigned)(colour->red * 255 + 0.5),
           (unsigned)(colour->green * 255 + 0.5), (unsigned)(colour->blue * 255 + 0.5));
}

static void give_up(void* context, int64_t code, const char* text) {
    *(int*)context = 1;
    fprintf(stderr, "%s (%d) %s\n", text, (int)code, inkora_bluetooth_reason());
    inkora_loop_stop();
}

int main(int count, char** arguments) {
    const inkora_callbacks callbacks = {.size = sizeof callbacks,
                                        .bluetooth_unavailable = give_up,
                                        .connected = tell_connected,
                                        .failed = give_up,
                                        .colour_captured = show};
    int status = 0;
    if (count > 1 && strcmp(arguments[1], "virtual") == 0) {
        inkora_virtual_pen_add(1);
        inkora_virtual_pen_start_capturing(1, 0.5, 0);
    }
    if (inkora_register(&callbacks, &status) || inkora_start() || inkora_loop_run()) {
        fprintf(stderr, "%s\n", inkora_last_error());
        return 1;
    }
    return status;
}
