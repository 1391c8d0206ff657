// A host in a page, linked to a pen by Web Bluetooth, in a headless Chromium whose bluetoothd is a fake.
//
//     node page-in-browser.mjs FOLDER     where web-host.js was built
import { pause, until } from './Browser.mjs';
import { check, HostPage, run, startBluetoothd } from './HostPage.mjs';

const colours = Array.from({ length: 500 }, (_, i) => (i * 2654435761 >>> 8).toString(16).padStart(6, '0'));
const notify = hex => `notify 1f14 01${hex}`;
const lose = () => pen.tell('lose');
const pair = () => page.evaluate('_pair()');
// What a page whose channel to its Bluetooth has ended sees of it.
const silent = `void (BluetoothRemoteGATTCharacteristic.prototype.readValue = BluetoothRemoteGATTServer.prototype.connect =
    Bluetooth.prototype.getAvailability = () => new Promise(() => {}))`;
let pen, page;

/** What is heard of a new link, which has come about when the host has subscribed to all. */
async function link(situation, act, ...wanted) {
    pen.calls.length = 0;
    await act();
    await page.expect(situation, ...wanted);
    await pen.called('subscribe 1f17');
}

async function choice() {
    page.isChoosing = false;
    await page.choose();
    await page.expect('the chooser is dismissed', 'User cancelled the requestDevice() chooser.');
    page.isChoosing = true;
    await page.choose('#allow');
    await page.expect('a pen is chosen', 'chosen');
    await pause(100);
    await page.expect('which is not to connect it');
    await link('it is paired', pair, 'connected', '#102030');
}

async function values() {
    pen.tell(...colours.map(notify));
    await page.expect('500 colours come in order', ...colours.map(hex => `#${hex}`));
    pen.tell(notify('010203'), notify('010203'), notify('040506'), notify('010203'));
    await page.expect('equal colours in a row are one', '#010203', '#040506', '#010203');
    pen.tell(notify('0a0b0c'), notify('0d0e0f'));
    await page.evaluate('_battery()');
    pen.tell(notify('a0b0c0'));
    check('a read between notifications loses none of them', (await page.heard(4, 'values')).sort(),
        ['#0a0b0c', '#0d0e0f', '#a0b0c0', 'battery 64']);
    pen.tell('notify 1f14 01111213ffff', 'notify 1f14 011516');
    await page.expect('a colour of too many bytes or too few is told', '#111213', '#151600');
    for (const [bytes, level] of [['0140', '320'], ['7fffffffffffffff', '9223372036854775807'], ['40', '64']]) {
        pen.tell(`read 1f17 ${bytes}`);
        await page.evaluate('_battery()');
        await page.expect('a battery level has as many bytes as it has', `battery ${level}`);
    }
}

async function losses() {
    await page.evaluate('_info()');
    const [info] = await page.heard(1, 'information');
    check('the pen has a name and an identifier', /^InkoraPen 7 [0-9A-F-]{36}$/.test(info), true);
    await page.evaluate('_proximity()');
    await link('without a reading the proximity asked for is that of the next scan, which is unknown', lose,
        'disconnected', 'proximity 127', 'connected', '#102030');
    for (let round = 0; round < 10; ++round) {
        await link('the pen is lost and found again', lose, 'disconnected', 'connected', '#102030');
        pen.tell(notify(colours[round]));
        await page.expect('and heard', `#${colours[round]}`);
    }
    await page.evaluate('_info()');
    await page.expect('as the same pen', info);
}

async function refusals() {
    pen.tell('refuse 1', 'lose');
    await page.expect('a pen that refuses every attempt is given up', 'disconnected', 'Device is failed to connect. 18');
    pen.tell('refuse 0');
    await link('and is found by the next pairing', pair, 'connected', '#102030');
    pen.tell('services 0', 'lose');
    await page.expect('a pen without its service is connected all the same', 'disconnected', 'connected');
    await link('until it has it', () => pen.tell('services 1', 'lose'), 'disconnected', 'connected', '#102030');
}

async function adapterOff() {
    pen.tell('powered 0', 'lose');
    await page.expect('without an adapter the link cannot come back', 'disconnected', 'Device is failed to connect. 18');
    pen.tell('powered 1');
    await link('it can with one', pair, 'connected', '#102030');
}

