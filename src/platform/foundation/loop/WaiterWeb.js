// How the run loop is given its turns by a page's own. Turns that are due are messages: unlike timers
// they come at once in a hidden tab, too, and unlike microtasks they let the page draw between them.
mergeInto(LibraryManager.library, {
    $inkoraLoop: {
        isAwake: false,
        channel: null,
        timer: 0,

        // The page goes on when the program was aborted, and calls it no more. Who listens for that has
        // heard of it.
        turn: function () {
            try {
                if (!ABORT) return _inkora_loop_turn();
            } catch (error) {
                if (!ABORT || !Module['onAbort']) throw error;
            }
            clearTimeout(inkoraLoop.timer);
            if (inkoraLoop.channel) inkoraLoop.channel.port1.close();
        },
    },

    inkora_loop_wake__deps: ['$inkoraLoop'],
    inkora_loop_wake: function () {
        if (inkoraLoop.isAwake) return;
        inkoraLoop.isAwake = true;
        if (!inkoraLoop.channel) {
            inkoraLoop.channel = new MessageChannel();
            inkoraLoop.channel.port1.onmessage = () => {
                inkoraLoop.isAwake = false;
                inkoraLoop.turn();
            };
        }
        inkoraLoop.channel.port2.postMessage(0);
    },

    // In force until it is set anew: a turn that came a little early is followed by another one.
    inkora_loop_set_alarm__deps: ['$inkoraLoop'],
    inkora_loop_set_alarm: function (seconds) {
        clearTimeout(inkoraLoop.timer);
        if (seconds < 0) return;
        const due = performance.now() + seconds * 1000;
        const sleep = () => {
            const longest = 0x7fffffff;  // that setTimeout counts
            const rest = Math.max(1, Math.ceil(due - performance.now()));
            inkoraLoop.timer = setTimeout(ring, Math.min(rest, longest));
        };
        const ring = () => {
            sleep();
            inkoraLoop.turn();
        };
        sleep();
    },
});
