// What the page's address says of the call.

function overwritten(fragment, name) {
    const values = {};
    for (const pair of fragment.replace(/^#/, '').split('&')) {
        const at = pair.indexOf('=');
        if (at < 0)
            continue;
        try {
            const key = decodeURIComponent(pair.slice(0, at));
            if (key.startsWith(`${name}.`)) {
                const value = JSON.parse(decodeURIComponent(pair.slice(at + 1)));
                // Not by assignment: a key may be called like what every object has.
                Object.defineProperty(values, key.slice(name.length + 1),
                    { value, enumerable: true, configurable: true, writable: true });
            }
        } catch {
            // Other pages put other things behind the hash.
        }
    }
    return values;
}

/// Reads the address and takes the token out of it, so that it shows in no history and no message about this page.
export function readAddress() {
    const wanted = {
        path: location.pathname,
        token: new URLSearchParams(location.search).get('jwt') || '',
        config: overwritten(location.hash, 'config'),
        interfaceConfig: overwritten(location.hash, 'interfaceConfig'),
        displayName: String(overwritten(location.hash, 'userInfo').displayName || ''),
    };
    history.replaceState(null, '', location.pathname);
    return wanted;
}
