// The page's contact with its server: asks several times a second how the call stands.

const pause = 120;
const patience = 2500;
const failuresInARow = 2;

async function say(word, said) {
    const stop = new AbortController();
    const timer = setTimeout(() => stop.abort(), patience);
    try {
        const answer = await fetch(`/.local/${word}`, {
            method: 'POST', body: JSON.stringify(said), signal: stop.signal, cache: 'no-store',
        });
        if (!answer.ok)
            throw new Error(`answered ${answer.status}`);
        return await answer.json();
    } finally {
        clearTimeout(timer);
    }
}

export class Contact {
    constructor() {
        this._call = null;
        this._failures = 0;
        this._over = false;
    }

    /// Asks to be let in: `{ accepted, call, room }`. Throws when the server cannot be reached.
    async enter(wanted) {
        const answer = await say('enter', wanted);
        this._call = answer.call;
        return answer;
    }

    /// Keeps in contact until `leave` or until `onEnd` was told "hungUp" or "dropped", once. `media` tells what the
    /// person sends, `isJoined` whether the call stands.
    keep({ media, isJoined, onEnd }) {
        const beat = async () => {
            if (this._over)
                return;
            let state = 'open';
            try {
                state = (await say(isJoined() ? 'join' : 'contact', { call: this._call, ...media() })).state;
                this._failures = 0;
            } catch {
                if (++this._failures >= failuresInARow)
                    state = 'dropped';
            }
            if (this._over)
                return;
            if (state === 'open') {
                setTimeout(beat, pause);
            } else {
                this._over = true;
                onEnd(state);
            }
        };
        beat();
        addEventListener('pagehide', () => this.leave());
    }

    /// Tells the server at once that the call stands, so that it knows no later than the embedding page does.
    async join(media) {
        return say('join', { call: this._call, ...media });
    }

    leave() {
        if (this._over || !this._call)
            return;
        this._over = true;
        navigator.sendBeacon('/.local/leave', JSON.stringify({ call: this._call }));
    }
}
