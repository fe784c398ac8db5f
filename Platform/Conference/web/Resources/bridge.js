// Carries words between the page and the library. Runs in a world of its own: the server's scripts see the events of
// the window, but nothing of the channel.
new QWebChannel(qt.webChannelTransport, (channel) => {
    const bridge = channel.objects.bridge;
    const tell = (name, detail) => window.dispatchEvent(new CustomEvent(name, { detail }));
    window.addEventListener('kelvara-report', (event) => bridge.report(String(event.detail)));
    bridge.invited.connect((invitation) => tell('kelvara-invited', invitation));
    bridge.hungUp.connect(() => tell('kelvara-hung-up', ''));
    bridge.ready();
});
