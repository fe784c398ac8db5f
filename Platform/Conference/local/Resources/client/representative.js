// A drawn bank representative at a desk, alive: breathes, sways, blinks and speaks in sentences.

import { drawFigure } from './representative_face.js';
import { drawDesk, drawRoom } from './representative_room.js';

const width = 576;
const height = 1248;
const scale = 0.8; // of the drawing in the picture sent, which is coded and decoded here as well
const picturesPerSecond = 12;
const head = { x: 288, y: 476 };

function layer(draw) {
    const canvas = document.createElement('canvas');
    canvas.width = width * scale;
    canvas.height = height * scale;
    const g = canvas.getContext('2d');
    g.scale(scale, scale);
    draw(g, width, height);
    return canvas;
}

// Syllables of different length and weight; 0 between sentences.
function openness(seconds) {
    const within = seconds % 6.4;
    if (within > 3.9)
        return 0;
    const edge = Math.min(1, within * 5, (3.9 - within) * 5);
    const syllables = Math.abs(Math.sin(seconds * 9.1)) * (0.62 + 0.38 * Math.sin(seconds * 3.7));
    return edge * Math.max(0.04, syllables);
}

// Lids close for a sixth of a second, at a rhythm that is not felt as one.
function lids(seconds) {
    const within = Math.min(seconds % 3.7, (seconds + 1.3) % 5.9);
    return within < 0.17 ? 1 - Math.abs(within / 0.085 - 1) : 0;
}

function pose(seconds) {
    const mouth = openness(seconds);
    return {
        mouth,
        lids: lids(seconds),
        smile: 0.55 + 0.25 * Math.sin(seconds * 0.45) - (mouth > 0 ? 0.2 : 0),
        brows: 2.2 * Math.max(0, Math.sin(seconds * 0.9)) * (mouth > 0 ? 1 : 0.3),
        breath: Math.sin(seconds * 1.5) * 2.6,
        x: Math.sin(seconds * 0.7) * 4 + Math.sin(seconds * 1.9) * 1.4,
        y: Math.sin(seconds * 1.1) * 1.6 + mouth * 1.8,
        tilt: Math.sin(seconds * 0.52) * 0.022,
        gaze: Math.sin(seconds * 0.37) * 1.3,
    };
}

export class Representative {
    constructor() {
        /// Called with how far the mouth is open, 0 between sentences.
        this.onSpeech = () => {};
        this._room = layer(drawRoom);
        this._desk = layer(drawDesk);
        this._canvas = document.createElement('canvas');
        this._canvas.width = this._room.width;
        this._canvas.height = this._room.height;
        this._context = this._canvas.getContext('2d', { alpha: false });
        this._began = performance.now();
        this._timer = 0;
        this._writer = null;
        this._draw(pose(5));
    }

    _draw(now) {
        const g = this._context;
        g.drawImage(this._room, 0, 0);
        g.save();
        g.scale(scale, scale);
        g.translate(head.x, head.y);
        drawFigure(g, now);
        g.restore();
        g.drawImage(this._desk, 0, 0);
    }

    /// Begins to live. Without a picture only the speech does.
    start({ picture }) {
        // A timer, not the screen's own beat: that one stands still while the page is covered.
        this._timer = setInterval(() => {
            const now = pose((performance.now() - this._began) / 1000);
            if (picture) {
                this._draw(now);
                this._send();
            }
            this.onSpeech(now.mouth);
        }, 1000 / picturesPerSecond);
    }

    /// The living picture's track. Fed by hand: a canvas's own stream waits for the page to be painted.
    track() {
        if (!window.MediaStreamTrackGenerator)
            return this._canvas.captureStream(picturesPerSecond).getVideoTracks()[0];
        const track = new MediaStreamTrackGenerator({ kind: 'video' });
        this._writer = track.writable.getWriter();
        return track;
    }

    _send() {
        if (!this._writer || this._writer.desiredSize <= 0)
            return; // the line is busy: better late than piled up
        const frame = new VideoFrame(this._canvas, { timestamp: Math.round((performance.now() - this._began) * 1000) });
        this._writer.write(frame).catch(() => frame.close());
    }

    stop() { clearInterval(this._timer); }

    /// A square picture of the head.
    portrait() {
        const size = 400 * scale;
        const canvas = document.createElement('canvas');
        canvas.width = canvas.height = size;
        canvas.getContext('2d').drawImage(this._canvas, head.x * scale - size / 2, (head.y - 8) * scale - size / 2, size, size,
            0, 0, size, size);
        return canvas;
    }
}
