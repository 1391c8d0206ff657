// The colours that were captured, kept in the browser's storage for the page where that is allowed.

const key = 'inkora-board';
const savingPause = 300;  // milliseconds

/** @typedef {{id: number, hex: string, time: string, name?: string}} Swatch
 *  hex as "#FF8000"; time in UTC (RFC 3339), or ""; name undefined for that of the nearest web colour */

export class History {
    /** Of more the oldest go: browsers keep a few megabytes for a page. */
    static most = 10000;

    /** @type {Swatch[]} The oldest first. */
    swatches = [];
    /** Whether the colours outlive the page. */
    isKept = true;
    #removed = [];
    #lastId = 0;
    #changed;
    #saving;

    /** @param {() => void} changed is called after each change, and when the storage was refused */
    constructor(changed) {
        this.#changed = changed;
        this.#load();
        addEventListener('pagehide', () => this.#save());
        // Another tab has changed them.
        addEventListener('storage', event => {
            if (event.key !== key && event.key !== null) return;
            this.#load();
            changed();
        });
    }

    add({ hex, time = new Date().toISOString(), name }) {
        this.swatches.push({ id: ++this.#lastId, hex, time, name });
        if (this.swatches.length > History.most) this.swatches.splice(0, this.swatches.length - History.most);
        this.#keep();
    }

    /** Removes those of these ids, for `undo` to bring them back. */
    remove(...ids) {
        const gone = new Set(ids);
        this.#removed = this.swatches.filter(({ id }) => gone.has(id));
        this.swatches = this.swatches.filter(({ id }) => !gone.has(id));
        this.#keep();
    }

    /** How many `undo` would bring back. */
    get removedCount() {
        return this.#removed.length;
    }

    undo() {
        this.swatches = [...this.swatches, ...this.#removed.splice(0)].sort((a, b) => a.id - b.id);
        this.#keep();
    }

    #load() {
        clearTimeout(this.#saving);
        this.#saving = undefined;
        try {
            const kept = JSON.parse(localStorage.getItem(key) ?? '[]');
            this.swatches = kept.filter(({ hex }) => /^#[0-9A-F]{6}$/.test(hex))
                .map(({ hex, time, name }) => ({ id: ++this.#lastId, hex, time: String(time), name }));
        } catch (error) {
            this.isKept = error instanceof SyntaxError || error instanceof TypeError;  // what is kept is not ours
        }
    }

    #keep() {
        this.#changed();
        this.#saving ??= setTimeout(() => this.#save(), savingPause);
    }

    #save() {
        if (this.#saving === undefined) return;
        clearTimeout(this.#saving);
        this.#saving = undefined;
        const wasKept = this.isKept;
        try {
            localStorage.setItem(key, JSON.stringify(this.swatches.map(({ hex, time, name }) => ({ hex, time, name }))));
            this.isKept = true;
        } catch {
            this.isKept = false;
        }
        if (this.isKept !== wasKept) this.#changed();
    }
}
