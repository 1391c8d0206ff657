// What the host hears, and what goes wrong in the page.
const seen = [];
var Module = { printErr: line => seen.push(line) };
addEventListener('error', event => seen.push(`error ${event.message}`));
addEventListener('unhandledrejection', event => seen.push(`rejected ${event.reason}`));
addEventListener('securitypolicyviolation', event => seen.push(`forbidden ${event.violatedDirective}`));
addEventListener('click', event => event.target.id === 'choose' && _choose());
