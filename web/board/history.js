// The colours that were captured, kept in the browser's storage for the page where that is allowed: each
// under a key of its own, so that tabs add and remove side by side, and none writes over another's.

const prefix = 'inkora-board/';

/** @typedef {{id: string, hex: string, time: string, name?: string}} Swatch
 *  id by which they are in order; hex as "#FF8000"; time in UTC (RFC 3339), or ""; name undefined for that
 *  of the nearest web colour */

export class History {
    /** Of more the oldest go: browsers keep a few megabytes for a page. */
    static most = 10000;

    /** Whether the colours outlive the page. */
    isKept = true;
    #all = new Map();      // by their ids
    #inOrder;              // the same, once somebody has asked
    #unsaved = new Map();  // of these, what the storage has refused so far
    #removals = [];        // each what one `remove` has taken
    #lastInstant = 0;
    #tab = Math.random().toString(36).slice(2, 8);  // apart from what other tabs add in the same instant
    #told;

    /** @param {() => void} changed is called after each change, and when the storage was refused */
    constructor(changed) {
        this.#told = changed;
        try {
            for (const key of Object.keys(localStorage)) this.#take(key, localStorage.getItem(key));
        } catch {
            this.isKept = false;
        }
        // Another tab has changed them.
        addEventListener('storage', ({ key, newValue }) => {
            if (key === null) this.#all = new Map(this.#unsaved);
            else if (newValue === null) this.#all.delete(key.slice(prefix.length));
            else this.#take(key, newValue);
            this.#change();
        });
    }

    /** @returns {Swatch[]} the oldest first */
    get swatches() {
        return this.#inOrder ??= [...this.#all.values()].sort((a, b) => a.id < b.id ? -1 : 1);
    }

    /** How many more can be added before the oldest go. */
    get room() {
        return Math.max(0, History.most - this.#all.size);
    }

    add(...colours) {
        this.#put(colours.map(({ hex, time = new Date().toISOString(), name }) => ({ id: this.#nextId(), hex, time, name })));
    }

    /** Removes those of these ids, for `undo` to bring them back; answers which there were. */
    remove(...ids) {
        const removed = ids.filter(id => this.#all.has(id)).map(id => this.#all.get(id));
        if (removed.length > 0) this.#removals.push(removed);
        this.#drop(removed);
        return removed;
    }

    /** Whether there is a removal to undo. */
    get canUndo() {
        return this.#removals.length > 0;
    }

    /** Brings back what the last removal has taken, each to its place; answers how many. */
    undo() {
        const before = this.#all.size;
        this.#put(this.#removals.pop() ?? []);
        return this.#all.size - before;
    }

    #put(swatches) {
        for (const swatch of swatches) {
            this.#all.set(swatch.id, swatch);
            this.#unsaved.set(swatch.id, swatch);
        }
        this.#inOrder = undefined;
        this.#drop(this.swatches.slice(0, Math.max(0, this.#all.size - History.most)));
    }

    #drop(swatches) {
        for (const { id } of swatches) {
            this.#all.delete(id);
            this.#unsaved.delete(id);
            try {
                localStorage.removeItem(prefix + id);
            } catch {}  // then it is not there
        }
        this.#change();
    }

    #change() {
        this.#inOrder = undefined;
        this.#save();
        this.#told();
    }

    // What is refused is tried anew with each change: room may have come.
    #save() {
        if (this.#unsaved.size === 0) return;
        try {
            for (const [id, { hex, time, name }] of this.#unsaved) {
                localStorage.setItem(prefix + id, JSON.stringify({ hex, time, name }));
                this.#unsaved.delete(id);
            }
            this.isKept = true;
        } catch {
            this.isKept = false;
        }
    }

    // Others may have written there as well.
    #take(key, text) {
        const [, id, instant] = /^inkora-board\/(([0-9a-z]{9})-[0-9a-z]+)$/.exec(key) ?? [];
        if (!id) return;
        try {
            const { hex, time, name } = JSON.parse(text);
            if (!/^#[0-9A-F]{6}$/.test(hex)) return;
            this.#all.set(id, { id, hex, time: textOr(time, ''), name: textOr(name) });
            this.#lastInstant = Math.max(this.#lastInstant, parseInt(instant, 36));
        } catch {}  // no JSON, or null
    }

    // In order even when the clock is put back.
    #nextId() {
        this.#lastInstant = Math.max(this.#lastInstant + 1, Date.now());
        return `${this.#lastInstant.toString(36).padStart(9, '0')}-${this.#tab}`;
    }
}

const textOr = (value, otherwise) => typeof value === 'string' ? value : otherwise;
