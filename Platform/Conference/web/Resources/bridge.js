// Carries words between the page and the library. Runs in a world of its own: the server's scripts see the events of
// the window, but nothing of the channel.
new QWebChannel(qt.webChannelTransport, (channel) => {
    const bridge = channel.objects.bridge;
    const tell = (name, detail) => window.dispatchEvent(new CustomEvent(name, { detail }));
    // Whoever says more than a client ever has to say would keep the application busy.
    const mostInASecond = 20;
    const longest = 65536;
    let second = 0;
    let said = 0;
    window.addEventListener('kelvara-report', (event) => {
        const now = Math.floor(performance.now() / 1000);
        if (now !== second) {
            second = now;
            said = 0;
        }
        const report = event.detail;
        if (typeof report === 'string' && report.length <= longest && ++said <= mostInASecond)
            bridge.report(report);
    });
    bridge.invited.connect((invitation) => tell('kelvara-invited', invitation));
    bridge.hungUp.connect(() => tell('kelvara-hung-up', ''));
    bridge.ready();
});
