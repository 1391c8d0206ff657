// The board, or why there is none: a browser may lack what its modules are made with.
import('./board.js').catch(error => {
    document.getElementById('state').textContent =
        `The board does not run in this browser (${error.message}). Use a newer one, or load the page anew.`;
});
