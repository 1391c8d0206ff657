// The colours as a list of swatches, the newest first, of which one has the keyboard's place.
import { nameOf } from './colours.js';

// So many at a time: thousands would take longer to lay out than a frame lasts.
const part = 400;

export class Swatches {
    #list;
    #items = new Map();  // by the colour's id
    #place = null;       // the item that Tab goes to: that which had the keyboard last, or the newest
    #visited;            // the item that had the keyboard last
    #most = part;

    /** @param {{chosen: (id: string) => void, removed: (id: string) => void}} told what a person does with one */
    constructor(list, { chosen, removed }) {
        this.#list = list;
        const idOf = event => event.target.closest('li')?.dataset.id;
        list.addEventListener('click', event => idOf(event) && chosen(idOf(event)));
        list.addEventListener('focusin', event => this.#putPlace(this.#visited = event.target));
        list.addEventListener('keydown', event => {
            const id = idOf(event);
            if (!id || event.ctrlKey || event.altKey || event.metaKey) return;
            if (event.key === 'Enter' || event.key === ' ') {
                chosen(id);
            } else if (event.key === 'Delete' || event.key === 'Backspace') {
                (event.target.nextSibling ?? event.target.previousSibling)?.focus();
                removed(id);
            } else if (!this.#move(event.target, event.key)) {
                return;
            }
            event.preventDefault();
        });
    }

    /** Has more of them drawn from now on. */
    showMore() {
        this.#most += part;
    }

    /**
     * Whoever is at a swatch that goes away is at the next one then.
     * @param {string | undefined} chosen the id of the one that is shown large
     * @returns {number} how many, the oldest ones, are left out
     */
    draw(all, chosen) {
        const swatches = all.slice(-this.#most);
        const focused = Array.prototype.indexOf.call(this.#list.children, document.activeElement);
        const here = new Set(swatches.map(({ id }) => id));
        for (const [id, item] of this.#items) {
            if (here.has(id)) continue;
            item.remove();
            this.#items.delete(id);
        }
        let next = this.#list.firstChild;
        for (let i = swatches.length; i-- > 0;) {
            const item = this.#itemOf(swatches[i]);
            if (item === next) next = next.nextSibling;
            else this.#list.insertBefore(item, next);
        }
        this.#list.querySelector('[aria-selected]')?.removeAttribute('aria-selected');
        this.#items.get(chosen)?.setAttribute('aria-selected', 'true');
        if (focused >= 0 && !this.#list.contains(document.activeElement))
            (this.#list.children[focused] ?? this.#list.lastChild)?.focus();
        this.#putPlace(this.#visited?.isConnected ? this.#visited : this.#list.firstChild);
        return all.length - swatches.length;
    }

    #putPlace(item) {
        if (this.#place === item) return;
        if (this.#place) this.#place.tabIndex = -1;
        this.#place = item;
        if (item) item.tabIndex = 0;
    }

    #move(item, key) {
        const all = this.#list.children;
        const at = Array.prototype.indexOf.call(all, item);
        const columns = getComputedStyle(this.#list).gridTemplateColumns.split(' ').length;
        const to = {
            ArrowLeft: at - 1, ArrowRight: at + 1, ArrowUp: at - columns, ArrowDown: at + columns,
            Home: 0, End: all.length - 1,
        }[key];
        if (to === undefined) return false;
        all[to]?.focus();
        return true;
    }

    #itemOf({ id, hex, name, time }) {
        const known = this.#items.get(id);
        if (known) return known;
        const item = document.createElement('li');
        item.dataset.id = id;
        item.setAttribute('role', 'option');
        item.tabIndex = -1;
        const colour = item.appendChild(document.createElement('i'));
        colour.style.background = hex;
        item.appendChild(document.createElement('b')).textContent = hex;
        item.append(' ');
        item.appendChild(document.createElement('span')).textContent = name ?? nameOf(hex);
        if (time) item.title = timeText(time);
        this.#items.set(id, item);
        return item;
    }
}

/** For people; as it is where it is no time. */
export function timeText(time) {
    const date = new Date(time);
    return isNaN(date) ? time : date.toLocaleString([], { dateStyle: 'medium', timeStyle: 'medium' });
}
