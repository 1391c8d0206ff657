// A headless Chromium, spoken to in its DevTools protocol, and a server for what it opens.
import { spawn } from 'node:child_process';
import { mkdtempSync, readFileSync, rmSync } from 'node:fs';
import { createServer } from 'node:http';
import { tmpdir } from 'node:os';
import { basename, extname, join } from 'node:path';

export const pause = milliseconds => new Promise(done => setTimeout(done, milliseconds));

const patience = 1000 * (process.env.PATIENCE ?? 10);  // seconds until what has not come is missed

/** Answers what `look` does, as soon as that is something. */
export async function until(look, what, longest = patience) {
    for (const end = Date.now() + longest; Date.now() < end; await pause(10)) {
        const found = await look();
        if (found) return found;
    }
    throw new Error(`${what} never came`);
}

/** Serves the files of the folders, by their names alone; `?forbidden=FEATURE` to a page without that feature. */
export async function serve(...folders) {
    const types = { '.css': 'text/css', '.html': 'text/html', '.js': 'text/javascript', '.svg': 'image/svg+xml',
        '.wasm': 'application/wasm' };
    const server = createServer((request, response) => {
        const { pathname, searchParams } = new URL(request.url, 'http://page');
        const name = basename(pathname);
        for (const folder of folders) {
            try {
                const text = readFileSync(join(folder, name));
                const forbidden = searchParams.get('forbidden');
                return response.writeHead(200, { 'content-type': types[extname(name)],
                    ...forbidden && { 'permissions-policy': `${forbidden}=()` } }).end(text);
            } catch {}  // not in this one
        }
        response.writeHead(404).end();
    });
    await new Promise(done => server.listen(0, '127.0.0.1', done));
    return { origin: `http://127.0.0.1:${server.address().port}`, close: () => server.close() };
}

export class Browser {
    session;  // of the page that is spoken to; none is the browser's own
    #waiting = new Map();
    #sent = 0;
    #listeners = new Map();

    static launch(...flags) {
        const browser = new Browser();
        browser.folder = mkdtempSync(join(tmpdir(), 'browser-'));
        browser.process = spawn('chromium', ['--headless=new', '--no-sandbox', '--disable-gpu', '--no-first-run',
            '--remote-debugging-pipe', `--user-data-dir=${browser.folder}`, ...flags, 'about:blank'],
            { stdio: ['ignore', 'ignore', 'ignore', 'pipe', 'pipe'] });
        browser.ended = new Promise(done => browser.process.once('exit', done)).then(() => browser.#end());
        browser.process.stdio[3].on('error', () => {});  // it has ended
        let rest = '';
        browser.process.stdio[4].setEncoding('utf8').on('data', text => {
            const messages = (rest + text).split('\0');
            rest = messages.pop();
            for (const message of messages) browser.#received(JSON.parse(message));
        });
        return browser;
    }

    /** From now on all is said to a page of its own at this address. */
    async open(address) {
        const { targetId } = await this.send('Target.createTarget', { url: 'about:blank' }, null);
        this.session = (await this.send('Target.attachToTarget', { targetId, flatten: true }, null)).sessionId;
        await this.send('Page.enable');
        await this.navigate(address);
    }

    async navigate(address) {
        const { errorText } = await this.send('Page.navigate', { url: address });
        if (errorText) throw new Error(`${address}: ${errorText}`);
        await until(() => this.evaluate(`document.readyState === 'complete'`), address);
    }

    on(method, listener) {
        this.#listeners.set(method, listener);
    }

    send(method, params = {}, session = this.session) {
        return new Promise((done, failed) => {
            this.#waiting.set(++this.#sent, { done, failed });
            const message = { id: this.#sent, method, params, sessionId: session ?? undefined };
            this.process.stdio[3].write(`${JSON.stringify(message)}\0`);
        });
    }

    async evaluate(expression) {
        const { result, exceptionDetails } = await this.send('Runtime.evaluate',
            { expression, awaitPromise: true, returnByValue: true });
        if (exceptionDetails) throw new Error(exceptionDetails.exception?.description ?? exceptionDetails.text);
        return result.value;
    }

    /** As a person does: scripts' clicks are no gestures. What has not been drawn yet takes none. */
    async click(selector) {
        await this.evaluate('new Promise(done => requestAnimationFrame(() => requestAnimationFrame(done)))');
        const place = await this.evaluate(`(({ x, y, width, height }) => ({ x: x + width / 2, y: y + height / 2 }))
            (document.querySelector('${selector}').getBoundingClientRect())`);
        const mouse = type => this.send('Input.dispatchMouseEvent', { type, ...place, button: 'left', clickCount: 1 });
        await mouse('mousePressed');
        mouse('mouseReleased').catch(() => {});  // not answered where a chooser has come in between
    }

    /** Opens another tab over the page; `show` brings the page back. */
    async hide() {
        const { targetId } = await this.send('Target.createTarget', { url: 'about:blank' }, null);
        await this.send('Target.activateTarget', { targetId }, null);
        await until(() => this.evaluate('document.hidden'), 'a hidden page');
    }

    async show() {
        await this.send('Page.bringToFront');
    }

    async close() {
        this.send('Browser.close', {}, null).catch(() => {});
        await Promise.race([this.ended, pause(3000)]);
        this.process.kill('SIGKILL');
        await this.ended;
        rmSync(this.folder, { recursive: true, force: true });
    }

    #end() {
        for (const { failed } of this.#waiting.values()) failed(new Error('the browser has ended'));
    }

    #received({ id, method, params, result, error }) {
        if (id === undefined) return this.#listeners.get(method)?.(params);
        const { done, failed } = this.#waiting.get(id);
        this.#waiting.delete(id);
        if (error) failed(new Error(error.message));
        else done(result);
    }
}
