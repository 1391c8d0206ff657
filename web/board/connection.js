// The board's pen: a real one by the browser's Bluetooth, or a virtual one.
import { load } from './inkorakit.js';

const linkedKey = 'inkora-board-linked';  // there while a real pen is connected
const lastKey = 'inkora-board-last';      // the colour that a real pen told last, behind the pen's identifier
const searchPause = 2000;                 // milliseconds
const readingPatience = 6000;
const batteryPause = 60000;

const stopped = { kind: 'stopped' };      // why what was left behind goes no further

export class Connection {
    /** A key of `phases`. */
    phase = 'loading';
    name = '';
    /** In percent; undefined while nobody knows. */
    battery;
    /** Why there is no pen, a KitError, or what else is wrong: its kind and message. */
    problem;
    /** The virtual pen, if that is what it is about. */
    virtualPen;

    #kits = {};       // promises of them, by their radios: each is loaded once, unless it fails
    #kit;             // the one that it is about
    #attempt = 0;     // counts what a person or the page has begun: what comes of earlier ones is not wanted
    #identifier = '';
    #isFirst = false; // whether the link has told no colour yet
    #told;
    #timer;

    /** @param {{changed: () => void, captured: (hex: string) => void}} told */
    constructor(told) {
        this.#told = told;
        setInterval(() => this.#kit?.state === 'ready' && this.#askBattery(), batteryPause);
    }

    /** Loads the kit, and looks for the pen that the page was connected to when it was left. */
    start() {
        return this.#try('loading', async still => {
            await this.#use('web', still);
            const isLinked = recalled(linkedKey) && (await still(navigator.bluetooth?.getDevices?.()))?.length;
            if (isLinked) this.search();
            else this.#turn('idle');
        });
    }

    /** Lets the person choose a pen; to be called while a click or a key is handled. */
    pair() {
        return this.#try('choosing', async still => {
            const kit = await this.#use('web', still);
            if (kit.state !== 'none') await still(kit.stop());  // it waits for Bluetooth
            await still(kit.pair());
            if (this.phase === 'choosing') this.#turn('searching');
        });
    }

    /** Looks for a pen that was chosen before. */
    search() {
        return this.#try('searching', () => this.#kit.resume());
    }

    /** Connects a virtual pen, which captures a colour to begin with. */
    tryVirtual() {
        return this.#try('searching', async still => {
            const kit = await this.#use('virtual', still);
            this.virtualPen = kit.addPen(1 + Math.floor(Math.random() * 1e6));
            this.virtualPen.setBattery(20 + Math.floor(Math.random() * 80));
            this.virtualPen.capture(0x47, 0x80, 0xEB);
            await kit.pair();
        });
    }

    stop() {
        remember(linkedKey, null);
        return this.#try('idle', async () => {
            this.#leaveVirtualPen();
            await this.#kit?.stop();
        });
    }

    /** Runs what has been begun. `still` waits for a promise, and goes no further once something else has been begun. */
    async #try(phase, what) {
        const attempt = ++this.#attempt;
        const isWanted = () => attempt === this.#attempt;
        this.#turn(phase);
        try {
            await what(async promise => {
                const value = await promise;
                if (!isWanted()) throw stopped;
                return value;
            });
        } catch (error) {
            if (isWanted() && error.kind !== 'stopped') this.#turn('idle', error);
        }
    }

    /** The kit of this radio, which it is about from now on. */
    async #use(radio, still) {
        this.#leaveVirtualPen();
        const kit = await still(this.#kits[radio] ??= this.#loaded(radio));
        if (this.#kit !== kit) await still(this.#kit?.stop());  // it may wait for Bluetooth
        return this.#kit = kit;
    }

    async #loaded(radio) {
        try {
            const kit = await load({ radio });
            this.#hear(kit, radio);
            return kit;
        } catch (error) {
            this.#kits[radio] = undefined;
            throw error;
        }
    }

    #hear(kit, radio) {
        const hear = (type, heard) => kit.addEventListener(type, event => kit === this.#kit && heard(event));
        hear('connected', () => this.#connected());
        hear('disconnected', () => this.#lost());
        hear('colour', ({ colour }) => {
            this.#answered();
            this.#captured(colour.hex.toUpperCase());
        });
        hear('battery', ({ level }) => {
            this.battery = level;
            this.#answered();
            this.#told.changed();
        });
        hear('failed', ({ error }) => this.#failed(error));
        hear('unavailable', ({ error }) => this.#turn('idle', error));
        kit.addEventListener('fatal', ({ error }) => {
            this.#kits[radio] = undefined;
            if (kit !== this.#kit) return;
            this.#kit = undefined;
            this.#turn('idle', error);
        });
    }

    #leaveVirtualPen() {
        try {
            this.virtualPen?.remove();
        } catch {}  // its kit has stopped for good
        this.virtualPen = undefined;
    }

    #connected() {
        if (!this.virtualPen) remember(linkedKey, 'yes');
        const { name, identifier } = this.#kit.info();
        this.name = this.virtualPen ? 'the virtual pen' : name;
        this.#identifier = identifier;
        this.#isFirst = true;
        this.#turn('reading');
        this.#timer = setTimeout(() => {
            if (this.#kit.state === 'ready') this.#answered();
            else this.#turn('reading', { kind: 'silent', message: '' });
        }, readingPatience);
        this.#askBattery();
    }

    /** The pen has told something that only a pen tells. */
    #answered() {
        if (this.phase === 'reading') this.#turn('connected');
    }

    // A pen that is connected again tells its last colour again.
    #captured(hex) {
        const isFirst = this.#isFirst;
        this.#isFirst = false;
        if (!this.virtualPen) {
            const last = `${this.#identifier} ${hex}`;
            if (isFirst && recalled(lastKey) === last) return;
            remember(lastKey, last);
        }
        this.#told.captured(hex);
    }

    // The kit looks for it again by itself, for as long as one search takes.
    #lost() {
        if (this.phase !== 'connected' && this.phase !== 'reading') return;
        this.battery = undefined;
        this.#turn('lost');
    }

    #failed(error) {
        if (this.phase !== 'lost') return this.#turn('idle', error);
        this.#timer = setTimeout(() => this.#try('lost', () => this.#kit.resume()), searchPause);
    }

    // The answer comes as an event as well.
    #askBattery() {
        this.#kit.battery().catch(() => {});
    }

    #turn(phase, problem) {
        clearTimeout(this.#timer);
        this.phase = phase;
        this.problem = problem;
        if (phase === 'idle') this.battery = undefined;
        this.#told.changed();
    }
}

const refused = new Map();  // what the storage does not keep, for as long as the page is there

function recalled(key) {
    try {
        return refused.get(key) ?? localStorage.getItem(key);
    } catch {}
}

/** Null forgets. */
function remember(key, value) {
    refused.delete(key);
    try {
        if (value === null) localStorage.removeItem(key);
        else localStorage.setItem(key, value);
    } catch {
        refused.set(key, value);
    }
}
