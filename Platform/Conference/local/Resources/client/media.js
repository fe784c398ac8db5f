// The person's own camera and microphone. A call goes on without either.

const patience = 4000;
const picture = { facingMode: 'user', width: { ideal: 640 }, height: { ideal: 480 }, frameRate: { ideal: 15, max: 30 } };

async function open(wanted) {
    if (!navigator.mediaDevices)
        return [];
    try {
        return (await navigator.mediaDevices.getUserMedia(wanted)).getTracks();
    } catch {
        return [];
    }
}

// One request that names both fails when one is absent.
async function openEach({ audio, video }) {
    if (audio && video) {
        const both = await open({ audio: true, video: picture });
        if (both.length)
            return both;
    }
    const voice = audio ? await open({ audio: true }) : [];
    return voice.concat(video ? await open({ video: picture }) : []);
}

export class Media {
    constructor(onChange) {
        this._onChange = onChange;
        this._tracks = new Map();
        this._closed = false;
        this.muted = { audio: false, video: false };
    }

    /// Opens what is wanted. Comes back when that is decided, or when the person has taken too long to decide; what
    /// they allow later is taken all the same.
    async open(wanted) {
        this.muted = { audio: !wanted.audio, video: !wanted.video };
        await this._take(wanted);
    }

    async _take(kinds) {
        const taken = openEach(kinds).then(tracks => tracks.forEach(track => this._add(track)));
        await Promise.race([taken, new Promise(resolve => setTimeout(resolve, patience))]);
    }

    _add(track) {
        if (this._closed || this._tracks.has(track.kind)) {
            track.stop();
            return;
        }
        track.enabled = !this.muted[track.kind];
        track.addEventListener('ended', () => {
            this._tracks.delete(track.kind);
            this._onChange();
        });
        this._tracks.set(track.kind, track);
        this._onChange();
    }

    track(kind) { return this._tracks.get(kind) || null; }
    sends(kind) { return this._tracks.has(kind) && !this.muted[kind]; }

    /// Mutes or unmutes. A device that was not opened so far is; one that could not be is asked for again.
    async toggle(kind) {
        this.muted[kind] = this.sends(kind);
        if (!this.muted[kind] && !this._tracks.has(kind))
            await this._take({ audio: kind === 'audio', video: kind === 'video' });
        const track = this.track(kind);
        if (track)
            track.enabled = !this.muted[kind];
        this._onChange();
    }

    close() {
        this._closed = true;
        this._tracks.forEach(track => track.stop());
        this._tracks.clear();
    }
}
