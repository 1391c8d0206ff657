// A page's own code, as its developer would write it: every member is used, by its type and for real.
import type wasm from 'inkorakit/inkorakit.wasm';
import type { Kit, KitError, KitEvents, LoadOptions, VirtualPen } from 'inkorakit';

type Package = typeof import('inkorakit');

declare const seen: string[];  // the page's

/** What the kit tells from now on, a line for each. */
export function listen(kit: Kit, heard: string[] = []): string[] {
    kit.addEventListener('connected', () => heard.push(`connected ${kit.state}`));
    kit.addEventListener('disconnected', () => heard.push(`disconnected`));
    kit.addEventListener('colour', ({ colour }) => heard.push(colour.hex));
    for (const type of ['battery', 'proximity'] as const)
        kit.addEventListener(type, event => heard.push(`${type} ${event.level}`));
    kit.addEventListener('info', event => heard.push(`info ${event.name} ${event.identifier.length}`));
    for (const type of ['failed', 'unavailable', 'fatal'] as const)
        kit.addEventListener(type, event => heard.push(`${type}: ${said(event.error)}`));
    return heard;
}

export function said({ kind, code, message }: KitError): string {
    return `${kind} ${code} ${message}`;
}

/** What a call is refused with. */
export async function refused(call: () => unknown): Promise<string> {
    try {
        await call();
    } catch (error) {
        return said(error as KitError);
    }
    return 'not refused';
}

const wrong: LoadOptions = { clock: 'virtual' };

/** All that can be had without Bluetooth; what is seen of it. */
export async function tryVirtual({ load, KitError, ColourEvent }: Package, options: LoadOptions): Promise<string[]> {
    const kit = await load({ ...options, radio: 'virtual', clock: 'virtual' });
    const seen = listen(kit);
    const see = (...lines: unknown[]) => void seen.push(lines.join(' '));

    see('version', /^\d+\.\d+\.\d+$/.test(kit.version), kit.state, JSON.stringify(kit.reason));
    see(await refused(() => load({ ...options, ...wrong })));
    // @ts-expect-error there is no such radio
    see(await refused(() => load({ radio: 'infrared' })));
    for (const version of [0, 1])  // no program, and an empty one
        see((await refused(() => load({ wasm: Uint8Array.of(0, 97, 115, 109, version, 0, 0, 0) }))).slice(0, 39));

    kit.setPowered(false);
    see(await refused(() => kit.pair()), '/', kit.reason);
    kit.setPowered(true);
    kit.advance(6.5);
    see('none near', kit.state);

    const pen: VirtualPen = kit.addPen(7);
    pen.setRefusing(true);
    const request = refused(() => kit.battery());
    await kit.pair();
    see('looks', kit.state);
    kit.advance(1);
    see('a request meanwhile', await request);
    pen.setRefusing(false);
    pen.setBattery(42);
    kit.resume();
    const [battery, again] = [kit.battery(), kit.battery()];
    kit.advance(1);
    const proximity = kit.proximity();
    kit.advance(1);
    see('asked', await battery, await again, await proximity, kit.state);
    see(kit.info().name, pen.serialNumber);

    for (const red of [1, 1, 255]) pen.capture(red, 128, 0);
    kit.advance(0.1);
    pen.startCapturing(0.5, 3);
    kit.advance(1.2);
    pen.stopCapturing();
    kit.addEventListener('colour', event => see(event instanceof ColourEvent, event.colour.red, event.colour.alpha), { once: true });
    pen.capture(255, 0, 0);
    kit.advance(1);

    let level: Promise<number> | undefined;
    kit.addEventListener('connected', () => void (level = kit.battery()), { once: true });
    pen.dropLink();
    kit.advance(1);
    see('asked as soon as it is connected', await level);
    pen.loseLink();
    kit.advance(3.9);
    see('silent for 3.9 s', kit.state);
    kit.advance(1);
    pen.setDistance('out-of-range');
    kit.advance(5);
    pen.setDistance('near');
    see('far away', kit.state);
    kit.advance(1);

    for (const call of [() => kit.pair(), () => kit.resume(), () => kit.addPen(7), () => kit.addPen(-1),
        () => pen.capture(256, 0, 0), () => pen.setBattery(101), () => pen.startCapturing(0), () => kit.advance(NaN)])
        see(await refused(call));
    kit.addEventListener('colour', () => { throw new Error('of a listener'); }, { once: true });
    pen.capture(9, 9, 9);
    pen.capture(8, 8, 8);
    kit.advance(1);

    // Within `connected` the kit has steps to do yet: it stops behind them.
    // So it has within `disconnected`: the search that follows is stopped. Two stops are both right.
    for (const type of ['connected', 'disconnected'] as const) {
        const stopped = new Promise<unknown>(done => kit.addEventListener(type,
            () => done(Promise.all([kit.stop(), kit.stop()])), { once: true }));
        pen.dropLink();
        kit.advance(5);
        await stopped;
        see(`stopped as soon as it is ${type}`, kit.state);
        kit.resume();
        kit.advance(1);
    }
    const left = refused(() => kit.proximity());
    const stopped = [kit.stop(), kit.stop()];
    kit.advance(1);
    await Promise.all(stopped);
    see('stopped', kit.state, await left);
    pen.remove();
    see(await refused(() => pen.dropLink()));

    const other = await load({ ...options, radio: 'virtual' });
    other.addPen(7).capture(1, 2, 3);
    const colour = new Promise<string>(done => other.addEventListener('colour', event => done(event.colour.hex)));
    other.addEventListener('connected', () => void (level = other.battery()));
    await other.pair();
    see('another kit, by the page\'s clock:', await colour, await level, kit.state);
    see(await refused(() => other.advance(1)));
    await other.close();
    see(other.state, await refused(() => other.pair()));
    kit.resume();
    kit.addPen(8);
    const closed = new Promise<unknown>(done => kit.addEventListener('connected',
        () => done(Promise.all([kit.close(), kit.close()]))));
    kit.advance(1);
    await closed;
    see(await refused(() => kit.info()), KitError.name, await refused(() => kit.close()));
    return seen;
}

/** A kit with the browser's Bluetooth, which the page's button chooses a pen for. */
export async function begin({ load }: Package, options: LoadOptions): Promise<void> {
    const kit = await load(options);
    listen(kit, seen);
    const _choose = async () => seen.push(`pair: ${await refused(() => kit.pair())}`);
    Object.assign(globalThis, { kit, _choose });
    seen.push('ready');
}

/** Types alone: what must not compile. */
export function wrongly(kit: Kit, events: KitEvents): void {
    // @ts-expect-error a colour has no level
    kit.addEventListener('colour', event => event.level);
    const options: LoadOptions = { wasm: {} as typeof wasm };
    // @ts-expect-error a level is no text
    const text: string = events.battery.level;
    void [options, text];
}
