// The kit for pages: inkorakit.d.ts says what each member does. The kit itself is WebAssembly behind
// its C interface (core.js); here its calls become methods, and its callbacks events and promises.
import createCore from './core.js';

const states = ['none', 'scanning', 'connecting', 'connected', 'ready', 'disconnecting'];
const distances = ['immediate', 'near', 'far', 'out-of-range'];
const failures = { 17: 'unavailable', 18: 'connection', 19: 'not-found' };
const refusals = { '-1': 'invalid', '-4': 'already-done', '-5': 'no-such-pen' };
const longestDisconnection = 10;  // seconds
const invalid = -1;
const tooEarly = -2;
const alreadyDone = -4;

export class KitError extends Error {
    constructor(kind, code, text, options) {
        super(text, options);
        this.name = 'KitError';
        this.kind = kind;
        this.code = code;
    }
}

export class ColourEvent extends Event {
    constructor(colour) {
        super('colour');
        this.colour = colour;
    }
}

export class LevelEvent extends Event {
    constructor(type, level) {
        super(type);
        this.level = level;
    }
}

export class InformationEvent extends Event {
    constructor({ name, identifier }) {
        super('info');
        this.name = name;
        this.identifier = identifier;
    }
}

export class FailureEvent extends Event {
    constructor(type, error) {
        super(type);
        this.error = error;
    }
}

export async function load({ radio = 'web', clock = 'page', wasm } = {}) {
    expectOneOf(['web', 'virtual'], radio, 'the radio');
    expectOneOf(['page', 'virtual'], clock, 'the clock');
    if (clock === 'virtual' && radio === 'web')
        throw new KitError('invalid', invalid, 'the virtual clock needs the virtual radio');
    // The kit that is to be listens by these; a core tells from its beginning.
    const ears = { hear() {}, ended() {}, say: line => console.error(line) };
    const kit = new Kit(await begun(wasm ?? new URL('inkorakit.wasm', import.meta.url), ears), ears, radio, clock);
    await ears.ready;
    return kit;
}

/** A core of the program that is there, or in these bytes. */
async function begun(wasm, ears) {
    try {
        const program = await WebAssembly.compile(await bytesOf(wasm));
        return await new Promise((done, failed) => createCore({
            instantiateWasm: (imports, begin) =>
                void WebAssembly.instantiate(program, imports).then(begin).catch(failed),
            hear: (...heard) => ears.hear(...heard),
            onAbort: () => ears.ended(),
            printErr: line => ears.say(line),
        }).then(done, failed));
    } catch (cause) {
        const place = typeof wasm === 'string' || wasm instanceof URL ? ` from ${wasm}` : '';
        throw new KitError('invalid', invalid, `the kit could not be loaded${place}: ${cause.message}`, { cause });
    }
}

async function bytesOf(wasm) {
    if (wasm instanceof ArrayBuffer || ArrayBuffer.isView(wasm)) return wasm;
    const response = await fetch(wasm);
    if (!response.ok) throw new Error(`${response.status} ${response.statusText}`);
    return response.arrayBuffer();
}

export class Kit extends EventTarget {
    #core;
    #radio;
    #clock;
    #info = { name: '', identifier: '' };
    #waiting = new Map();  // those who wait, by what for
    #choices = 0;          // of which the last one may wait for its answer
    #isTellingOfLink = false;
    #end = null;  // the error of each call from then on
    #lastWords = '';

    constructor(core, ears, radio, clock) {
        super();
        this.#core = core;
        this.#radio = radio;
        this.#clock = clock;
        this.version = this.#text('version');
        ears.hear = (event, ...values) => this.#hear(event, ...values);
        ears.ended = () => this.#ended();
        ears.say = line => this.#say(line);
        if (radio === 'virtual') this.#call('virtual_radio_install');
        if (clock === 'virtual') this.#call('virtual_clock_install');
        this.#call('page_listen');
        this.#askFirstBattery();
        ears.ready = this.#turn();
    }

    get state() {
        return this.#end ? 'none' : states[this.#run('link')];
    }

    get reason() {
        return this.#end ? '' : this.#text('bluetooth_reason');
    }

