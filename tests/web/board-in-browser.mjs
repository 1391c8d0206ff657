// The board in a headless Chromium: by the keyboard alone, with a virtual pen, and with one of a fake
// bluetoothd; what it says when something goes wrong; and what axe finds, where npm can fetch it.
//
//     node board-in-browser.mjs FOLDER INKORA     where the board was built, and the command-line host
import { execFileSync } from 'node:child_process';
import { existsSync, mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { pathToFileURL } from 'node:url';
import { pause, until } from './Browser.mjs';
import { HostPage, check, run, startBluetoothd } from './HostPage.mjs';

const axeVersion = '4.14.1';
const inkora = process.argv[3];
const scratch = mkdtempSync(join(tmpdir(), 'board-'));
let page, browser, bluetoothd, axe;

/** Waits until the page has come to this. */
async function expect(what, expression, wanted = true) {
    let seen;
    await until(async () => (seen = await browser.evaluate(expression)) === wanted, what, 8000).catch(() => {});
    check(what, seen, wanted);
}

const text = id => `document.getElementById('${id}').textContent`;
const shows = (id, words) => `!document.getElementById('${id}').closest('[hidden]') && ${text(id)}.includes('${words}')`;
const said = words => `spoken.some(text => text.includes('${words}'))`;
const focused = id => `document.activeElement.id === '${id}'`;
const listed = `[...document.querySelectorAll('#swatches b')].map(hex => hex.textContent).join()`;
const kept = () => browser.evaluate(`Object.keys(localStorage).filter(key => key.startsWith('inkora-board/')).sort()
    .map(key => JSON.parse(localStorage.getItem(key)))`);

/** Opens the board, with this put in before its own scripts, and all heard that it says. */
async function open(before = '', address = page.server.origin) {
    await browser.open('about:blank');
    await browser.send('Page.addScriptToEvaluateOnNewDocument', { source: `${before};
        const spoken = [], wrong = [];
        addEventListener('error', event => wrong.push(event.message));
        addEventListener('unhandledrejection', event => wrong.push(String(event.reason)));
        addEventListener('securitypolicyviolation', event => wrong.push(event.violatedDirective));
        addEventListener('DOMContentLoaded', () => new MutationObserver(() => spoken.push(said.textContent))
            .observe(said, { childList: true, characterData: true, subtree: true }));` });
    await browser.show();
    await size(1280);
    await load(address);
}

const size = width =>
    browser.send('Emulation.setDeviceMetricsOverride', { width, height: 800, deviceScaleFactor: 1, mobile: false });

async function load(address = page.server.origin) {
    await browser.navigate(`${address}/index.html`);
    await until(() => browser.evaluate('!document.getElementById("try").disabled'), 'the board');
}

const keys = {
    Enter: { code: 'Enter', windowsVirtualKeyCode: 13, text: '\r' }, ' ': { code: 'Space', windowsVirtualKeyCode: 32, text: ' ' },
    Tab: { code: 'Tab', windowsVirtualKeyCode: 9 }, Delete: { code: 'Delete', windowsVirtualKeyCode: 46 },
    ArrowRight: { code: 'ArrowRight', windowsVirtualKeyCode: 39 }, ArrowDown: { code: 'ArrowDown', windowsVirtualKeyCode: 40 },
    Backspace: { code: 'Backspace', windowsVirtualKeyCode: 8 }, End: { code: 'End', windowsVirtualKeyCode: 35 },
};

async function press(key, times = 1) {
    for (let i = 0; i < times; ++i)
        for (const type of ['keyDown', 'keyUp'])
            await browser.send('Input.dispatchKeyEvent', { type, key, ...keys[key] });
}

async function tabTo(id) {
    for (let i = 0; i < 40; ++i) {
        if (await browser.evaluate(`${focused(id)} || document.activeElement.parentElement?.id === '${id}'`)) return;
        await press('Tab');
    }
    throw new Error(`Tab does not lead to ${id}`);
}

/** As a person who sees the button would with a colour picker. */
const capture = (...hexes) => browser.evaluate(`for (const hex of ${JSON.stringify(hexes)}) {
    document.getElementById('paint').value = hex; document.getElementById('capture').click(); }`);

const colours = count => Array.from({ length: count }, (_, i) => `#${((i + 1) * 2654435761 >>> 8).toString(16).padStart(6, '0')}`);

async function byKeyboard() {
    await open();
    const { origin } = page.server;
    await browser.send('Browser.grantPermissions', { origin, permissions: ['clipboardReadWrite', 'clipboardSanitizedWrite'] });
    await tabTo('try');
    await press('Enter');
    await expect('a pen is tried without one', shows('state', 'Connected to the virtual pen'));
    await expect('its battery is said', shows('battery', 'Battery '));
    await expect('the keyboard goes on at what came instead of the button', focused('stop'));
    await expect('it has a colour from the beginning', shows('hex', '#4780EB'));
    await expect('which is told', said('#4780EB, dodgerblue'));
    await tabTo('capture');
    for (const hex of ['#ff8000', '#767676', '#0a0b0c']) {
        await browser.evaluate(`document.getElementById('paint').value = '${hex}'`);
        await press('Enter');
        await expect(`${hex} is captured`, text('hex'), hex.toUpperCase());
    }

    await tabTo('swatches');
    await press('ArrowRight', 2);
    await press('Enter');
    await expect('a colour of the history is copied', 'navigator.clipboard.readText()', '#FF8000');
    await expect('which is said', said('Copied #FF8000'));
    await expect('and it is shown large', `${text('which')} + [...document.querySelectorAll('#name, #rgb, dd')].map(e => e.textContent)`,
        'Chosen colourdarkorange,rgb(255 128 0),8.33 : 1,AAA,2.51 : 1,too low');
    await browser.send('Browser.resetPermissions');
    await browser.send('Browser.setPermission', { permission: { name: 'clipboard-write' }, setting: 'denied', origin });
    await browser.evaluate(`addEventListener('copy', () => { globalThis.selected = String(getSelection()); })`);
    await tabTo('rgb').catch(() => press('Tab'));
    await press('Enter');
    await expect('where the clipboard is refused, a selection is copied', 'globalThis.selected', 'rgb(255 128 0)');
    await browser.send('Browser.resetPermissions');

    await tabTo('swatches');
    await press('Delete');
    await expect('a colour is removed', said('Removed #FF8000'));
    await expect('and the next one has the keyboard', `document.activeElement.textContent`, '#4780EB dodgerblue');
    await tabTo('clear');
    await press('Enter');
    await expect('all are cleared', shows('none', 'There are no colours yet.'));
    await expect('the keyboard is where that can be undone', focused('undo'));
    await press('Enter');
    await expect('which it is', listed, '#0A0B0C,#767676,#4780EB');
    await press('Enter');
    await expect('as is what was removed before, in its place', listed, '#0A0B0C,#767676,#FF8000,#4780EB');
    await expect('and goes on', focused('open'));

    await browser.evaluate(`localStorage.setItem('inkora-board/000000000-x', '{"hex":"#112233","name":{},"time":1}');
        localStorage.setItem('inkora-board/000000000-y', 'null')`);
    await load();
    await expect('colours outlive a reload, whatever else is there', listed, '#0A0B0C,#767676,#FF8000,#4780EB,#112233');
    await tabTo('swatches');
    await press('End');
    await press('Backspace');
    await expect('and can be removed', listed, '#0A0B0C,#767676,#FF8000,#4780EB');
    await browser.evaluate(`localStorage.removeItem('inkora-board/000000000-y')`);
    await tabTo('title');
    await press('End');
    await browser.send('Input.insertText', { text: ' <ö> "x"' });
    await savePalettes();
    await expect('nothing was forbidden or went wrong', 'wrong.join()', '');
}

/** All formats, by the keyboard, have the bytes that the command-line host writes. */
async function savePalettes() {
    await browser.send('Browser.setDownloadBehavior', { behavior: 'allow', downloadPath: scratch, eventsEnabled: true });
    const endings = await browser.evaluate(`[...document.getElementById('format').options].map(option => option.value)`);
    const source = join(scratch, 'source.json');
    writeFileSync(source, JSON.stringify({ title: 'Palette <ö> "x"', colours: await kept() }));
    for (const [place, ending] of endings.entries()) {
        await tabTo('format');
        await press('ArrowDown', place === 0 ? 0 : 1);
        await tabTo('write');
        await press('Enter');
        const wanted = join(scratch, `wanted${ending}`);
        execFileSync(inkora, ['palette', source, wanted]);
        const saved = join(scratch, `Palette -ö- -x-${ending}`);
        const isSame = await until(() => existsSync(saved) && readFileSync(saved).equals(readFileSync(wanted)), saved).catch(() => false);
        check(`a palette is saved as ${ending}, as the tool writes it`, isSame, true);
    }
    await expect('which is said', said('Saved 4 colours as Palette -ö- -x-.html'));
    const opened = async (file, words) => {
        const { root } = await browser.send('DOM.getDocument');
        const { nodeId } = await browser.send('DOM.querySelector', { nodeId: root.nodeId, selector: '#file' });
        await browser.send('DOM.setFileInputFiles', { files: [file], nodeId });
        await expect(`a file is opened: ${words}`, said(words));
    };
    await opened(join(scratch, 'wanted.ase'), 'Opened 4 colours of wanted.ase');
    const broken = join(scratch, 'broken.gpl');
    writeFileSync(broken, 'GIMP Palette\n255 128\n');
    await opened(broken, 'broken.gpl, line 2: it does not start with three numbers');
    await expect('which stays', shows('mishap', 'broken.gpl, line 2'));
    await expect('what is opened adds to the history', shows('count', '8 colours'));
}

/** Nothing is found by axe, and nothing sticks out, in either scheme, on a phone and on a desk. */
async function accessibility(situation) {
    for (const scheme of ['light', 'dark'])
        for (const width of [360, 1280]) {
            await browser.send('Emulation.setEmulatedMedia', { features: [{ name: 'prefers-color-scheme', value: scheme },
                { name: 'prefers-reduced-motion', value: 'reduce' }] });  // what fades is hard to read
            await size(width);
            await browser.evaluate('document.fonts.ready.then(() => new Promise(requestAnimationFrame)).then(() => 0)');
            const found = axe ? JSON.parse(await browser.evaluate(`axe.run().then(({ violations }) => JSON.stringify(violations
                .map(({ id, nodes }) => [id, nodes.length, nodes[0].html, nodes[0].failureSummary])))`)) : [];
            const isWide = await browser.evaluate('document.documentElement.scrollWidth > innerWidth');
            check(`accessible: ${situation}, ${scheme}, ${width} pixels wide`, [found, isWide], [[], false]);
        }
    await size(1280);
}

function fetchedAxe() {
    try {
        execFileSync('npm', ['install', '--silent', '--no-audit', '--no-save', '--prefix', scratch, `axe-core@${axeVersion}`],
            { stdio: 'ignore', timeout: 60000 });
        return readFileSync(join(scratch, 'node_modules/axe-core/axe.min.js'), 'utf8');
    } catch {
        console.log('skip axe: npm cannot fetch it here');
    }
}
async function inBursts() {
    await open();
    await browser.evaluate('localStorage.clear()');
    await load();
    if (axe) await browser.evaluate(`${axe}; 0`);
    await accessibility('empty');
    await browser.click('#try');
    await expect('it is connected', shows('count', '1 colour'));
    await browser.click('#clear');
    await expect('all are cleared', text('count'), 'No colours');
    await browser.evaluate(`spoken.length = 0; globalThis.drawn = 0;
        new MutationObserver(records => { drawn += records.length; }).observe(document.getElementById('hex'), { childList: true })`);
    await capture(...colours(500));
    await expect('a burst of 500 is kept', text('count'), '500 colours');
    await expect('and shown but for the oldest', 'document.querySelectorAll("#swatches li").length', 400);
    await browser.evaluate(`document.querySelector('#swatches').lastChild.focus()`);
    await capture('#000001');
    await expect('who is at one that goes is at the next', `${text('hex')} + (document.activeElement === swatches.lastChild)`, '#000001true');
    await expect('the rest if asked for', `document.getElementById('more').click(), document.querySelectorAll('#swatches li').length`, 501);
    await expect('and told as one', `spoken.some(text => /^\\d{3} colours, the last one #/.test(text))`);
    const [times, drawn] = await browser.evaluate('[spoken.length, drawn]');
    check('in few sentences and frames', times <= 4 && drawn <= 10 || [times, drawn], true);
    await accessibility('501 colours');
    await inTwoTabs();
}

async function inTwoTabs() {
    const one = browser.session;
    await browser.open('about:blank');
    const other = browser.session;
    await browser.show();
    await load();
    await browser.click('#try');
    await expect('another tab has the colours as well', text('count'), '502 colours');
    browser.session = one;
    await capture('#aa0001');
    browser.session = other;
    await capture('#bb0001');
    await expect('and what both capture at once', `${text('count')} + Object.keys(localStorage).length`, '504 colours504');
    await browser.evaluate(`document.getElementById('clear').click()`);
    browser.session = one;
    await browser.show();
    await expect('what one clears is cleared in both', text('count'), 'No colours');
}

async function withASlowServer() {
    await open(`const fetched = fetch; let delay = 700;
        globalThis.fetch = async (...what) => (await new Promise(done => setTimeout(done, delay)), fetched(...what));`);
    await browser.click('#try');
    await browser.click('#stop');
    await pause(1000);
    await expect('who stops while it loads stays without a pen', shows('state', 'No pen is connected.'));
    await browser.evaluate(`globalThis.fetch = () => Promise.reject(new Error('the server is gone'))`);
    for (const again of ['', ' again']) {
        await browser.click('#try');
        await expect(`without a server, a pen is tried${again}`, shows('state', 'Connected to the virtual pen'));
        await browser.click('#stop');
        await expect('and let go', `${shows('state', 'No pen is connected.')} && document.getElementById('problem').hidden`);
    }
    await browser.open(pathToFileURL(join(HostPage.folder, 'index.html')).href);
    await expect('opened as a file, it says what to do', shows('state', 'open it from a server'));
}

/** Where the browser is otherwise: what is said when a pen is asked for. */
const otherBrowsers = origin => [
    ['no Web Bluetooth', `Object.defineProperty(navigator, 'bluetooth', { value: undefined })`, 'chrome://flags/#enable-web-bluetooth'],
    ['no adapter', `navigator.bluetooth.getAvailability = async () => false;
        navigator.bluetooth.requestDevice = async () => { throw new DOMException('Bluetooth adapter not available.', 'NotFoundError'); }`,
    'Plug an adapter in'],
    ['a policy forbids it', `document.featurePolicy.allowsFeature = () => false;
        navigator.bluetooth.getAvailability = async () => false;
        navigator.bluetooth.requestDevice = async () => { throw new DOMException('disallowed by policy', 'SecurityError'); }`,
    'by the policy of the site'],
    ['nothing is secure', '', 'open this one over https', origin.replace('127.0.0.1', 'board.test')],
];

async function inOtherBrowsers() {
    for (const [what, before, words, address] of otherBrowsers(page.server.origin)) {
        await open(before, address);
        await browser.click('#pair');
        await expect(`${what}: it is said what to do`, `${shows('problem', words)} && ${said(words)}`);
    }
    if (axe) await browser.evaluate(`${axe}; 0`);
    await accessibility('a problem');
    await browser.click('#try');
    await expect('the board can be tried all the same', shows('state', 'Connected to the virtual pen'));

    await open(`Object.defineProperty(window, 'localStorage', { get() { throw new DOMException('no', 'SecurityError'); } })`);
    await browser.click('#try');
    await expect('without storage it works', shows('count', '1 colour'));
    await expect('and says that it keeps nothing', shows('kept', 'does not keep'));
}

const notify = hex => `notify 1f14 01${hex}`;

async function withAPen() {
    await open();
    await browser.evaluate('localStorage.clear()');
    await load();
    await page.answerChoosers();
    page.isChoosing = false;
    await browser.click('#pair');
    await expect('the chooser is dismissed', shows('problem', 'No pen was chosen.'));
    page.isChoosing = true;
    await browser.click('#pair');
    await expect('a pen is chosen and connected', text('link'), 'Connected to InkoraPen 7. Battery 64 %.');
    await expect('nothing is wrong any more', `document.getElementById('problem').hidden`);
    await expect('its last colour comes', text('hex'), '#102030');
    await bluetoothd.called('subscribe 1f17');
    bluetoothd.tell(...colours(500).map(hex => notify(hex.slice(1))));
    await expect('and 500 more', text('count'), '501 colours');
    bluetoothd.tell(notify('111111'), notify('222222'));
    await expect('and two', text('hex'), '#222222');
    await browser.click('#remove');
    await expect('of which one is removed', text('hex'), '#111111');
    bluetoothd.tell(notify('111111'));
    await expect('one like the last that is left is captured', text('count'), '503 colours');
    await browser.click('#remove');
    bluetoothd.tell('read 1f14 0111111140', 'read 1f17 09', 'refuse 1', 'lose');
    await expect('it is lost', shows('state', 'Lost InkoraPen 7. Looking for it'));
    await expect('which is told', said('Lost InkoraPen 7'));
    await pause(3000);
    await expect('it is looked for even when an attempt has failed', shows('state', 'Lost InkoraPen 7.'));
    bluetoothd.tell('refuse 0');
    await expect('and connected again', text('link'), 'Connected to InkoraPen 7. Battery 9 %, charge it soon.');
    await expect('with a low battery, which is told', said('battery is low'));
    await bluetoothd.called('subscribe 1f17');
    await load();
    await expect('after a reload it is found without a click', shows('state', 'Connected to InkoraPen 7.'));
    await bluetoothd.called('subscribe 1f17');
    await expect('what it told before and was removed does not come back', text('count'), '502 colours');
    bluetoothd.tell('notify 1f14 0102');
    await expect('what no pen sends is explained', shows('problem', 'The pen has sent what no pen sends'));
    await expect('the colours are there', text('count'), '502 colours');
    await browser.click('#again');
    await expect('and it starts anew', shows('state', 'Connected to InkoraPen 7.'));
    await browser.click('#stop');
    await expect('the pen is let go', shows('state', 'No pen is connected.'));
    await load();
    await pause(1000);
    await expect('and stays so', shows('state', 'No pen is connected.'));
    bluetoothd.tell('services 0');
    await browser.click('#pair');
    await expect('one that does not answer is not taken for a pen', shows('state', 'Connected, reading the pen…'));
    await expect('which is explained', shows('problem', 'does not answer'));
}

await run(async () => {
    bluetoothd = await startBluetoothd();
    page = await HostPage.launch('--enable-experimental-web-platform-features', '--host-resolver-rules=MAP board.test 127.0.0.1');
    browser = page.browser;
    axe = fetchedAxe();
    try {
        await byKeyboard();
        await inBursts();
        await inOtherBrowsers();
        await withASlowServer();
        await withAPen();
    } finally {
        rmSync(scratch, { recursive: true, force: true });
    }
}, 180);
