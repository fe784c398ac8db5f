// The page this one is embedded in, if any: events go there, commands come from there.

const mark = 'kelvara-local-conference';

export class Embedder {
    constructor() {
        this.onCommand = () => {};
        this._waiting = [];
        this._origin = null;
        if (window.parent === window)
            return;
        window.addEventListener('message', event => this._receive(event));
        // Whose page that is turns out with the answer; so nothing is told before it.
        window.parent.postMessage({ mark, kind: 'hello' }, '*');
    }

    _receive(event) {
        if (event.source !== window.parent || !event.data || event.data.mark !== mark)
            return;
        if (this._origin === null && event.data.kind === 'welcome') {
            this._origin = event.origin;
            this._waiting.splice(0).forEach(message => this._post(message));
        } else if (event.origin === this._origin && event.data.kind === 'command') {
            this.onCommand(event.data.name, event.data.values || []);
        }
    }

    _post(message) {
        // A page without an origin of its own can be spoken to in no other way.
        window.parent.postMessage({ mark, ...message }, this._origin === 'null' ? '*' : this._origin);
    }

    emit(name, data) {
        const message = { kind: 'event', name, data };
        if (this._origin === null)
            this._waiting.push(message);
        else
            this._post(message);
    }
}
