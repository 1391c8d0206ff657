// What the tests of a host in a page share: a pen and its bluetoothd, the page, what it hears, and an end.
import { spawn } from 'node:child_process';
import { mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { dirname, join } from 'node:path';
import { createInterface } from 'node:readline';
import { fileURLToPath } from 'node:url';
import { Browser, serve, until } from './Browser.mjs';

const here = dirname(fileURLToPath(import.meta.url));
const ends = [];  // what is to be done in the end, whatever happens: the latest first

function fault(...what) {
    process.exitCode = 1;
    console.log('FAIL', ...what);
}

export function check(situation, heard, wanted) {
    const [is, shouldBe] = [heard, wanted].map(value => JSON.stringify(value));
    if (is === shouldBe) console.log('ok  ', situation);
    else fault(situation, `\n  heard  ${is?.slice(0, 600)}\n  wanted ${shouldBe?.slice(0, 600)}`);
}

/** Runs the test, and ends the process: with 1 when something was not as it should be. */
export async function run(test, seconds = 120) {
    const end = async () => {
        for (const each of ends.splice(0)) await each();
        process.exit();
    };
    setTimeout(() => {
        fault('it takes too long');
        end();
    }, seconds * 1000).unref();
    try {
        await test();
    } catch (error) {
        fault(error);
    }
    await end();
}

/** A pen, and a bluetoothd on a bus of its own, which browsers launched from now on take for the system's. */
export async function startBluetoothd() {
    const folder = mkdtempSync(join(tmpdir(), 'pen-in-page-'));
    writeFileSync(join(folder, 'bus.conf'), `<busconfig><listen>unix:dir=${folder}</listen><auth>EXTERNAL</auth>
<policy context="default"><allow own="*"/><allow send_destination="*"/><allow eavesdrop="true"/></policy></busconfig>`);
    const bus = spawn('dbus-daemon', [`--config-file=${join(folder, 'bus.conf')}`, '--nofork', '--print-address=1'],
        { stdio: ['ignore', 'pipe', 'ignore'] });
    const address = `${await new Promise(done => bus.stdout.once('data', done))}`.trim();
    const daemon = spawn(join(here, 'fake-bluetoothd'),
        { env: { ...process.env, BUS: address }, stdio: ['pipe', 'pipe', 'inherit'] });
    ends.push(() => {
        daemon.kill();
        bus.kill();
        rmSync(folder, { recursive: true, force: true });
    });
    const calls = [];
    createInterface(daemon.stdout).on('line', line => calls.push(line));
    await until(() => calls.includes('ready'), 'the fake bluetoothd');
    process.env.DBUS_SYSTEM_BUS_ADDRESS = address;
    return {
        calls,
        tell: (...lines) => daemon.stdin.write(lines.map(line => `${line}\n`).join('')),
        /** The next such call; those before are forgotten. */
        called: async call => calls.splice(0, 1 + await until(() => calls.indexOf(call) + 1, call) - 1),
    };
}

/** A browser with a page that has a host, and a person in front of it. */
export class HostPage {
    static folder = process.argv[2];  // where the host is
    isChoosing = true;

    static async launch(...flags) {
        const page = new HostPage();
        page.browser = Browser.launch(...flags);
        page.server = await serve(here, HostPage.folder);
        ends.unshift(() => page.close());
        return page;
    }

    async open(file = 'page.html') {
        await this.browser.open(`${this.server.origin}/${file}`);
        await this.browser.show();  // clicks wait for what is shown
        await this.answerChoosers();
        await this.expect('the page runs under its policy', 'ready');
    }

    async answerChoosers() {
        await this.browser.send('DeviceAccess.enable');
        let answered;  // a second answer to a prompt would silence the browser
        this.browser.on('DeviceAccess.deviceRequestPrompted', ({ id, devices: [device] }) => {
            if (id === answered || this.isChoosing && !device) return;
            answered = id;
            this.browser.send(`DeviceAccess.${this.isChoosing ? 'select' : 'cancel'}Prompt`,
                { id, ...this.isChoosing && { deviceId: device.id } });
        });
    }

    async reload(file = 'page.html') {
        await this.browser.navigate(`${this.server.origin}/${file}`);
        await this.expect('the page is loaded anew', 'ready');
    }

    evaluate(expression) {
        return this.browser.evaluate(expression);
    }

    async choose(button = '#choose') {
        await this.browser.click(button);
    }

    /** What was heard since, as soon as it is so many lines. */
    async heard(count, what) {
        return until(() => this.evaluate(`seen.length >= ${count} && seen.splice(0)`), what)
            .catch(() => this.evaluate('seen.splice(0)'));
    }

    /** What the host hears is to be just these lines. */
    async expect(situation, ...wanted) {
        check(situation, await this.heard(wanted.length, situation), wanted);
    }

    async close() {
        await this.browser.close();
        this.server.close();
    }
}
