// One round of a host in a page of Chromium with a pen: chosen, colours, lost in each way, found again.
//
//     page.mjs FOLDER INKORA     where web-host.js was built, and the command-line host
import { execFileSync, spawn } from 'node:child_process';
import { writeFileSync } from 'node:fs';
import { createInterface } from 'node:readline';
import { until } from '../../../tests/web/Browser.mjs';
import { HostPage, run } from '../../../tests/web/HostPage.mjs';

const began = Date.now();
const told = [];  // by the pen, since the last link began
const pen = spawn(process.argv[3], ['pen', '--adapter', 'hci1', '--json'], { stdio: ['pipe', 'pipe', 'inherit'] });
createInterface(pen.stdout).on('line', line => told.push(JSON.parse(line)));
const tell = (...lines) => pen.stdin.write(lines.map(line => `${line}\n`).join(''));
const air = command => writeFileSync('/run/air', `${command}\n`);
const power = isOn => execFileSync('dbus-send', ['--system', '--print-reply', '--dest=org.bluez', '/org/bluez/hci0',
    'org.freedesktop.DBus.Properties.Set', 'string:org.bluez.Adapter1', 'string:Powered', `variant:boolean:${isOn}`]);
const hasTold = (event, fields = {}) => until(() => told.find(each => each.event === event &&
    Object.entries(fields).every(([name, value]) => each[name] === value)), event);

/** What the host hears of a new link, which has come about when it has subscribed to colours. */
async function link(page, situation, act, ...wanted) {
    told.length = 0;
    await act();
    await page.expect(situation, ...wanted);
    await hasTold('subscribed', { characteristic: 'colour' });
    console.log(`${((Date.now() - began) / 1000).toFixed(1)} s`);
}

run(async () => {
    await hasTold('advertising');
    tell('#102030');
    const page = await HostPage.launch('--enable-experimental-web-platform-features');
    await page.open();
    await link(page, 'the pen is chosen', () => page.choose(), 'chosen', 'connected', '#102030');

    const colours = Array.from({ length: 500 }, (_, i) => `#${(i * 2654435761 >>> 8).toString(16).padStart(6, '0')}`);
    tell(...colours);
    await page.expect('500 colours come in order', ...colours);
    tell('battery 63');
    await page.evaluate('_battery()');
    await page.expect('the battery is asked for', 'battery 63');

    const last = colours.at(-1);
    await link(page, 'the pen drops the link', () => tell('drop'), 'disconnected', 'connected', last);
    air('range out');
    await page.expect('the pen is out of range', 'disconnected');
    await link(page, 'the pen is back', () => air('range in'), 'connected', last);
    power(false);
    await page.expect('the adapter is switched off', 'disconnected', 'Device is failed to connect. 18');
    power(true);
    await link(page, 'the adapter is back', () => page.evaluate('_pair()'), 'connected', last);
    tell('#a0b0c0');
    await page.expect('and a colour comes', '#a0b0c0');
    await page.evaluate('_stop()');
    await page.expect('the host stops', 'disconnected');
    await hasTold('disconnected');
}, 360);
