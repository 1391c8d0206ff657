// One round of a host in a page of Chromium with a pen: chosen, colours, lost in each way, found again.
//
//     page.mjs FOLDER INKORA     where web-host.js was built, and the command-line host
import { execFileSync, spawn } from 'node:child_process';
import { writeFileSync } from 'node:fs';
import { createInterface } from 'node:readline';
import { pause, until } from '../../../tests/web/Browser.mjs';
import { HostPage, run } from '../../../tests/web/HostPage.mjs';

const began = Date.now();
const told = [];  // by the pen
const pen = spawn(process.argv[3], ['pen', '--adapter', 'hci1', '--json'], { stdio: ['pipe', 'pipe', 'inherit'] });
createInterface(pen.stdout).on('line', line => told.push(JSON.parse(line)));
const tell = (...lines) => pen.stdin.write(lines.map(line => `${line}\n`).join(''));
const air = command => writeFileSync('/run/air', `${command}\n`);
const power = isOn => execFileSync('dbus-send', ['--system', '--print-reply', '--dest=org.bluez', '/org/bluez/hci0',
    'org.freedesktop.DBus.Properties.Set', 'string:org.bluez.Adapter1', 'string:Powered', `variant:boolean:${isOn}`]);
const hasTold = event => until(() => told.find(each => each.event === event), event);

let colour = '#102030';  // the one captured last

/** What the host hears of a new link, and a colour once it has subscribed, which only itself can tell. */
async function link(page, situation, act, ...wanted) {
    await act();
    await page.expect(situation, ...wanted, colour);
    await until(async () => {
        tell(colour = `#${(Date.now() & 0xffffff).toString(16).padStart(6, '0')}`);
        await pause(1000);
        return page.evaluate(`seen.at(-1) === '${colour}' && seen.splice(0)`);
    }, 'a colour');
    console.log(`${((Date.now() - began) / 1000).toFixed(1)} s`);
}

process.on('exit', status => status && console.log('--- the pen:', JSON.stringify(told)));
run(async () => {
    await hasTold('advertising');
    tell(colour);
    const page = await HostPage.launch('--enable-experimental-web-platform-features');
    await page.open();
    await link(page, 'the pen is chosen', () => page.choose(), 'chosen', 'connected');

    const colours = Array.from({ length: 500 }, (_, i) => `#${(i * 2654435761 >>> 8).toString(16).padStart(6, '0')}`);
    tell(...colours);
    await page.expect('500 colours come in order', ...colours);
    colour = colours.at(-1);
    tell('battery 63');
    await page.evaluate('_battery()');
    await page.expect('the battery is asked for', 'battery 63');

    await link(page, 'the pen drops the link', () => tell('drop'), 'disconnected', 'connected');
    air('range out');
    await page.expect('the pen is out of range', 'disconnected');
    await link(page, 'the pen is back', () => air('range in'), 'connected');
    power(false);
    await page.expect('the adapter is switched off', 'disconnected', 'Device is failed to connect. 18');
    power(true);
    await link(page, 'the adapter is back', () => page.evaluate('_pair()'), 'connected');
    told.length = 0;
    await page.evaluate('_stop()');
    await page.expect('the host stops', 'disconnected');
    await hasTold('disconnected');
}, 360);
