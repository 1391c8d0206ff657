// A host in a page, linked to a pen by Web Bluetooth, in a headless Chromium whose bluetoothd is a fake.
//
//     node page-in-browser.mjs FOLDER     where web-host.js was built
import { spawn } from 'node:child_process';
import { mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { dirname, join } from 'node:path';
import { createInterface } from 'node:readline';
import { fileURLToPath } from 'node:url';
import { Browser, pause, serve, until } from './Browser.mjs';

const here = dirname(fileURLToPath(import.meta.url));
const folder = mkdtempSync(join(tmpdir(), 'pen-in-page-'));
writeFileSync(join(folder, 'bus.conf'), `<busconfig><listen>unix:dir=${folder}</listen><auth>EXTERNAL</auth>
<policy context="default"><allow own="*"/><allow send_destination="*"/><allow eavesdrop="true"/></policy></busconfig>`);
const bus = spawn('dbus-daemon', [`--config-file=${join(folder, 'bus.conf')}`, '--nofork', '--print-address=1'],
    { stdio: ['ignore', 'pipe', 'ignore'] });
const address = `${await new Promise(done => bus.stdout.once('data', done))}`.trim();
const bluetoothd = spawn(join(here, 'fake-bluetoothd'), { env: { ...process.env, BUS: address }, stdio: ['pipe', 'pipe', 'inherit'] });
const calls = [];
createInterface(bluetoothd.stdout).on('line', line => calls.push(line));
const pen = (...lines) => bluetoothd.stdin.write(lines.map(line => `${line}\n`).join(''));
await until(() => calls.includes('ready'), 'the fake bluetoothd');

process.env.DBUS_SYSTEM_BUS_ADDRESS = address;  // what the browser takes for the system's
const server = await serve(here, process.argv[2]);
const browser = Browser.launch('--enable-experimental-web-platform-features');

let isChoosing = true;
let faults = 0;
setTimeout(() => {  // nothing is left behind, whatever happens
    console.log('FAIL it takes too long', calls);
    browser.process.kill('SIGKILL');
    bluetoothd.kill();
    bus.kill();
    process.exit(1);
}, 120000).unref();

/** What the host has heard up to the last of these lines is to be just these. */
async function expect(situation, ...wanted) {
    const heard = await until(() => browser.evaluate(`seen.length >= ${wanted.length} && seen.splice(0)`), situation)
        .catch(() => browser.evaluate('seen.splice(0)'));
    const isRight = JSON.stringify(heard) === JSON.stringify(wanted);
    faults += !isRight;
    console.log(isRight ? 'ok  ' : 'FAIL', situation,
        ...isRight ? [] : [`\n  heard  ${JSON.stringify(heard).slice(0, 600)}\n  wanted ${JSON.stringify(wanted).slice(0, 600)}`]);
}

async function open(file = 'page.html') {
    await browser.open(`${server.origin}/${file}`);
    await browser.send('DeviceAccess.enable');
    browser.on('DeviceAccess.deviceRequestPrompted', ({ id, devices }) => {
        if (!isChoosing) return browser.send('DeviceAccess.cancelPrompt', { id }).catch(() => {});
        const [device] = devices;
        if (device) browser.send('DeviceAccess.selectPrompt', { id, deviceId: device.id }).catch(() => {});
    });
    await expect('the page runs under its policy', 'ready');
}

const colours = Array.from({ length: 500 }, (_, i) => (i * 2654435761 >>> 8).toString(16).padStart(6, '0'));
const notify = hex => `notify 1f14 01${hex}`;

try {
    await open();

    isChoosing = false;
    await browser.click('#choose');
    await expect('the chooser is dismissed', 'User cancelled the requestDevice() chooser.');

    isChoosing = true;
    await browser.click('#choose');
    await expect('a pen is chosen', 'chosen', 'connected', '#102030');
    pen(...colours.map(notify));
    await expect('500 colours come in order', ...colours.map(hex => `#${hex}`));
    pen(notify('010203'), notify('010203'), notify('040506'), notify('010203'));
    await expect('equal colours in a row are one', '#010203', '#040506', '#010203');

    await browser.evaluate('_battery()');
    await expect('the battery is asked for', 'battery 64');
    await browser.evaluate('_info()');
    const [info] = await browser.evaluate('seen');
    await expect('the pen has a name and an identifier', /^InkoraPen 7 [0-9A-F-]{36}$/.test(info) && info);
    pen(notify('0a0b0c'), notify('0d0e0f'));
    await browser.evaluate('_battery(), _proximity()');
    pen(notify('a0b0c0'));
    await until(() => browser.evaluate(`seen.length >= 4 && seen.sort()`), 'values');
    await expect('a read between notifications loses none of them', '#0a0b0c', '#0d0e0f', '#a0b0c0', 'battery 64');

    pen('lose');
    await expect('without a reading the proximity asked for is that of the next scan, which is unknown',
        'disconnected', 'proximity 127', 'connected', '#102030');
    for (let round = 0; round < 10; ++round) {
        // A browser that waits for a subscription may not tell of the link's end.
        await until(() => calls.at(-1) === 'subscribe 1f17', 'the last subscription');
        pen('lose');
        await expect('the pen is lost and found again', 'disconnected', 'connected', '#102030');
        pen(notify(colours[round]));
        await expect('and heard', `#${colours[round]}`);
    }
    await browser.evaluate('_info()');
    await expect('as the same pen', info);

    await until(() => calls.at(-1) === 'subscribe 1f17', 'the last subscription');
    pen('refuse 1', 'lose');
    await expect('a pen that refuses every attempt is given up', 'disconnected', 'Device is failed to connect. 18');
    pen('refuse 0');
    await browser.evaluate('_pair()');
    await expect('and is found by the next pairing', 'connected', '#102030');
    await until(() => calls.at(-1) === 'subscribe 1f17', 'the last subscription');
    pen('services 0', 'lose');
    await expect('a pen without its service is connected all the same', 'disconnected', 'connected');
    pen('services 1', 'lose');
    await expect('until it has it', 'disconnected', 'connected', '#102030');

    await browser.hide();
    pen(...colours.map(notify));
    await expect('a hidden page loses no colour', ...colours.map(hex => `#${hex}`));
    await browser.show();

    calls.length = 0;
    await browser.navigate(`${server.origin}/page.html`);
    await until(() => calls.includes('disconnect'), 'the end of the link of a page that is reloaded');
    await expect('the page is loaded anew', 'ready');
    await browser.evaluate('_pair()');
    await expect('and finds the pen that it was allowed before', 'connected', '#102030');
    await browser.evaluate('_stop()');
    await expect('the host stops', 'disconnected');
} catch (error) {
    ++faults;
    console.log('FAIL', error, calls);
} finally {
    await browser.close();
    server.close();
    bluetoothd.stdin.end();
    bus.kill();
    rmSync(folder, { recursive: true, force: true });
    process.exit(faults ? 1 : 0);
}
