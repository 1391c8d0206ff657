/** A colour in sRGB: components from 0 to 1. */
export interface Colour {
    readonly red: number;
    readonly green: number;
    readonly blue: number;
    /** Opacity; 1 for all that a pen captures. */
    readonly alpha: number;
    /** As "#4a90d9", without the opacity. */
    readonly hex: string;
}

/** Why something failed, or was refused. */
export class KitError extends Error {
    private constructor();
    /**
     * What kind of thing: "unavailable" (Bluetooth is off, missing or not permitted, 17), "connection"
     * (the pen could not be connected, 18), "not-found" (no pen within 6 seconds, 19), "not-chosen"
     * (the chooser was closed), "stopped" (the request ended by `stop`), "fatal" (the kit has stopped
     * for good), "invalid" (an argument, or a place where the kit is not), "already-done", "no-such-pen".
     */
    readonly kind: 'unavailable' | 'connection' | 'not-found' | 'not-chosen' | 'stopped' | 'fatal'
        | 'invalid' | 'already-done' | 'no-such-pen';
    /** The kit's code: of a failure (17, 18, 19) or of a refusal (negative); 0 where it has none. */
    readonly code: number;
}

/** How far the kit is with a pen. */
export type LinkState = 'none' | 'scanning' | 'connecting' | 'connected' | 'ready' | 'disconnecting';

/** What a pen has captured. */
export class ColourEvent extends Event {
    private constructor();
    readonly colour: Colour;
}

/** A battery level, or a signal strength. */
export class LevelEvent extends Event {
    private constructor();
    readonly level: number;
}

/** Which pen there is. */
export class InformationEvent extends Event {
    private constructor();
    readonly name: string;
    readonly identifier: string;
}

/** What went wrong. */
export class FailureEvent extends Event {
    private constructor();
    readonly error: KitError;
}

export interface KitEvents {
    /** A pen is connected. Its colours follow, the one that it captured last to begin with. */
    connected: Event;
    /** The link has ended. Unless the page has stopped the kit, or does so here, a new search follows at once. */
    disconnected: Event;
    /** A colour was captured. One equal to the last is not told again. */
    colour: ColourEvent;
    /** The battery level in percent, once for each request. */
    battery: LevelEvent;
    /** The signal strength, once for each request: 57 means -57 dBm, and smaller is nearer. */
    proximity: LevelEvent;
    /** The pen's name and identifier; both empty while there is no pen. */
    info: InformationEvent;
    /** No pen was found in time, or the one found could not be connected. The kit is idle. */
    failed: FailureEvent;
    /** Bluetooth is off, missing or not permitted. The kit searches by itself once it is on. */
    unavailable: FailureEvent;
    /**
     * The pen has sent what no pen sends, and the kit has stopped for good: its links are closed, and
     * each call throws. The page goes on; `load` gives a new kit.
     */
    fatal: FailureEvent;
}

export interface LoadOptions {
    /** "web", the browser's Bluetooth, if not said otherwise; "virtual": without any, for tests and demos. */
    radio?: 'web' | 'virtual';
    /** "virtual": the kit's time passes by `advance` alone; with the virtual radio only. */
    clock?: 'page' | 'virtual';
    /** Where inkorakit.wasm is, or its bytes. If not said otherwise, beside this module. */
    wasm?: string | URL | ArrayBuffer | Uint8Array;
}

/**
 * A kit with its own search and events. The pens are the page's: `resume` of a second kit may take the
 * first one's pen, whose link then ends for both with either's `stop` or `close`. Fetches inkorakit.wasm.
 * @throws KitError (as the promise's rejection) "invalid"
 */
export function load(options?: LoadOptions): Promise<Kit>;

export class Kit extends EventTarget {
    private constructor();
    /** The version of the kit, as "1.0.0". */
    readonly version: string;
    /** "none" once the kit has stopped for good, or is closed. */
    readonly state: LinkState;
    /** Why Bluetooth cannot be used, for people: "There is no Bluetooth LE adapter."; "" when nothing is known. */
    readonly reason: string;