    async pair() {
        if (this.#waiting.has(`chosen ${this.#choices}`)) throw new KitError('already-done', alreadyDone, 'the chooser is open');
        if (['connecting', 'connected', 'ready'].includes(this.state))
            throw new KitError('already-done', alreadyDone, 'there is a pen; stop first');
        if (this.#radio === 'web') await this.#choose();
        if (this.state === 'none' || this.state === 'disconnecting') await this.#start();
    }

    resume() {
        this.#call('start');
    }

    async stop() {
        if (this.#isTellingOfLink) return this.#turn(() => this.stop());  // the kit has steps to do there
        this.#call('stop');
        const ofStops = ['turn', 'disconnected'];
        this.#refuse(new KitError('stopped', 0, 'the kit was stopped'),
            [...this.#waiting.keys()].filter(event => !ofStops.includes(event)));
        if (this.state === 'disconnecting') await this.#wait('disconnected');
    }

    battery() {
        return this.#request('battery');
    }

    proximity() {
        return this.#request('proximity');
    }

    info() {
        this.#call('request_information');
        return this.#info;
    }

    addPen(serialNumber) {
        if (this.#radio === 'web')
            throw new KitError('already-done', alreadyDone, "the radio is the browser's: load({ radio: 'virtual' })");
        const number = BigInt(whole(serialNumber, Number.MAX_SAFE_INTEGER, 'the serial number'));
        this.#call('virtual_pen_add', number);
        return new VirtualPen(serialNumber, (name, ...values) => this.#call(`virtual_pen_${name}`, number, ...values));
    }

    setPowered(isOn) {
        this.#call('virtual_radio_set_powered', Boolean(isOn));
    }

    advance(seconds) {
        if (this.#clock !== 'virtual')
            throw new KitError('invalid', invalid, "the clock is the page's: load({ radio: 'virtual', clock: 'virtual' })");
        this.#call('loop_run_for', Number(seconds));
    }

    async close() {
        await null;  // an event may be told, in which no time can pass and the core cannot end
        if (this.#end) return;
        const stopped = this.stop();
        if (this.#clock === 'virtual') this.advance(longestDisconnection);
        await stopped;
        if (this.#end) return;  // by another close
        void this.#turn();  // in which the core sees that it has ended
        this.#end = new KitError('stopped', 0, 'the kit was closed');
        this.#abort();
    }

    // --- calls ----------------------------------------------------------------------------------

    /** Calls a function of the C interface that answers a status. */
    #call(name, ...values) {
        this.#expectDone(this.#run(name, ...values));
    }

    #expectDone(status) {
        if (status) throw new KitError(refusals[status] ?? 'invalid', status, this.#text('last_error'));
    }

    /** Calls any. One that ends the kit throws what each later one does. */
    #run(name, ...values) {
        if (this.#end) throw this.#end;
        try {
            return this.#core[`_inkora_${name}`](...values);
        } catch (thrown) {
            if (!this.#end) {
                this.#lastWords = thrown.message;
                this.#abort();
            }
            throw this.#end ?? thrown;  // where the stack has no room for an end either
        }
    }

    #text(name) {
        return this.#core.UTF8ToString(this.#run(name));
    }

    /** The first level of each link is asked for ahead of it: until it is there the pen must not be asked. */
    #askFirstBattery() {
        this.#run('request_battery');
    }

    // --- promises -------------------------------------------------------------------------------

    /**
     * Waits for what is heard next of this, and does `then` as it is heard. Nobody need look at how it
     * ends: events tell that as well.
     */
    #wait(event, then = value => value) {
        const answer = new Promise((done, failed) => {
            if (!this.#waiting.has(event)) this.#waiting.set(event, []);
            this.#waiting.get(event).push({ done: value => done(then(value)), failed });
        });
        answer.catch(() => {});
        return answer;
    }

    /** Answers all who wait for this; whether anybody did. */
    #answer(event, value) {
        const waiting = this.#waiting.get(event) ?? [];
        this.#waiting.delete(event);
        for (const { done } of waiting) done(value);
        return waiting.length > 0;
    }

    /** Disappoints those who wait for these. */
    #refuse(error, events = [...this.#waiting.keys()]) {
        for (const event of events) {
            const waiting = this.#waiting.get(event) ?? [];
            this.#waiting.delete(event);
            for (const { failed } of waiting) failed(error);
        }
    }

    #request(what) {
        try {
            const status = this.#run(`request_${what}`);
            if (status !== tooEarly) this.#expectDone(status);
            return this.#wait(what);
        } catch (error) {
            return Promise.reject(error);
        }
    }

    /** Until all that has been posted so far is done. */
    #turn(then) {
        this.#call('page_turn');
        return this.#wait('turn', then);
    }

    /** Begins to look for a pen. A virtual adapter that is off has said so two turns later. */
    async #start() {
        const unavailable = this.#wait('unavailable');
        this.#call('start');
        const error = await Promise.race([unavailable, this.#turn().then(() => this.#turn())]);
        if (error) throw error;
    }

    async #choose() {
        const bluetooth = globalThis.navigator?.bluetooth;
        if (bluetooth) {
            const text = await this.#answerOfChooser();
            if (!text) return;
            if (await bluetooth.getAvailability().catch(() => false)) throw new KitError('not-chosen', 0, text);
        }
        // The kit says that there is none, and why; unless it is mistaken, or right again.
        const told = ['unavailable', 'failed', 'connected'].map(event => this.#wait(event));
        if (this.state === 'none') this.#call('start');
        const error = await Promise.race(told);
        if (error) throw error;
    }

    /**
     * Empty, or why nothing was chosen. The browser cancels a chooser that is still open after a `stop`
     * when the next one opens: each has a number, and its answer goes to nobody else.
     */
    #answerOfChooser() {
        this.#run('page_choose', ++this.#choices);
        return this.#wait(`chosen ${this.#choices}`);
    }

    // --- what the kit tells ---------------------------------------------------------------------

    #hear(event, ...values) {
        switch (event) {
            case 'turn':
                this.#answer(event);
                break;
            case 'chosen': {
                const [choice, text] = values;
                this.#answer(`chosen ${choice}`, text);
                break;
            }
            case 'connected':
            case 'disconnected':
                if (event === 'disconnected') this.#askFirstBattery();
                this.#answer(event);
                this.#isTellingOfLink = true;
                this.dispatchEvent(new Event(event));
                this.#isTellingOfLink = false;
                break;
            case 'failed':
            case 'unavailable': {
                const [code, text] = values;
                const error = new KitError(failures[code], code, text);
                this.#refuse(error, ['battery', 'proximity']);
                this.#answer(event, error);
                this.#answer('disconnected');  // a link ends with the adapter, without a word
                this.dispatchEvent(new FailureEvent(event, error));
                break;
            }
            case 'colour':
                this.dispatchEvent(new ColourEvent(colourOf(...values)));
                break;
            case 'battery':
            case 'proximity':
                if (this.#answer(event, values[0])) this.dispatchEvent(new LevelEvent(event, values[0]));
                break;
            case 'info':
                this.#info = Object.freeze({ name: values[0], identifier: values[1] });
                this.dispatchEvent(new InformationEvent(this.#info));
                break;
        }
    }

    #say(line) {
        if (this.#end) return;
        console.error(line);
        this.#lastWords = line;
    }

    /** Ends the core, whose scripts let go of timers and links. It throws. */
    #abort() {
        try {
            this.#core.abort();
        } catch {
            // as it does
        }
    }

    #ended() {
        this.#core.endRadios?.();  // none is there before it listens
        if (this.#end) return this.#refuse(this.#end);
        this.#end = new KitError('fatal', 0, this.#lastWords.replace('Fatal error: ', ''));
        this.#refuse(this.#end);
        this.dispatchEvent(new FailureEvent('fatal', this.#end));
    }
}

export class VirtualPen {
    #call;

    constructor(serialNumber, call) {
        this.serialNumber = serialNumber;
        this.#call = call;
    }

    capture(red, green, blue) {
        this.#call('capture', ...[red, green, blue].map(value => whole(value, 255, 'a component')));
    }

    startCapturing(seconds, seed = 0) {
        this.#call('start_capturing', Number(seconds), whole(seed, 0xffffffff, 'the seed'));
    }

    stopCapturing() {
        this.#call('stop_capturing');
    }

    setBattery(percent) {
        this.#call('set_battery', whole(percent, 100, 'the battery level'));
    }

    setDistance(distance) {
        expectOneOf(distances, distance, 'the distance');
        this.#call('set_distance', distances.indexOf(distance));
    }

    setRefusing(refuses) {
        this.#call('set_refusing', Boolean(refuses));
    }

    dropLink() {
        this.#call('drop_link');
    }

    loseLink() {
        this.#call('lose_link');
    }

    remove() {
        this.#call('remove');
    }
}

function colourOf(red, green, blue, alpha) {
    const hex = [red, green, blue].map(component => Math.round(component * 255).toString(16).padStart(2, '0'));
    return Object.freeze({ red, green, blue, alpha, hex: `#${hex.join('')}` });
}

// WebAssembly would take the lowest bits of any number.
function whole(value, most, what) {
    if (Number.isInteger(value) && value >= 0 && value <= most) return value;
    throw new KitError('invalid', invalid, `${what} is ${String(value)}, and no whole number from 0 to ${most}`);
}

function expectOneOf(choices, value, what) {
    if (choices.includes(value)) return;
    throw new KitError('invalid', invalid, `${what} is ${String(value)}, and none of ${choices.join(', ')}`);
}
