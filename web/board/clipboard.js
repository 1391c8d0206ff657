/** Copies the text, and answers whether that was possible. */
export async function copied(text) {
    try {
        await navigator.clipboard.writeText(text);
        return true;
    } catch {
        return copiedBySelection(text);
    }
}

// Where no page may write to the clipboard, a selection can still be copied.
function copiedBySelection(text) {
    const focused = document.activeElement;
    const field = document.body.appendChild(document.createElement('textarea'));
    field.value = text;
    field.select();
    const isCopied = document.execCommand('copy');
    field.remove();
    focused?.focus({ preventScroll: true });
    return isCopied;
}