// What is under way when a link ends, or is given up.
async function interruptions() {
    pen.tell('hold subscribe', 'lose');
    await page.expect('the pen is found again', 'disconnected', 'connected', '#102030');
    await pen.called('subscribe 1f14');
    pen.tell('lose', 'answer');
    await link('the pen is lost while it is asked for its colours', () => {}, 'disconnected', 'connected', '#102030');
    pen.tell('hold read', 'lose');
    await page.expect('the pen is found again', 'disconnected', 'connected');
    await pen.called('read 1f14');
    pen.tell('lose', 'answer');
    await link('the pen is lost while it is read', () => {}, 'disconnected', 'connected', '#102030');
    pen.calls.length = 0;
    await page.evaluate('_stop(), _pair()');
    const heard = await until(() => page.evaluate(`seen.includes('#102030') && seen.splice(0)`), 'a link');
    check('the host stops and pairs at once, which may meet the end of the old link',
        /^disconnected,(connected,disconnected,)?connected,#102030$/.test(heard), true);
    await pen.called('subscribe 1f17');

    pen.tell('hold connect', 'lose');
    await page.expect('the pen is lost', 'disconnected');
    await pen.called('connect');
    await page.evaluate('_stop()');
    await page.expect('the host stops while the pen is connected', 'disconnected');
    pen.tell('answer');
    await pen.called('disconnect');
    await link('and pairs', pair, 'connected', '#102030');
    pen.tell('hold connect', 'lose');
    await page.expect('the pen is lost', 'disconnected');
    await pen.called('connect');
    await page.evaluate('_stop()');
    await page.expect('the host stops meanwhile', 'disconnected');
    await pair();
    await pause(100);
    await link('and pairs before that is answered', () => pen.tell('answer'), 'connected', '#102030');
    await link('a link whose end is told as well', lose, 'disconnected', 'connected', '#102030');
}

// The browser's channel to its Bluetooth ends when it is asked for what a pen had that is forgotten in the
// same moment, which these losses bring about now and then; and then for certain.
async function silence() {
    await page.reload();
    await link('a pen is linked', pair, 'connected', '#102030');
    for (let round = 0; round < 2; ++round) {
        await page.evaluate(`void (window.asking = setInterval(() =>
            seen.includes('disconnected') ? clearInterval(asking) : _battery(), 1))`);
        await pause(20);
        pen.tell('lose', 'forget');
        const heard = await until(async () => {
            pen.tell(notify(colours[round]));  // which is heard once the host has subscribed
            return page.evaluate(`seen.includes('#${colours[round]}') && seen.splice(0)`);
        }, 'a colour');
        check('the pen is lost while much is asked, found and heard', heard.filter(line => !/battery/.test(line)),
            ['disconnected', 'connected', '#102030', `#${colours[round]}`]);
    }
    // Frames that fell silent are subscribed yet, so that bluetoothd is not asked for it any more.
    await page.reload();
    pen.calls.length = 0;
    await pair();
    await page.expect('the page is linked', 'connected', '#102030');
    await pen.called('read 1f17');
    await pause(100);  // until it is answered
    await page.evaluate(silent);
    await page.evaluate('_battery()');
    await page.expect('a browser that falls silent is noticed, and left', 'disconnected', 'connected', '#102030', 'battery 64');
}

// As most people have it: a page hears of no pen but by the chooser, and of none any more in a new frame.
async function ordinaryBrowser() {
    page = await HostPage.launch('--enable-features=WebBluetooth');
    await page.open();
    check('the browser keeps for itself what was chosen', await page.evaluate('navigator.bluetooth.getDevices'), undefined);
    await link('a pen is chosen', () => page.choose(), 'chosen', 'connected', '#102030');
    await page.evaluate(silent);
    await page.evaluate('_battery()');
    await page.expect('the browser falls silent, and has lost the pen', 'disconnected', 'Device is failed to connect. 18');
    await page.choose();
    await page.expect('which is chosen anew', 'chosen', 'connected', '#102030', 'battery 64');
}

async function twoTabs() {
    const first = page.browser.session;
    await page.open();
    await pair();
    await page.expect('a second page is linked', 'connected', '#102030');
    const second = page.browser.session;
    await pause(500);  // until it has subscribed, which the browser need not do twice
    const both = async (situation, ...wanted) => {
        for (page.browser.session of [first, second]) await page.expect(situation, ...wanted);
    };
    pen.tell(notify('717273'));
    await both('both pages hear', '#717273');
    lose();
    await both('and lose the pen, and find it', 'disconnected', 'connected', '#102030');
    await page.evaluate('_stop()');
    await page.expect('the second page stops', 'disconnected');
    await page.browser.send('Page.close');
    page.browser.session = first;
    pen.tell(notify('818283'));
    await page.expect('the first one goes on', '#818283');
    await page.browser.show();
}

async function hiddenPage() {
    await page.browser.hide();
    pen.tell(...colours.map(notify));
    await page.expect('a hidden page loses no colour', ...colours.map(hex => `#${hex}`));
    await page.browser.show();
}

async function reloading() {
    pen.calls.length = 0;
    await page.reload('page.html?hasty');
    await pen.called('disconnect');
    pen.tell('hold connect');
    await pair();
    await page.expect('an attempt to connect that is not answered ends', 'Device is failed to connect. 18');
    pen.tell('answer');
    await link('the pen that was allowed before is found', pair, 'connected', '#102030');
    await page.evaluate('_battery(), _stop()');
    lose();
    await pause(100);
    await page.expect('the host stops while the pen is read, and lost as well', 'disconnected');
}

// What stops a native process: the page goes on without the host, and hears of it once.
async function fatalStops() {
    const index = 'Fatal error: Index out of range';
    const nothing = 'Fatal error: unexpectedly found nil while unwrapping an Optional value';
    const byValue = (value, text) => [`${value || 'no'} bytes stop the host`, text, () => pen.tell(`notify ${value}`)];
    const stops = [byValue('1f14', index), byValue('1f14 01', index), byValue('1f14 0110', index),
        byValue('1f17', nothing), byValue('1f17 ffffffffffffffff', nothing), byValue('1f17 000000000000000001', nothing),
        ['an abort without a word', undefined, () => page.evaluate('setTimeout(abort)').then(() => pen.tell(notify('01')))]];
    for (const [situation, text, stop] of stops) {
        await page.reload();
        await link('a pen is linked', pair, 'connected', '#102030');
        await stop();
        await pen.called('disconnect');
        await pause(100);  // in which it would be heard
        const heard = (await page.heard(2, situation)).map(line => line.replace(/\(.*/, ''));
        check(situation, heard, [...text ? [text] : [], 'Aborted', 'error Uncaught RuntimeError: Aborted']);
    }
}

run(async () => {
    pen = await startBluetoothd();
    page = await HostPage.launch('--enable-experimental-web-platform-features');
    await page.open();
    for (const part of [choice, values, losses, refusals, adapterOff, interruptions, hiddenPage, twoTabs, reloading, fatalStops,
        silence, ordinaryBrowser]) await part();
});
