// What is said: to screen readers, in the page's one live region, all of it; to everybody what was done.

const pause = 1500;      // milliseconds between colours that are told
const shownFor = 2500;

export class Announcements {
    #output;
    #toast;
    #waiting = 0;   // colours that were not told yet
    #last = '';
    #timer;

    constructor(output, toast) {
        this.#output = output;
        this.#toast = toast;
    }

    /** Says at once what was done, or cannot be. */
    say(text) {
        this.#put(text, true);
    }

    /** Says at once what the page shows elsewhere, to those who do not see it. */
    tell(text) {
        this.#put(text, false);
    }

    /** Tells of a colour, or of many in one sentence: nobody could listen to each of a burst. */
    tellColour(text) {
        ++this.#waiting;
        this.#last = text;
        if (this.#timer === undefined) this.#tellWaiting();
    }

    #tellWaiting() {
        const text = this.#waiting === 1 ? this.#last : `${this.#waiting} colours, the last one ${this.#last}`;
        this.#waiting = 0;
        this.#put(text, false);
    }

    #put(text, isShown) {
        this.#output.textContent = text;
        if (isShown) this.#toast.textContent = text;
        this.#toast.classList.toggle('shown', isShown);
        clearTimeout(this.#timer);
        this.#timer = setTimeout(() => {
            this.#timer = undefined;
            this.#toast.classList.remove('shown');
            if (this.#waiting) this.#tellWaiting();
        }, isShown ? shownFor : pause);
    }
}
