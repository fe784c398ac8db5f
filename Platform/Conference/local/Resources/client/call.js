// A WebRTC call whose two ends both are in this page.

// A call begins at a few hundred kilobits and a soft picture, as on an unknown line; this line is known.
function generous(description) {
    const payload = /a=rtpmap:(\d+) VP8\//.exec(description.sdp);
    if (!payload)
        return description;
    const rate = 'x-google-start-bitrate=2500;x-google-min-bitrate=1200;x-google-max-bitrate=4000';
    const line = new RegExp(`(a=rtpmap:${payload[1]} VP8/90000\r\n)`);
    return { type: description.type, sdp: description.sdp.replace(line, `$1a=fmtp:${payload[1]} ${rate}\r\n`) };
}

export class Call {
    /// `onLost`: the line broke after it stood.
    constructor({ video, onLost }) {
        this._near = new RTCPeerConnection();
        this._far = new RTCPeerConnection();
        this._senders = new Map([['audio', this._near.addTransceiver('audio').sender]]);
        if (video)
            this._senders.set('video', this._near.addTransceiver('video').sender);
        this.received = new MediaStream();
        this._near.addEventListener('track', event => this.received.addTrack(event.track));
        this._pass(this._near, this._far);
        this._pass(this._far, this._near);
        this.connected = new Promise(resolve => {
            this._near.addEventListener('connectionstatechange', () => {
                if (this._near.connectionState === 'connected')
                    resolve();
                else if (this._near.connectionState === 'failed')
                    onLost();
            });
        });
    }

    _pass(from, to) {
        // Candidates may be found before the other end knows what they are for.
        const early = [];
        const add = candidate => to.addIceCandidate(candidate).catch(() => {});
        from.addEventListener('icecandidate', ({ candidate }) => {
            if (!candidate)
                return;
            if (to.remoteDescription)
                add(candidate);
            else
                early.push(candidate);
        });
        to.addEventListener('signalingstatechange', () => {
            if (to.remoteDescription)
                early.splice(0).forEach(add);
        });
    }

    /// Calls the other end, which answers with these tracks.
    async connect(answeringTracks) {
        const stream = new MediaStream(answeringTracks);
        await this._near.setLocalDescription();
        await this._far.setRemoteDescription(generous(this._near.localDescription));
        answeringTracks.forEach(track => this._far.addTrack(track, stream));
        await this._far.setLocalDescription();
        await this._near.setRemoteDescription(this._far.localDescription);
    }

    /// What the near end sends from now on; null: nothing.
    async send(kind, track) {
        const sender = this._senders.get(kind);
        if (sender && sender.track !== track)
            await sender.replaceTrack(track);
    }

    close() {
        this._near.close();
        this._far.close();
    }
}
