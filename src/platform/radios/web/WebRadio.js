// Web Bluetooth, as WebRadio.cpp sees it. Pens are numbers here: places in `pens`, which all radios of
// the page share, as they share what the person has chosen. Nothing is taken out of a bare variable as
// `const { device } = pen` does: optimized, Emscripten 3.1.6 drops that.
mergeInto(LibraryManager.library, {
    $inkoraWeb: {
        // {over, scan, look}, by address: what ends with the radio and with its scan, if there is one,
        // and how to learn its state.
        radios: {},
        // {device, link, attempt, latest, isForgotten}: the link is there from the attempt to connect on;
        // the browser's, until it is answered; which choice or link of this page was the pen's last, if
        // any; the browser has forgotten it.
        pens: [],
        count: 0,  // of choices and links
        // Whose Bluetooth is used if not the page's own.
        frame: null,

        // What the browser lets be asked of a chosen pen.
        service: 0x1f1f,
        filters: [{ namePrefix: 'InkoraPen' }, { namePrefix: 'HuveloPen' }],

        // A pen that was left behind would be waited for without an end.
        connectTime: 30000,
        // A link can be lost in its first moments, and its services be unknown then.
        retries: 5,
        retryPause: 250,
        // A pen allowed on another day may be far away: those that are heard come first.
        hearingTime: 2000,
        // What the browser answers by itself it answers at once.
        answerTime: 2000,
        // Bluetooth Core Specification, Vol 3, F, 3.3.3: a pen that answers later has been lost.
        requestTime: 30000,

        // In so many milliseconds; never, if the signal comes first.
        after: (milliseconds, signal) => new Promise(done => {
            if (signal.aborted) return;
            const timer = setTimeout(done, milliseconds);
            signal.addEventListener('abort', () => clearTimeout(timer));
        }),

        // Calls `to` with texts and bytes put on the stack for as long as it lasts. A program that has
        // been aborted is not called any more.
        tell: function (to, ...values) {
            if (ABORT) return inkoraWeb.end();
            const top = stackSave();
            const room = value => {
                const bytes = typeof value === 'string' ? [...new TextEncoder().encode(value), 0] : value;
                const place = stackAlloc(bytes.length + 1);
                HEAPU8.set(bytes, place);
                return place;
            };
            try {
                to(...values.map(value => typeof value === 'number' || typeof value === 'boolean' ? value
                    : value == null ? 0 : room(value)));
            } finally {
                stackRestore(top);
            }
        },

        bluetooth: () => (inkoraWeb.frame ? inkoraWeb.frame.contentWindow : window).navigator.bluetooth,

        // Chromium (156) closes a page's channel to its Bluetooth when it is asked for what the system has
        // forgotten of a lost pen in that moment: no request is answered any more then, and no event comes.
        isDeaf: () => Promise.race([inkoraWeb.bluetooth().getAvailability().then(() => false, () => false),
            new Promise(done => setTimeout(done, inkoraWeb.answerTime, true))]),

        // What the browser answers to a request; an error once it cannot be expected any more.
        answerTo: function (request, longest = inkoraWeb.requestTime) {
            const answered = new AbortController();
            const frame = inkoraWeb.frame;
            const giveUp = async () => {
                for (let time = 0; time < longest; time += inkoraWeb.answerTime) {
                    await inkoraWeb.after(inkoraWeb.answerTime, answered.signal);
                    if (inkoraWeb.frame !== frame || await inkoraWeb.isDeaf()) break;
                }
                throw new DOMException('The browser does not answer.', 'TimeoutError');
            };
            return Promise.race([request, giveUp()]).finally(() => answered.abort());
        },

        // A new frame has a channel of its own.
        renew: async function () {
            inkoraWeb.leaveFrame();
            const frame = inkoraWeb.frame = document.createElement('iframe');
            frame.hidden = true;
            document.documentElement.append(frame);
            for (const pen of inkoraWeb.pens) pen.isForgotten = true;
            await inkoraWeb.remember();
        },

        leaveFrame: function () {
            if (inkoraWeb.frame) inkoraWeb.frame.remove();
            inkoraWeb.frame = null;
        },

        bytesOf: view => new Uint8Array(view.buffer, view.byteOffset, view.byteLength),

        // The sixteen bytes that the browser made up for the device, which are base64 in Chromium; of
        // other texts some that are as likely to be its own.
        identifierOf: function (id) {
            let text = id;
            try {
                text = atob(id);
            } catch (e) {
                // taken as it is
            }
            const bytes = new Uint8Array(16);
            for (let i = 0; i < Math.max(text.length, 16); ++i)
                bytes[i % 16] = (i < 16 ? 0 : bytes[i % 16] * 31) + (text.charCodeAt(i) || 0);
            return bytes;
        },

        // The number of a device.
        add: function (device) {
            const known = inkoraWeb.pens.findIndex(pen => pen.device.id === device.id);
            const pen = known < 0 ? inkoraWeb.pens.push({ link: null, attempt: null, latest: 0 }) - 1 : known;
            const entry = inkoraWeb.pens[pen];
            if (entry.device !== device) entry.attempt = null;  // that of another frame
            Object.assign(entry, { device, isForgotten: false });
            return pen;
        },

        // Adds what the person has allowed on other days, too, where the browser tells it.
        remember: async function () {
            const bluetooth = inkoraWeb.bluetooth();
            const devices = bluetooth.getDevices ? await inkoraWeb.answerTo(bluetooth.getDevices()).catch(() => []) : [];
            return devices.map(inkoraWeb.add);
        },

        sight: function (radio, pen, { rssi, txPower, name, uuids } = {}) {
            const { device, isForgotten } = inkoraWeb.pens[pen];
            if (isForgotten) return;
            for (const uuid of uuids || []) inkoraWeb.tell(_inkora_web_item, radio, uuid, 0, 0);
            inkoraWeb.tell(_inkora_web_sighted, radio, pen, inkoraWeb.identifierOf(device.id),
                name || device.name, rssi == null ? 127 : rssi, txPower == null ? 127 : txPower);
        },

        // Has the radio hear the pen's advertisements until its scan ends, where the browser can.
        hear: function (radio, pen) {
            const { device } = inkoraWeb.pens[pen];
            const { signal } = inkoraWeb.radios[radio].scan;
            device.addEventListener('advertisementreceived', event => inkoraWeb.sight(radio, pen, event), { signal });
            if (device.watchAdvertisements) device.watchAdvertisements({ signal }).catch(() => {});
        },

        // Shows what is near for all that is known at once, the pen of the last choice or link before
        // others; what else the person has allowed when it is heard, or in a while, since not every system
        // lets it be heard.
        scan: async function (radio) {
            inkoraWeb.stopScan(radio);
            const { signal } = inkoraWeb.radios[radio].scan = new AbortController();
            const show = here => [...inkoraWeb.pens.entries()]
                .filter(([, { latest }]) => latest > 0 === here)
                .sort(([, a], [, b]) => b.latest - a.latest)
                .forEach(([pen]) => inkoraWeb.sight(radio, pen));
            show(true);
            const pens = await inkoraWeb.remember();
            if (signal.aborted) return;
            for (const pen of pens) inkoraWeb.hear(radio, pen);
            inkoraWeb.after(inkoraWeb.hearingTime, signal).then(() => show(false));
        },

        stopScan: function (radio) {
            const { scan } = inkoraWeb.radios[radio];
            if (scan) scan.abort();
            inkoraWeb.radios[radio].scan = null;
        },

        // Without a word: who asks for it knows.
        letGo: function (radio) {
            inkoraWeb.stopScan(radio);
            inkoraWeb.pens.forEach(({ link }, pen) => {
                if (link && link.radio === radio) inkoraWeb.drop(pen);
            });
        },

        stop: function (radio) {
            if (!(radio in inkoraWeb.radios)) return;
            inkoraWeb.letGo(radio);
            inkoraWeb.radios[radio].over.abort();
            delete inkoraWeb.radios[radio];
        },

        end: function () {
            Object.keys(inkoraWeb.radios).map(Number).forEach(inkoraWeb.stop);
            inkoraWeb.leaveFrame();
        },

        // Finds all that the pen has, which may fail in a link's first moments: what is told of later
        // is known to be there.
        furnish: async function (link, server) {
            const services = await server.getPrimaryServices(inkoraWeb.service).catch(error => {
                if (error.name === 'NotFoundError' && link.retries === 0) return [];
                throw error;
            });
            link.services = [];
            link.things = [];
            for (const service of services) {
                const characteristics = await service.getCharacteristics().catch(error => {
                    if (error.name === 'NotFoundError') return [];
                    throw error;
                });
                const of = link.services.push(service.uuid) - 1;
                link.things.push(...characteristics.map(characteristic => ({ characteristic, of, held: [] })));
            }
        },

        connect: async function (radio, pen) {
            const over = new AbortController();
            const signal = over.signal;
            const link = { radio, over, isUp: false, retries: inkoraWeb.retries, queue: Promise.resolve() };
            inkoraWeb.pens[pen].link = link;
            const fail = text => {
                inkoraWeb.drop(pen);
                inkoraWeb.tell(_inkora_web_failed, radio, pen, text);
            };
            inkoraWeb.after(inkoraWeb.connectTime, signal).then(
                () => link.isUp || fail('The connection could not be established in time.'));
            while (!link.isUp) {
                const isDeaf = await inkoraWeb.isDeaf();
                if (signal.aborted) return;
                if (isDeaf) await inkoraWeb.renew();
                if (signal.aborted) return;
                const { device, isForgotten } = inkoraWeb.pens[pen];
                if (isForgotten) return fail('The browser has lost the pen, which has to be chosen anew.');
                try {
                    const server = await inkoraWeb.answerTo(inkoraWeb.attempt(pen));
                    if (signal.aborted) return;
                    await inkoraWeb.answerTo(inkoraWeb.furnish(link, server));
                    if (signal.aborted) return;
                    if (!device.gatt.connected)
                        throw new DOMException('The link was lost before its services were known.', 'NetworkError');
                } catch (error) {
                    if (signal.aborted) return;
                    if (link.retries-- === 0) return fail(error.message);
                    await inkoraWeb.after(inkoraWeb.retryPause, signal);
                    continue;
                }
                // An attempt learns of its end from what it waits for.
                device.addEventListener('gattserverdisconnected', () => inkoraWeb.lost(pen), { signal });
                link.isUp = true;
            }
            inkoraWeb.pens[pen].latest = ++inkoraWeb.count;
            inkoraWeb.tell(_inkora_web_connected, radio, pen);
        },

        // The browser's own, which cannot be ended: of a link whose attempt is given up, or made twice at
        // once, Chromium (156) does not tell the end. So the next link has what comes of it, and if there
        // is none it came too late.
        attempt: function (pen) {
            const entry = inkoraWeb.pens[pen];
            if (!entry.attempt) {
                const { gatt } = entry.device;
                const attempt = entry.attempt = gatt.connect().finally(() => {
                    if (entry.attempt === attempt) entry.attempt = null;
                    if (!entry.link) gatt.disconnect();
                });
            }
            return entry.attempt;
        },

        drop: function (pen) {
            const { device, link, attempt } = inkoraWeb.pens[pen];
            inkoraWeb.pens[pen].link = null;
            link.over.abort();
            if (!attempt) device.gatt.disconnect();
        },

        disconnect: function (pen) {
            const { link } = inkoraWeb.pens[pen];
            if (!link) return;
            inkoraWeb.drop(pen);
            if (link.isUp) inkoraWeb.tell(_inkora_web_disconnected, link.radio, pen, true);
        },

        lost: function (pen) {
            const { link } = inkoraWeb.pens[pen];
            inkoraWeb.drop(pen);
            inkoraWeb.tell(_inkora_web_disconnected, link.radio, pen, false);
        },

        // Asks the pen for one thing after the other. Nothing is answered once the link has ended.
        ask: function (pen, request, answer) {
            const { device, link } = inkoraWeb.pens[pen];
            if (!link) return;
            const { signal } = link.over;
            link.queue = link.queue.then(async () => {
                if (signal.aborted) return;
                let value, text = null;
                try {
                    value = await request(link);
                } catch (error) {
                    const isLost = error.name === 'TimeoutError' || !device.gatt.connected;
                    if (isLost && !signal.aborted) inkoraWeb.lost(pen);
                    text = error.message;
                }
                if (!signal.aborted) answer(link.radio, value, text);
            });
        },

        // Bluetooth Core Specification, Vol 3, G, 3.3.1.1
        bitsOf: properties => ['broadcast', 'read', 'writeWithoutResponse', 'write', 'notify', 'indicate',
            'authenticatedSignedWrites'].reduce((bits, name, bit) => bits | properties[name] << bit, 0),

        // The event that a read causes as well is known by its value, which is the very same object.
        // Until that is there, events wait.
        read: async function (thing, link) {
            let own;
            link.heldFor = thing;
            try {
                own = await thing.characteristic.readValue();
                return inkoraWeb.bytesOf(own);
            } finally {
                link.heldFor = null;
                for (const value of thing.held.splice(0)) if (value !== own) thing.notify(value);
            }
        },

        subscribe: async function (pen, handle, link, on) {
            const thing = link.things[handle];
            const characteristic = thing.characteristic;
            const unlisten = () => characteristic.removeEventListener('characteristicvaluechanged', thing.listener);
            // bluetoothd keeps subscriptions from link to link, and Chromium (156) then tells the values to
            // the last link's characteristic, whatever is asked of this one's: they are ended first.
            await characteristic.stopNotifications();
            unlisten();
            if (!on) return;
            thing.notify = value => {
                if (link.over.signal.aborted) return;
                const bytes = inkoraWeb.bytesOf(value);
                inkoraWeb.tell(_inkora_web_notified, link.radio, pen, handle, bytes, bytes.length);
            };
            thing.listener = ({ target }) =>
                link.heldFor === thing ? thing.held.push(target.value) : thing.notify(target.value);
            characteristic.addEventListener('characteristicvaluechanged', thing.listener);
            await characteristic.startNotifications().catch(error => {
                unlisten();
                throw error;
            });
        },
    },

    // Tells its state as CBManagerState has it.
    inkora_web_start__deps: ['$inkoraWeb', 'stackSave', 'stackAlloc', 'stackRestore'],
    inkora_web_start: function (radio) {
        const unsupported = 2, unauthorized = 3, poweredOn = 5;
        const over = new AbortController();
        const bluetooth = typeof navigator === 'undefined' ? undefined : navigator.bluetooth;
        const tell = state => {
            if (over.signal.aborted) return;
            if (state !== poweredOn) inkoraWeb.letGo(radio);
            inkoraWeb.tell(_inkora_web_state, radio, state, bluetooth !== undefined);
        };
        const look = async () => {
            if (await inkoraWeb.isDeaf()) await inkoraWeb.renew();  // as another kit of the page may have left it
            return inkoraWeb.bluetooth().getAvailability().then(is => tell(is ? poweredOn : unsupported),
                error => tell(error.name === 'SecurityError' ? unauthorized : unsupported));
        };
        inkoraWeb.radios[radio] = { over, scan: null, look };
        if (!bluetooth) return tell(unsupported);
        const policy = document.featurePolicy;
        if (policy && !policy.allowsFeature('bluetooth')) return tell(unauthorized);
        if ('onavailabilitychanged' in bluetooth)
            bluetooth.addEventListener('availabilitychanged', look, { signal: over.signal });
        look();
    },

    inkora_web_stop__deps: ['$inkoraWeb'],
    inkora_web_stop: function (radio) {
        inkoraWeb.stop(radio);
    },

    inkora_web_end__deps: ['$inkoraWeb'],
    inkora_web_end: function () {
        inkoraWeb.end();
    },

    inkora_web_scan__deps: ['$inkoraWeb'],
    inkora_web_scan: function (radio, on) {
        if (on) inkoraWeb.scan(radio);
        else inkoraWeb.stopScan(radio);
    },

    inkora_web_connect__deps: ['$inkoraWeb'],
    inkora_web_connect: function (radio, pen) {
        inkoraWeb.connect(radio, pen);
    },

    inkora_web_disconnect__deps: ['$inkoraWeb'],
    inkora_web_disconnect: function (pen) {
        inkoraWeb.disconnect(pen);
    },

    inkora_web_discover_services__deps: ['$inkoraWeb'],
    inkora_web_discover_services: function (pen) {
        inkoraWeb.ask(pen, link => link.services, (radio, services) => {
            services.forEach((uuid, handle) => inkoraWeb.tell(_inkora_web_item, radio, uuid, handle, 0));
            inkoraWeb.tell(_inkora_web_services, radio, pen);
        });
    },

    inkora_web_discover_characteristics__deps: ['$inkoraWeb'],
    inkora_web_discover_characteristics: function (pen, service) {
        inkoraWeb.ask(pen, link => link.things, (radio, things) => {
            things.forEach(({ characteristic: { uuid, properties }, of }, handle) => {
                if (of === service) inkoraWeb.tell(_inkora_web_item, radio, uuid, handle, inkoraWeb.bitsOf(properties));
            });
            inkoraWeb.tell(_inkora_web_characteristics, radio, pen, service);
        });
    },

    inkora_web_read__deps: ['$inkoraWeb'],
    inkora_web_read: function (pen, handle) {
        inkoraWeb.ask(pen, link => inkoraWeb.answerTo(inkoraWeb.read(link.things[handle], link)), (radio, bytes, failure) =>
            inkoraWeb.tell(_inkora_web_value_read, radio, pen, handle, bytes, bytes ? bytes.length : 0, failure));
    },

    inkora_web_subscribe__deps: ['$inkoraWeb'],
    inkora_web_subscribe: function (pen, handle, on) {
        inkoraWeb.ask(pen, link => inkoraWeb.answerTo(inkoraWeb.subscribe(pen, handle, link, on)), (radio, nothing, failure) =>
            inkoraWeb.tell(_inkora_web_subscribed, radio, pen, handle, failure ? !on : on, failure));
    },

    // To be called while a person's gesture lasts.
    inkora_web_choose__deps: ['$inkoraWeb'],
    inkora_web_choose: function (chosen) {
        const filters = inkoraWeb.filters, service = inkoraWeb.service;
        const refused = error => {
            if (error.name === 'TimeoutError') inkoraWeb.renew();
            inkoraWeb.tell(_inkora_web_chosen, chosen, error.message);
        };
        const bluetooth = inkoraWeb.bluetooth();
        if (!bluetooth) return void setTimeout(refused, 0, new Error('This browser has no Web Bluetooth.'));
        // The person may take any time.
        inkoraWeb.answerTo(bluetooth.requestDevice({ filters, optionalServices: [service] }), Infinity).then(async device => {
            const pen = inkoraWeb.add(device);
            inkoraWeb.pens[pen].latest = ++inkoraWeb.count;
            // The chooser knows an adapter that has come since the radio looked.
            await Promise.all(Object.values(inkoraWeb.radios).map(({ look }) => look()));
            for (const radio of Object.keys(inkoraWeb.radios).map(Number)) {
                if (!inkoraWeb.radios[radio].scan) continue;
                inkoraWeb.hear(radio, pen);
                inkoraWeb.sight(radio, pen);
            }
            inkoraWeb.tell(_inkora_web_chosen, chosen, null);
        }, refused);
    },
});
