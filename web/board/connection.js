// The board's pen: a real one by the browser's Bluetooth, or a virtual one.
import { load } from './inkorakit.js';

const linkedKey = 'inkora-board-linked';  // there while a real pen is connected
const searchPause = 2000;                 // milliseconds
const batteryPause = 60000;

export class Connection {
    /** A key of `phases`. */
    phase = 'idle';
    name = '';
    /** In percent; undefined while nobody knows. */
    battery;
    /** Why there is no pen, a KitError. */
    problem;
    /** The virtual pen, if that is what it is about. */
    virtualPen;

    #kit;
    #told;
    #search;

    /** @param {{changed: () => void, captured: (hex: string) => void}} told */
    constructor(told) {
        this.#told = told;
        setInterval(() => this.#kit?.state === 'ready' && this.#askBattery(), batteryPause);
    }

    /** Loads the kit, and looks for the pen that the page was connected to when it was left. */
    start() {
        return this.#try('idle', async () => {
            await this.#use('web');
            if (isThere(linkedKey) && (await navigator.bluetooth?.getDevices?.())?.length) this.search();
        });
    }

    /** Lets the person choose a pen; to be called while a click or a key is handled. */
    pair() {
        return this.#try('choosing', async () => {
            if (this.virtualPen || !this.#kit) await this.#use('web');
            else if (this.#kit.state !== 'none') await this.#kit.stop();  // it waits for Bluetooth
            await this.#kit.pair();
            if (this.phase === 'choosing') this.#turn('searching');
        });
    }

    /** Looks for a pen that was chosen before. */
    search() {
        return this.#try('searching', () => this.#kit.resume());
    }

    /** Connects a virtual pen. */
    tryVirtual() {
        return this.#try('searching', async () => {
            await this.#use('virtual');
            this.virtualPen = this.#kit.addPen(1 + Math.floor(Math.random() * 1000));
            this.virtualPen.setBattery(20 + Math.floor(Math.random() * 80));
            this.virtualPen.capture(0x47, 0x80, 0xEB);
            await this.#kit.pair();
        });
    }

    stop() {
        forget(linkedKey);
        return this.#try('idle', () => this.virtualPen ? this.#use('web') : this.#kit?.stop());
    }

    async #use(radio) {
        clearTimeout(this.#search);
        const left = this.#kit;
        this.#kit = this.virtualPen = undefined;
        await left?.close().catch(() => {});  // one that has stopped for good throws
        const kit = await load({ radio });
        this.#kit = kit;
        const hear = (type, heard) => kit.addEventListener(type, event => kit === this.#kit && heard(event));
        hear('connected', () => this.#connected());
        hear('disconnected', () => this.#lost());
        hear('colour', ({ colour }) => this.#told.captured(colour.hex.toUpperCase()));
        hear('battery', ({ level }) => {
            this.battery = level;
            this.#told.changed();
        });
        hear('failed', ({ error }) => this.#failed(error));
        hear('unavailable', ({ error }) => this.#turn('idle', error));
        hear('fatal', ({ error }) => {
            this.#kit = undefined;
            this.#turn('idle', error);
        });
    }

    #connected() {
        if (!this.virtualPen) remember(linkedKey);
        this.name = this.virtualPen ? 'the virtual pen' : this.#kit.info().name;
        this.#turn('connected');
        this.#askBattery();
    }

    // The kit looks for it again by itself, for as long as one search takes.
    #lost() {
        if (this.phase !== 'connected') return;
        this.battery = undefined;
        this.#turn('lost');
    }

    #failed(error) {
        if (this.phase !== 'lost') return this.#turn('idle', error);
        this.#search = setTimeout(() => this.#try('lost', () => this.#kit.resume()), searchPause);
    }

    async #try(phase, what) {
        clearTimeout(this.#search);
        this.#turn(phase);
        try {
            await what();
        } catch (error) {
            if (error.kind !== 'stopped') this.#turn('idle', error);
        }
    }

    // The answer comes as an event as well.
    #askBattery() {
        this.#kit.battery().catch(() => {});
    }

    #turn(phase, problem) {
        this.phase = phase;
        this.problem = problem;
        if (phase === 'idle') this.battery = undefined;
        this.#told.changed();
    }
}

// Where storage is refused, nothing is remembered.
function isThere(key) {
    try {
        return localStorage.getItem(key) !== null;
    } catch {
        return false;
    }
}

function remember(key) {
    try {
        localStorage.setItem(key, 'yes');
    } catch {}
}

function forget(key) {
    try {
        localStorage.removeItem(key);
    } catch {}
}
