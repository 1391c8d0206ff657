// The package for pages as those have it who install it: its types, and what it does in node, in a page as
// it is, in a bundle, and with a pen in a headless Chromium whose bluetoothd is a fake.
//
//     node package-in-browser.mjs TARBALL
import { execFileSync } from 'node:child_process';
import { cpSync, mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join, resolve } from 'node:path';
import { fileURLToPath } from 'node:url';
import { until } from './Browser.mjs';
import { HostPage, check, run, startBluetoothd } from './HostPage.mjs';

const ours = fileURLToPath(new URL('package', import.meta.url));
const folder = mkdtempSync(join(tmpdir(), 'package-in-page-'));
const call = (program, ...values) =>
    `${execFileSync(program, values, { cwd: folder, timeout: 60000, stdio: ['ignore', 'pipe', 'inherit'] })}`;
const write = (name, text) => writeFileSync(join(folder, name), text);
const readme = readFileSync(new URL('../../bindings/web/README.md', import.meta.url), 'utf8');
const example = (language, beginning) => readme.split(`\n\`\`\`${language}\n`).slice(1)
    .map(text => text.split('\n```')[0]).find(text => text.startsWith(beginning));
const transcript = readFileSync(join(ours, 'virtual.txt'), 'utf8').trimEnd().split('\n');

/** Installs the package, and compiles for it what a developer would write. */
function install() {
    cpSync(ours, folder, { recursive: true });
    write('package.json', '{ "type": "module", "private": true }');
    call('npm', 'install', '--offline', '--silent', '--no-audit', '--no-fund', resolve(process.argv[2]));
    call('tsc', '--strict', '--target', 'es2022', '--module', 'es2022', '--moduleResolution', 'node', 'consumer.ts');
    console.log('ok  ', 'a consumer compiles, and what must not does not');
}

/** The same page twice: with modules as they are, and with all in one. */
function makePages() {
    const page = (module, options) => `import * as inkorakit from '${module}';
        import * as consumer from './consumer.js';
        ${options}
        Object.assign(globalThis, { inkorakit, consumer, options });
        seen.push('ready');`;
    cpSync(join(folder, 'node_modules/inkorakit'), folder, { recursive: true, filter: name => !name.endsWith('.json') });
    write('plain.js', page('./inkorakit.js', 'const options = {};'));
    write('bundled.js', page('inkorakit', "import wasm from 'inkorakit/inkorakit.wasm'; const options = { wasm };"));
    call('esbuild', 'bundled.js', '--bundle', '--format=esm', '--loader:.wasm=file', '--outdir=bundle', '--log-level=warning');
    cpSync(join(folder, 'bundle'), folder, { recursive: true, force: true });
    write('bundled.html', readFileSync(join(folder, 'plain.html'), 'utf8').replace('plain.js', 'bundled.js'));
}

function inNode() {
    write('in-node.js', `import * as inkorakit from 'inkorakit';
        import { tryVirtual } from './consumer.js';
        process.on('uncaughtException', ({ message }) => message === 'of a listener' || process.exit(1));
        console.log((await tryVirtual(inkorakit, {})).join('\\n'));`);
    write('readme.js', example('js', 'import assert'));
    check("the README's test passes", call('node', 'readme.js'), '');
    check('a virtual pen in node, which ends when the kits are closed', call('node', 'in-node.js').trimEnd().split('\n'), transcript);
}

async function inPages(page) {
    for (const file of ['plain.html', 'bundled.html']) {
        await page.open(file);
        check(`a virtual pen in ${file}`, await page.evaluate('consumer.tryVirtual(inkorakit, options)'), transcript);
        await page.expect('nothing else is wrong in it', 'error Uncaught Error: of a listener');
    }
}

async function withBluetooth(page, pen) {
    const begin = async () => {
        await page.evaluate('consumer.begin(inkorakit, options)');
        await page.expect('a kit is loaded', 'ready');
    };
    await page.open('plain.html');
    await begin();
    page.isChoosing = false;
    await page.choose();
    await page.expect('the chooser is dismissed', 'pair: not-chosen 0 User cancelled the requestDevice() chooser.');
    page.isChoosing = true;
    const isOpen = new Promise(done => page.browser.on('DeviceAccess.deviceRequestPrompted', done));
    await page.choose();
    await isOpen;
    await page.evaluate('kit.stop()');
    await page.expect('the chooser is left open', 'pair: stopped 0 the kit was stopped');
    await page.answerChoosers();
    await page.choose();
    await page.expect('a pen is chosen in the next,', 'pair: not refused', 'connected connected', '#102030');
    await page.choose();
    await page.expect('there is a pen', 'pair: already-done -4 there is a pen; stop first');
    pen.tell('notify 1f14 01aabbcc', 'notify 1f14 01aabbcc', 'notify 1f14 01000001');
    await page.expect('colours', '#aabbcc', '#000001');
    check('the battery is asked for', await page.evaluate('kit.battery()'), 64);
    await page.expect('and told', 'battery 64');
    await pen.called('subscribe 1f17');
    await page.evaluate('kit.stop()');
    await page.expect('the link is ended', 'disconnected');
    await page.evaluate('kit.resume()');
    await page.expect('and made again without the chooser', 'connected connected', '#102030');

    await pen.called('subscribe 1f17');
    await page.evaluate('void (globalThis.waiting = consumer.refused(() => kit.proximity()))');
    pen.tell('notify 1f14 0102', 'notify 1f14 01ffffff');
    await page.expect('odd bytes stop the kit', 'fatal: fatal 0 Index out of range');
    await pen.called('disconnect');
    check('for good', await page.evaluate(`Promise.all([waiting, ...['info', 'battery', 'pair', 'close'].map(name =>
        consumer.refused(() => kit[name]())), kit.state])`), [...Array(4).fill('fatal 0 Index out of range'), 'not refused', 'none']);
    await page.evaluate(`Object.assign(navigator.bluetooth, { onavailabilitychanged: null,
        addEventListener: (event, look, { signal }) => void (globalThis.listening = signal) })`);
    await begin();
    await page.choose();
    await page.expect('another kit has the pen', 'pair: not refused', 'connected connected', '#102030');
    await page.evaluate('kit.close()');
    await page.expect('until it is closed', 'disconnected');
    check('and no longer listens', await page.evaluate('listening.aborted'), true);

    write('readme.html', example('html', '<!DOCTYPE html>'));
    await page.browser.navigate(`${page.server.origin}/readme.html`);
    await until(() => page.evaluate('document.querySelector("button").onclick !== null'), "the README's page");
    await page.browser.click('button');
    await until(() => page.evaluate('document.body.style.background === "rgb(16, 32, 48)"'), 'its colour');
    console.log('ok  ', "the README's page shows what the pen captured");

    await page.open('plain.html');
    await page.evaluate('Object.defineProperty(navigator, "bluetooth", { value: undefined })');
    await begin();
    await page.choose();
    await page.expect('a browser without Bluetooth', 'unavailable: unavailable 17 Bluetooth setting is disabled.',
        'pair: unavailable 17 Bluetooth setting is disabled.');
    check('says why', await page.evaluate('kit.reason'), 'There is no Bluetooth service, or it does not answer.');
}

await run(async () => {
    try {
        install();
        makePages();
        inNode();
        HostPage.folder = folder;
        const pen = await startBluetoothd();
        const page = await HostPage.launch('--enable-experimental-web-platform-features');
        await inPages(page);
        await withBluetooth(page, pen);
    } finally {
        rmSync(folder, { recursive: true, force: true });
    }
});
