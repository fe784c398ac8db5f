// Brings the conference server's own web client into the page through the server's embedding script, set up as the
// library's options ask, and reports what becomes of it.
(() => {
    'use strict';

    const TOOLBAR = ['camera', 'chat', 'closedcaptions', 'desktop', 'download', 'embedmeeting', 'etherpad', 'feedback',
        'filmstrip', 'fullscreen', 'hangup', 'help', 'highlight', 'invite', 'linktosalesforce', 'livestreaming',
        'microphone', 'mute-everyone', 'mute-video-everyone', 'noisesuppression', 'participants-pane', 'profile',
        'raisehand', 'recording', 'security', 'select-background', 'settings', 'shareaudio', 'sharedvideo', 'shortcuts',
        'stats', 'tileview', 'toggle-camera', 'videoquality', 'whiteboard'];

    const button = (name) => (config, on) => {
        config.toolbarButtons = config.toolbarButtons.filter((other) => other !== name);
        if (on)
            config.toolbarButtons.push(name);
    };
    const both = (...steps) => (config, on) => steps.forEach((step) => step(config, on));

    const OPTIONS = {
        audioOnly: (config, on) => { config.startAudioOnly = on; },
        audioMuted: (config, on) => { config.startWithAudioMuted = on; },
        videoMuted: (config, on) => { config.startWithVideoMuted = on; },
        welcomePageEnabled: (config, on) => { config.enableWelcomePage = on; },
    };

    // Flags that are not here have no counterpart in the web client.
    const FLAGS = {
        'add-people.enabled': both((config, on) => { config.disableInviteFunctions = !on; }, button('invite')),
        'invite.enabled': both((config, on) => { config.disableInviteFunctions = !on; }, button('invite')),
        'raise-hand.enabled': button('raisehand'),
        'video-share.enabled': button('sharedvideo'),
        'toolbox.alwaysVisible': (config, on) => { config.toolbarConfig.alwaysVisible = on; },
        'toolbox.enabled': (config, on) => { config.toolboxEnabled = on; },
        'live-streaming.enabled': both((config, on) => {
            config.liveStreamingEnabled = on;
            config.liveStreaming = { enabled: on };
        }, button('livestreaming')),
        'chat.enabled': both((config, on) => { config.disablePolls = !on; }, button('chat')),
        'meeting-password.enabled': both((config, on) => {
            config.securityUi = { disableLobbyPassword: !on, hideLobbyButton: !on };
        }, button('security')),
        'meeting-name.enabled': (config, on) => { config.hideConferenceSubject = !on; },
        'calendar.enabled': (config, on) => { config.enableCalendarIntegration = on; },
        'conference-timer.enabled': (config, on) => { config.hideConferenceTimer = !on; },
        'close-captions.enabled': both((config, on) => {
            config.transcribingEnabled = on;
            config.transcription = { enabled: on };
        }, button('closedcaptions')),
        'kick-out.enabled': (config, on) => { config.remoteVideoMenu = { disableKick: !on }; },
        'recording.enabled': both((config, on) => {
            config.fileRecordingsEnabled = on;
            config.recordingService = { enabled: on };
            config.localRecording = { disable: !on };
        }, button('recording')),
        'tile-view.enabled': both((config, on) => { config.disableTileView = !on; }, button('tileview')),
    };

    const configOf = (settings) => {
        const config = {
            // The person was asked by the host already, and is to stay in its application.
            prejoinPageEnabled: false,
            prejoinConfig: { enabled: false },
            disableDeepLinking: true,
            enableClosePage: false,
            defaultLanguage: 'tr',
            toolbarButtons: [...TOOLBAR],
            toolbarConfig: {},
            toolboxEnabled: true,
        };
        for (const [name, value, isFlag] of settings) {
            const known = isFlag ? FLAGS : OPTIONS;
            if (Object.hasOwn(known, name))
                known[name](config, value);
        }
        if (!config.toolboxEnabled)
            config.toolbarButtons = [];
        delete config.toolboxEnabled;
        return config;
    };

    // What an event says may be too long for us, or no JSON at all, as a picture of the person; that it came counts.
    const textOf = (event, data) => {
        try {
            const text = JSON.stringify({ event, data });
            if (text.length <= 60000)
                return text;
        } catch (error) { /* below */ }
        const short = Object.entries(data).slice(0, 20).filter(([, value]) => typeof value === 'boolean'
            || (typeof value === 'string' && value.length <= 1000));
        return JSON.stringify({ event, data: Object.fromEntries(short) });
    };
    const report = (event, data) => window.dispatchEvent(
        new CustomEvent('kelvara-report', { detail: textOf(event, data ?? {}) }));

    let client = null;

    const join = (invitation) => {
        const config = configOf(invitation.settings);
        try {
            client = new window.JitsiMeetExternalAPI(invitation.domain, {
                roomName: invitation.room,
                parentNode: document.getElementById('conference'),
                width: '100%',
                height: '100%',
                noSSL: !invitation.secure,
                lang: 'tr',
                ...(invitation.token ? { jwt: invitation.token } : {}),
                configOverwrite: config,
                onload: () => report('presented'),
            });
            listen();
        } catch (error) {
            // Not the script that was meant, though it has its name.
            report('scriptFailed', { status: 200 });
            return;
        }
        report('willJoin', { roomName: invitation.room });
    };

    let isAlive = false;
    const alive = () => {
        if (!isAlive)
            report('alive');
        isAlive = true;
    };

    const listen = () => {
        const on = (event, handle) => client.addListener(event, handle);
        on('videoConferenceJoined', (data) => report('joined', data));
        on('videoConferenceLeft', (data) => report('left', data));
        on('readyToClose', (data) => report('left', data));
        on('errorOccurred', (data) => report('error', data?.error ?? data));
        for (const sign of ['browserSupport', 'cameraError', 'micError', 'prejoinScreenLoaded', 'passwordRequired',
            'audioAvailabilityChanged', 'videoAvailabilityChanged', 'log'])
            on(sign, alive);
    };

    // The status tells a server without the script from no server at all.
    const tellWhyNot = async (address) => {
        try {
            const response = await fetch(address, { cache: 'no-store' });
            report('scriptFailed', { status: response.status });
        } catch (error) {
            report('scriptFailed', { status: 0 });
        }
    };

    window.addEventListener('kelvara-invited', (event) => {
        const invitation = JSON.parse(event.detail);
        window.kelvaraSettings = Object.freeze(invitation.settings);
        const script = document.createElement('script');
        script.src = `${invitation.origin}/external_api.js`;
        script.onload = () => join(invitation);
        script.onerror = () => tellWhyNot(script.src);
        document.head.append(script);
    }, { once: true });

    window.addEventListener('kelvara-hung-up', () => client?.executeCommand('hangup'));
})();
