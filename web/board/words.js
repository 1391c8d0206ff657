// What is said about the pen, and of what went wrong: what it is, and what to do.

/** Why Bluetooth cannot be used from this page in this browser; nothing if only the adapter may be missing. */
function hindrance() {
    if (!isSecureContext)
        return 'A browser lets only secure pages use Bluetooth: open this one over https, or from this machine at http://localhost.';
    if (!navigator.bluetooth) {
        return 'This browser has no Web Bluetooth. Open this page in Chrome, Edge or Opera on a computer or on Android; '
            + 'on Linux, switch it on at chrome://flags/#enable-web-bluetooth first. Firefox and Safari do not have it.';
    }
    if (document.featurePolicy && !document.featurePolicy.allowsFeature('bluetooth'))
        return 'This page may not use Bluetooth, by the policy of the site that it is on. Open it by itself, not within another page.';
}

const advice = {
    'not-chosen': () => 'No pen was chosen. If yours is not in the browser’s list, switch it on, hold it near and connect again.',
    'not-found': () => 'No pen was found. Switch it on, hold it near and search again; a pen that another program or tab is connected to cannot be found.',
    connection: reason => `The pen was found, but could not be connected (${reason}). Switch Bluetooth on, hold the pen near and search again.`,
    fatal: reason => `The pen has sent what no pen sends, and the kit has stopped (${reason}). Your colours are safe: start anew.`,
    silent: () => 'The pen is connected, but does not answer. Disconnect it, switch it off and on, and connect again; if that does not help, it may be another maker’s.',
    unavailable: reason => hindrance() ?? `Bluetooth cannot be used here (${reason}). Plug an adapter in, or switch Bluetooth on in the system’s settings, and connect again.`,
};

/** What has gone wrong and what to do about it, for people. */
export function explained({ kind, message }) {
    const reason = message.replace(/\.$/, '');
    return advice[kind]?.(reason) ?? `That was not possible: ${reason}.`;
}

/** How far the board is with a pen. */
export const phases = {
    loading: () => 'Loading…',
    idle: () => 'No pen is connected.',
    choosing: () => 'Choose your pen in the browser’s list.',
    searching: () => 'Looking for the pen…',
    reading: () => 'Connected, reading the pen…',
    connected: name => `Connected to ${name || 'a pen'}.`,
    lost: name => `Lost ${name || 'the pen'}. Looking for it: hold it near.`,
};

export const isLow = percent => percent <= 10;

export const batteryText = percent => `Battery ${percent} %${isLow(percent) ? ', charge it soon' : ''}.`;
