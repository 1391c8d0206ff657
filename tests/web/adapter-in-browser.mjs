// A host in a page where Bluetooth is missing, forbidden, or the browser's own emulation of it, which
// has what a fake bluetoothd cannot show: no adapter, and the strength of advertisements.
//
//     node adapter-in-browser.mjs FOLDER     where web-host.js was built
import { until } from './Browser.mjs';
import { check, HostPage, run } from './HostPage.mjs';

const full = uuid => `0000${uuid}-0000-1000-8000-00805f9b34fb`;

async function unusable(page, why) {
    await page.evaluate('_pair()');
    await page.expect('Bluetooth cannot be used', 'Bluetooth setting is disabled. 17');
    await page.evaluate('_reason()');
    await page.expect('the host knows why', why);
}

/** A pen of the emulation, which answers all that the page asks it. */
class EmulatedPen {
    address = '00:11:22:33:44:55';

    constructor(browser) {
        this.tell = (command, params) => browser.send(`BluetoothEmulation.${command}`, { address: this.address, ...params }, null);
        browser.on('BluetoothEmulation.gattOperationReceived', async ({ type }) => {
            if (type === 'discovery') await this.furnish();  // a loss takes the services along
            await this.tell('simulateGATTOperationResponse', { type, code: 0 });
        });
        browser.on('BluetoothEmulation.characteristicOperationReceived', ({ characteristicId, type }) =>
            this.tell('simulateCharacteristicOperationResponse', { characteristicId, type, code: 0,
                ...type === 'read' && { data: Buffer.from('01102030', 'hex').toString('base64') } }));
    }

    appear() {
        return this.tell('simulatePreconnectedPeripheral', { name: 'InkoraPen 7', manufacturerData: [], knownServiceUuids: [] });
    }

    async furnish() {
        const { serviceId } = await this.tell('addService', { serviceUuid: full('1f1f') });
        const { characteristicId } = await this.tell('addCharacteristic',
            { serviceId, characteristicUuid: full('1f14'), properties: { read: true, notify: true } });
        await this.tell('addDescriptor', { characteristicId, descriptorUuid: full('2902') });
    }

    lose() {
        return this.tell('simulateGATTDisconnection');
    }

    advertise(rssi) {
        return this.tell('simulateAdvertisement', { entry: { deviceAddress: this.address, rssi, scanRecord:
            { name: 'InkoraPen 7', uuids: [full('1f1f')], appearance: 0, txPower: 0, manufacturerData: [] } } });
    }
}

run(async () => {
    const plain = await HostPage.launch();
    await plain.open();
    await unusable(plain, 'There is no Bluetooth service, or it does not answer.');
    await plain.choose();
    await plain.expect('there is no chooser', 'This browser has no Web Bluetooth.');
    await plain.close();

    const page = await HostPage.launch('--enable-experimental-web-platform-features');
    await page.open('page.html?forbidden=bluetooth');
    await unusable(page, 'The system does not permit the use of Bluetooth.');

    const pen = new EmulatedPen(page.browser);
    await pen.tell('enable', { state: 'absent', leSupported: true });
    await page.open();
    await unusable(page, 'There is no Bluetooth LE adapter.');
    await pen.tell('setSimulatedCentralState', { state: 'powered-on' });
    await pen.appear();
    await page.choose();
    await page.expect('an adapter that has come is known to the chooser', 'chosen', 'connected', '#102030');
    await pen.lose();
    await page.expect('the pen is lost and found', 'disconnected', 'connected', '#102030');
    await page.evaluate('_stop()');
    await page.expect('the host stops', 'disconnected');
    await pen.lose();  // the emulation keeps the link that the page gave up

    await page.open();
    await page.evaluate('_pair(), _proximity()');
    await until(async () => {
        await pen.advertise(-42);
        return page.evaluate('seen.length');
    }, 'a pen known by its advertisement');
    await page.expect('which tells its strength', 'proximity 42', 'connected', '#102030');
    const isWatching = 'navigator.bluetooth.getDevices().then(([device]) => device.watchingAdvertisements)';
    check('a scan that has ended watches none any more', await page.evaluate(isWatching), false);
}, 60);
