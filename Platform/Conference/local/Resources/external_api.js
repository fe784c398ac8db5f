// The embedding script of the local conference: an iframe with the client, and events and commands between the two.
(function () {
    'use strict';

    const mark = 'kelvara-local-conference';
    // What a page says first comes before its load event; a busy machine may deliver it after.
    const patienceAfterLoad = 2000;
    const ownCommands = ['displayName', 'hangup', 'toggleAudio', 'toggleVideo'];
    let frames = 0;

    function length(size) {
        return typeof size === 'number' || /^\d+$/.test(size) ? `${size}px` : String(size);
    }

    // The room goes through the address's own path, which encodes what a path cannot hold and leaves the slash that
    // stands between tenant and room.
    function roomAddress(domain, options) {
        const address = new URL(`${options.noSSL ? 'http' : 'https'}://${domain}`);
        address.pathname = `${address.pathname.replace(/\/$/, '')}/${options.roomName}`;
        if (options.jwt)
            address.searchParams.set('jwt', options.jwt);
        if (options.lang)
            address.searchParams.set('lang', options.lang);
        const fragment = [];
        const append = (name, values) => {
            for (const [key, value] of Object.entries(values || {})) {
                const text = JSON.stringify(value);
                if (text !== undefined)
                    fragment.push(`${name}.${encodeURIComponent(key)}=${encodeURIComponent(text)}`);
            }
        };
        append('config', options.configOverwrite);
        append('interfaceConfig', options.interfaceConfigOverwrite);
        append('userInfo', options.userInfo);
        address.hash = fragment.join('&');
        return address;
    }

    class JitsiMeetExternalAPI {
        constructor(domain, options) {
            this._options = {
                roomName: '', width: '100%', height: '100%', parentNode: document.body, noSSL: false,
                ...(options || {}),
            };
            this._listeners = new Map();
            this._waiting = [];
            this._isThere = false;
            this._address = roomAddress(domain, this._options);
            this._onMessage = event => this._receive(event);
            window.addEventListener('message', this._onMessage);
            this._frame = this._makeFrame();
            this._options.parentNode.appendChild(this._frame);
        }

        _makeFrame() {
            const frame = document.createElement('iframe');
            frame.id = frame.name = `jitsiConferenceFrame${frames++}`;
            frame.allow = 'camera; microphone; autoplay; display-capture';
            frame.allowFullscreen = true;
            frame.style.border = '0';
            frame.style.width = length(this._options.width);
            frame.style.height = length(this._options.height);
            frame.addEventListener('load', event => {
                this._expectPage();
                if (typeof this._options.onload === 'function')
                    this._options.onload(event);
            });
            frame.src = this._address.href;
            return frame;
        }

        // Error pages load as well as others do; only the client speaks.
        _expectPage() {
            clearTimeout(this._patience);
            this._patience = setTimeout(() => {
                if (this._isThere || !this._frame)
                    return;
                this._emit('errorOccurred', {
                    error: {
                        name: 'connection.otherError', type: 'CONNECTION', isFatal: true, details: {},
                        message: 'The address of the room shows no conference.',
                    },
                });
            }, patienceAfterLoad);
        }

        _receive(event) {
            if (!this._frame || event.source !== this._frame.contentWindow || event.origin !== this._address.origin)
                return;
            const message = event.data;
            if (!message || message.mark !== mark)
                return;
            if (message.kind === 'hello') {
                this._isThere = true;
                this._post({ kind: 'welcome' });
                this._waiting.splice(0).forEach(command => this._post(command));
            } else if (message.kind === 'event') {
                this._emit(message.name, message.data);
            }
        }

        _post(message) {
            this._frame.contentWindow.postMessage({ mark, ...message }, this._address.origin);
        }

        // A listener that throws must not keep the event from the others.
        _emit(name, data) {
            for (const listener of [...(this._listeners.get(name) || [])]) {
                try {
                    listener(data);
                } catch (error) {
                    setTimeout(() => { throw error; });
                }
            }
        }

        on(name, listener) {
            if (!this._listeners.has(name))
                this._listeners.set(name, []);
            this._listeners.get(name).push(listener);
            return this;
        }
        addListener(name, listener) { return this.on(name, listener); }
        addEventListener(name, listener) { this.on(name, listener); }
        addEventListeners(listeners) {
            for (const [name, listener] of Object.entries(listeners))
                this.on(name, listener);
        }
        once(name, listener) {
            const first = data => {
                this.off(name, first);
                listener(data);
            };
            return this.on(name, first);
        }
        off(name, listener) {
            const left = (this._listeners.get(name) || []).filter(other => other !== listener);
            this._listeners.set(name, left);
            return this;
        }
        removeListener(name, listener) { return this.off(name, listener); }
        removeEventListener(name) { this._listeners.delete(name); }
        removeEventListeners(names) { names.forEach(name => this.removeEventListener(name)); }
        removeAllListeners(name) {
            if (name === undefined)
                this._listeners.clear();
            else
                this._listeners.delete(name);
            return this;
        }

        executeCommand(name, ...values) {
            if (!this._frame || !ownCommands.includes(name))
                return;
            const command = { kind: 'command', name, values };
            if (this._isThere)
                this._post(command);
            else
                this._waiting.push(command);
        }
        executeCommands(commands) {
            for (const [name, values] of Object.entries(commands))
                this.executeCommand(name, ...(Array.isArray(values) ? values : [values]));
        }

        getIFrame() { return this._frame; }

        dispose() {
            clearTimeout(this._patience);
            window.removeEventListener('message', this._onMessage);
            this._listeners.clear();
            if (this._frame)
                this._frame.remove();
            this._frame = null;
        }
    }

    window.JitsiMeetExternalAPI = JitsiMeetExternalAPI;
})();
