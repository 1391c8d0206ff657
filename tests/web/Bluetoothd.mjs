// A fake bluetoothd with a pen, on a bus of its own, which a browser that is launched from here on takes for
// the system's.
import { spawn } from 'node:child_process';
import { mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { dirname, join } from 'node:path';
import { createInterface } from 'node:readline';
import { fileURLToPath } from 'node:url';
import { until } from './Browser.mjs';

export class Bluetoothd {
    /** What was called, in order. */
    calls = [];

    static async start() {
        const bluetoothd = new Bluetoothd();
        const folder = mkdtempSync(join(tmpdir(), 'pen-in-page-'));
        bluetoothd.folder = folder;
        writeFileSync(join(folder, 'bus.conf'), `<busconfig><listen>unix:dir=${folder}</listen><auth>EXTERNAL</auth>
<policy context="default"><allow own="*"/><allow send_destination="*"/><allow eavesdrop="true"/></policy></busconfig>`);
        bluetoothd.bus = spawn('dbus-daemon', [`--config-file=${join(folder, 'bus.conf')}`, '--nofork', '--print-address=1'],
            { stdio: ['ignore', 'pipe', 'ignore'] });
        const address = `${await new Promise(done => bluetoothd.bus.stdout.once('data', done))}`.trim();
        bluetoothd.process = spawn(join(dirname(fileURLToPath(import.meta.url)), 'fake-bluetoothd'),
            { env: { ...process.env, BUS: address }, stdio: ['pipe', 'pipe', 'inherit'] });
        createInterface(bluetoothd.process.stdout).on('line', line => bluetoothd.calls.push(line));
        await until(() => bluetoothd.calls.includes('ready'), 'the fake bluetoothd');
        process.env.DBUS_SYSTEM_BUS_ADDRESS = address;
        return bluetoothd;
    }

    /** Gives it these orders. */
    tell(...lines) {
        this.process.stdin.write(lines.map(line => `${line}\n`).join(''));
    }

    close() {
        this.process.kill();
        this.bus.kill();
        rmSync(this.folder, { recursive: true, force: true });
    }
}
