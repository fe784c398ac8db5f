// The representative's voice: a murmur too low to be a nuisance, so that calls carry a real sound.

export class Voice {
    constructor() {
        this._context = new AudioContext();
        const out = this._context.createMediaStreamDestination();
        this._level = this._context.createGain();
        this._level.gain.value = 0;
        const tone = this._context.createOscillator();
        tone.type = 'triangle';
        tone.frequency.value = 196;
        const throat = this._context.createBiquadFilter();
        throat.type = 'bandpass';
        throat.frequency.value = 420;
        throat.Q.value = 1.2;
        tone.connect(throat).connect(this._level).connect(out);
        tone.start();
        // Where pages may not sound before a touch.
        addEventListener('pointerdown', () => this._context.resume().catch(() => {}), { once: true });
        this.track = out.stream.getAudioTracks()[0];
    }

    /// How far the mouth is open, 0 to 1.
    follow(openness) {
        this._level.gain.setTargetAtTime(openness * 0.03, this._context.currentTime, 0.03);
    }

    close() { this._context.close().catch(() => {}); }
}