    /**
     * Opens the browser's chooser, and looks for the pen that was chosen in it. Browsers insist on a
     * gesture: call it in the handler of a click or a key. With the virtual radio there is no chooser.
     * Settled when the search has begun; what comes of it is told by events.
     * @throws KitError (as the promise's rejection) "not-chosen"; "unavailable"; "already-done" while
     * the chooser is open or there is a pen; "stopped"; "not-found" and "connection" where the browser had
     * no Bluetooth for the chooser, and a search without it has failed
     */
    pair(): Promise<void>;
    /**
     * Looks for pens that were chosen before, on this page or, where the browser remembers, on an
     * earlier visit. Needs no gesture. Where the browser has fallen silent and does not remember,
     * it finds none: `pair` is needed then.
     * @throws KitError "already-done" while it looks or has a pen
     */
    resume(): void;
    /**
     * Ends the search or the link, and all that waits; settled when the link has ended, which by the
     * virtual clock takes an `advance`. Bluetooth that comes back begins a search all the same.
     */
    stop(): Promise<void>;

    /**
     * The battery level in percent; without a pen, of the next one. After a link that ended with the
     * adapter, the next one's is told to those who ask before it is connected; asked later it does not
     * come before the pen tells a new level, or is linked again.
     * @throws KitError (as the promise's rejection, as does `proximity`) "stopped", and that of the
     * event "failed" or "unavailable" where one comes before the answer
     */
    battery(): Promise<number>;
    /** The signal strength, as in the event; mostly with the next advertisement only. */
    proximity(): Promise<number>;
    /** Name and identifier, empty while there is no pen. */
    info(): { readonly name: string; readonly identifier: string };

    /** Brings a virtual pen near. @throws KitError "already-done" where one of this number is, or the radio is the browser's */
    addPen(serialNumber: number): VirtualPen;
    /** Switches the virtual radio's adapter on or off. @throws KitError "no-such-pen" without that radio */
    setPowered(isOn: boolean): void;
    /** Lets so many seconds of the virtual clock pass. @throws KitError "invalid" without that clock */
    advance(seconds: number): void;
    /**
     * Ends the link and lets go of all; each later call throws, but for `close`, which is done at once.
     * A kit that is not closed keeps node running.
     */
    close(): Promise<void>;

    addEventListener<K extends keyof KitEvents>(type: K, listener: (this: Kit, event: KitEvents[K]) => unknown,
        options?: boolean | AddEventListenerOptions): void;
    addEventListener(type: string, listener: EventListenerOrEventListenerObject | null,
        options?: boolean | AddEventListenerOptions): void;
    removeEventListener<K extends keyof KitEvents>(type: K, listener: (this: Kit, event: KitEvents[K]) => unknown,
        options?: boolean | EventListenerOptions): void;
    removeEventListener(type: string, listener: EventListenerOrEventListenerObject | null,
        options?: boolean | EventListenerOptions): void;
}

/**
 * A pen without a pen, black at first and with a full battery. Each call throws a KitError
 * "no-such-pen" after `remove`, and "invalid" for what is out of range.
 */
export class VirtualPen {
    private constructor();
    readonly serialNumber: number;
    /** Captures a colour: components from 0 to 255. */
    capture(red: number, green: number, blue: number): void;
    /** Captures a colour each so many seconds, 0.001 at least, while the kit listens; the seed decides on all of them. */
    startCapturing(seconds: number, seed?: number): void;
    stopCapturing(): void;
    /** In percent, from 0 to 100. */
    setBattery(percent: number): void;
    setDistance(distance: 'immediate' | 'near' | 'far' | 'out-of-range'): void;
    /** Whether attempts to connect fail. */
    setRefusing(refuses: boolean): void;
    /** Closes the link from the pen's side. */
    dropLink(): void;
    /** Falls silent, as without a battery: the link is lost after 4 seconds. */
    loseLink(): void;
    /** Takes it away for good. */
    remove(): void;
}
